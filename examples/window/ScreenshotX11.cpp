#include "Screenshot.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdint>

namespace {

// An X error, as of a window that isn't there, shall not end the program.
int ignore(Display*, XErrorEvent*) { return 0; }

// The eight bits of a colour, from a pixel of 24 or 32.
std::uint8_t channel(unsigned long pixel, unsigned long mask) {
    return static_cast<std::uint8_t>((pixel & mask) / (mask & ~(mask << 1)));
}

Picture grab(Display* server, Window window) {
    XWindowAttributes attributes = {};
    if (!XGetWindowAttributes(server, window, &attributes) || attributes.map_state != IsViewable)
        return {};
    const int width = attributes.width;
    const int height = attributes.height;
    XImage* image = XGetImage(server, window, 0, 0, static_cast<unsigned>(width),
                              static_cast<unsigned>(height), AllPlanes, ZPixmap);
    if (!image)
        return {};
    Picture picture = {width, height, {}};
    for (int y = height - 1; y >= 0; --y) // GL counts rows from below
        for (int x = 0; x < width; ++x) {
            const unsigned long pixel = XGetPixel(image, x, y);
            for (const unsigned long mask : {image->red_mask, image->green_mask, image->blue_mask})
                picture.pixels.push_back(channel(pixel, mask));
        }
    XDestroyImage(image);
    return picture;
}

} // namespace

Picture screenshot(const void* window) {
    Display* server = XOpenDisplay(nullptr);
    if (!server)
        return {};
    const auto previous = XSetErrorHandler(ignore);
    Picture picture = grab(server, reinterpret_cast<Window>(window));
    XCloseDisplay(server);
    XSetErrorHandler(previous);
    return picture;
}
