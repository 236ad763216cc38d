#include "Pictures.h"

#include "ProgramFile.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBIW_WINDOWS_UTF8
#include <stb/stb_image_write.h>

namespace ZLT::Interception {

void writePng(const std::string& path, const Capture::Picture& picture) {
    stbi_flip_vertically_on_write(1); // rows come from the bottom up
    if (!stbi_write_png(path.c_str(), picture.width, picture.height, 4, picture.pixels.data(),
                        4 * picture.width))
        throw Refusal(path + " can't be written", Refusal::usage);
}

} // namespace ZLT::Interception
