#include "Png.h"

#include <png.h>

#include <stdexcept>

void writePng(const std::string& path, int width, int height, const std::vector<std::uint8_t>& pixels) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    const png_int_32 bottomUp = -3 * width;
    if (!png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), bottomUp, nullptr))
        throw std::runtime_error("cannot write " + path + ": " + image.message);
}
