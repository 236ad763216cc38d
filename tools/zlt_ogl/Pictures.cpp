#include "Pictures.h"

#include "Output.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

#include <memory>
#include <ostream>

namespace ZLT::Interception {

namespace {

void write(void* stream, void* bytes, int size) {
    static_cast<std::ostream*>(stream)->write(static_cast<const char*>(bytes), size);
}

} // namespace

void writePng(const std::string& path, const Capture::Picture& picture) {
    const std::unique_ptr<std::ostream> file = openOutput(path);
    stbi_flip_vertically_on_write(1); // rows come from the bottom up
    if (!stbi_write_png_to_func(write, file.get(), picture.width, picture.height, 4, picture.pixels.data(),
                                0))
        file->setstate(std::ios::failbit);
    closeOutput(*file, path);
}

} // namespace ZLT::Interception
