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

void append(void* text, void* bytes, int size) {
    static_cast<std::string*>(text)->append(static_cast<const char*>(bytes), static_cast<std::size_t>(size));
}

} // namespace

std::string pngOf(const Capture::Picture& picture) {
    std::string bytes;
    stbi_flip_vertically_on_write(1); // rows come from the bottom up
    stbi_write_png_to_func(append, &bytes, picture.width, picture.height, 4, picture.pixels.data(), 0);
    return bytes;
}

std::string jpegOf(const Capture::Picture& picture) {
    constexpr int quality = 82;
    std::string bytes;
    stbi_flip_vertically_on_write(1);
    stbi_write_jpg_to_func(append, &bytes, picture.width, picture.height, 4, picture.pixels.data(), quality);
    return bytes;
}

void writePng(const std::string& path, const Capture::Picture& picture) {
    const std::unique_ptr<std::ostream> file = openOutput(path);
    stbi_flip_vertically_on_write(1); // rows come from the bottom up
    if (!stbi_write_png_to_func(write, file.get(), picture.width, picture.height, 4, picture.pixels.data(),
                                0))
        file->setstate(std::ios::failbit);
    closeOutput(*file, path);
}

} // namespace ZLT::Interception
