#include "intercept/linux/Fonts.h"

#include "extensionator/OpenGLInterceptor.h"
#include "intercept/Sites.h"
#include "intercept/Thread.h"
#include "intercept/linux/RealLoader.h"
#include "platform/GL.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace ZLT::Interception {

namespace {

// The program's Xlib.
struct Xlib {
    decltype(&XQueryFont) queryFont = nullptr;
    decltype(&XFreeFontInfo) freeFontInfo = nullptr;
    decltype(&XCreatePixmap) createPixmap = nullptr;
    decltype(&XFreePixmap) freePixmap = nullptr;
    decltype(&XCreateGC) createGC = nullptr;
    decltype(&XFreeGC) freeGC = nullptr;
    decltype(&XSetForeground) setForeground = nullptr;
    decltype(&XFillRectangle) fillRectangle = nullptr;
    decltype(&XDrawString16) drawString = nullptr;
    decltype(&XGetImage) getImage = nullptr;
    bool isWhole = false;

    Xlib() {
        const auto find = [](auto& function, const char* name) {
            return findLoaded(function, "libX11.so.6", name);
        };
        isWhole = find(queryFont, "XQueryFont") && find(freeFontInfo, "XFreeFontInfo") &&
                  find(createPixmap, "XCreatePixmap") && find(freePixmap, "XFreePixmap") &&
                  find(createGC, "XCreateGC") && find(freeGC, "XFreeGC") &&
                  find(setForeground, "XSetForeground") && find(fillRectangle, "XFillRectangle") &&
                  find(drawString, "XDrawString16") && find(getImage, "XGetImage");
    }
};

// A character's metrics; null for one that the font has not.
const XCharStruct* metricsOf(const XFontStruct& font, unsigned int character) {
    const unsigned int row = character >> 8, column = character & 0xFF;
    if (row < font.min_byte1 || row > font.max_byte1 || column < font.min_char_or_byte2 ||
        column > font.max_char_or_byte2)
        return nullptr;
    if (!font.per_char)
        return &font.max_bounds;
    const unsigned int columns = font.max_char_or_byte2 - font.min_char_or_byte2 + 1;
    const XCharStruct& metrics =
        font.per_char[(row - font.min_byte1) * columns + (column - font.min_char_or_byte2)];
    const bool isThere = metrics.width != 0 || metrics.lbearing != 0 || metrics.rbearing != 0 ||
                         metrics.ascent != 0 || metrics.descent != 0;
    return isThere ? &metrics : nullptr;
}

// Characters drawn by the server, as bitmaps of GL.
class Glyphs {
public:
    Glyphs(const Xlib& xlib, Display* display, Drawable window, Font font)
        : xlib_(xlib), display_(display), window_(window), font_(font) {}

    std::vector<unsigned char> bitmap(unsigned int character, const XCharStruct& metrics) const {
        const auto width = static_cast<unsigned int>(metrics.rbearing - metrics.lbearing);
        const auto height = static_cast<unsigned int>(metrics.ascent + metrics.descent);
        const std::size_t row = (width + 7) / 8;
        std::vector<unsigned char> bits(row * height);
        const Pixmap pixmap = xlib_.createPixmap(display_, window_, width, height, 1);
        XGCValues values = {};
        values.font = font_;
        const GC gc = xlib_.createGC(display_, pixmap, GCFont, &values);
        xlib_.setForeground(display_, gc, 0);
        xlib_.fillRectangle(display_, pixmap, gc, 0, 0, width, height);
        xlib_.setForeground(display_, gc, 1);
        const XChar2b text = {static_cast<unsigned char>(character >> 8),
                              static_cast<unsigned char>(character)};
        xlib_.drawString(display_, pixmap, gc, -metrics.lbearing, metrics.ascent, &text, 1);
        XImage* const image = xlib_.getImage(display_, pixmap, 0, 0, width, height, 1, XYPixmap);
        for (unsigned int y = 0; image && y < height; ++y)
            for (unsigned int x = 0; x < width; ++x)
                if (XGetPixel(image, static_cast<int>(x), static_cast<int>(y)))
                    bits[row * (height - 1 - y) + x / 8] |= static_cast<unsigned char>(0x80 >> x % 8);
        if (image)
            XDestroyImage(image);
        xlib_.freeGC(display_, gc);
        xlib_.freePixmap(display_, pixmap);
        return bits;
    }

private:
    const Xlib& xlib_;
    Display* display_;
    Drawable window_;
    Font font_;
};

} // namespace

bool makeFontLists(OGL::OpenGLInterceptor& gl, std::uint32_t site, Font font, int first, int count,
                   int list) {
    static const Xlib xlib;
    auto* const display = static_cast<Display*>(thread.display);
    if (!xlib.isWhole || !display || thread.isEgl)
        return false;
    XFontStruct* const known = xlib.queryFont(display, font);
    if (!known)
        return false;
    const Glyphs glyphs(xlib, display, DefaultRootWindow(display), font);
    gl.cgmPushClientAttrib(siteFile, site, GL_CLIENT_PIXEL_STORE_BIT);
    for (const GLenum name : {GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST, GL_UNPACK_ROW_LENGTH,
                              GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS})
        gl.cgmPixelStorei(siteFile, site, name, 0);
    gl.cgmPixelStorei(siteFile, site, GL_UNPACK_ALIGNMENT, 1);
    for (int i = 0; i < count; ++i) {
        const auto character = static_cast<unsigned int>(first + i);
        const XCharStruct* const metrics = metricsOf(*known, character);
        gl.cgmNewList(siteFile, site, static_cast<GLuint>(list + i), GL_COMPILE);
        if (!metrics)
            gl.cgmBitmap(siteFile, site, 0, 0, 0, 0, 0, 0, nullptr);
        else if (metrics->rbearing <= metrics->lbearing || metrics->ascent + metrics->descent <= 0)
            gl.cgmBitmap(siteFile, site, 0, 0, 0, 0, metrics->width, 0, nullptr);
        else // the base line is where Mesa has it
            gl.cgmBitmap(siteFile, site, metrics->rbearing - metrics->lbearing,
                         metrics->ascent + metrics->descent, static_cast<GLfloat>(-metrics->lbearing),
                         static_cast<GLfloat>(metrics->descent - 1), metrics->width, 0,
                         glyphs.bitmap(character, *metrics).data());
        gl.cgmEndList(siteFile, site);
    }
    gl.cgmPopClientAttrib(siteFile, site);
    xlib.freeFontInfo(nullptr, known, 1);
    return true;
}

} // namespace ZLT::Interception
