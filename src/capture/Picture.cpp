#include "capture/Picture.h"

#include "capture/CapturedContext.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace ZLT::Capture {

namespace {

// Sets a parameter by glPixelStorei for its life.
class StoreParameter {
public:
    StoreParameter(const CapturedContext& context, unsigned int name, int value)
        : name_(name), before_(context.integer(name)) {
        glPixelStorei(name, value);
    }
    ~StoreParameter() { glPixelStorei(name_, before_); }
    StoreParameter(const StoreParameter&) = delete;
    StoreParameter& operator=(const StoreParameter&) = delete;

private:
    unsigned int name_;
    int before_;
};

// The program's own framebuffer and pixel buffer give way.
class PlainTargets {
public:
    explicit PlainTargets(const CapturedContext& context) : context_(context) {
        if (context.hasPixelBuffers) {
            buffer_ = static_cast<unsigned int>(context.integer(GL_PIXEL_PACK_BUFFER_BINDING));
            if (buffer_ != 0)
                context.functions.bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
        }
        if (context.hasFramebuffers) {
            const bool isDivided = context.isVersion(3, 0) || context.has("GL_ARB_framebuffer_object") ||
                                   context.has("GL_EXT_framebuffer_blit");
            target_ = isDivided ? GL_READ_FRAMEBUFFER : GL_FRAMEBUFFER;
            framebuffer_ = static_cast<unsigned int>(
                context.integer(isDivided ? GL_READ_FRAMEBUFFER_BINDING : GL_FRAMEBUFFER_BINDING));
            if (framebuffer_ != 0)
                context.functions.bindFramebuffer(target_, 0);
        }
        readBuffer_ = static_cast<unsigned int>(context.integer(GL_READ_BUFFER));
        glReadBuffer(context.integer(GL_DOUBLEBUFFER) != 0 ? GL_BACK : GL_FRONT);
    }
    ~PlainTargets() {
        glReadBuffer(readBuffer_);
        if (framebuffer_ != 0)
            context_.functions.bindFramebuffer(target_, framebuffer_);
        if (buffer_ != 0)
            context_.functions.bindBuffer(GL_PIXEL_PACK_BUFFER, buffer_);
    }
    PlainTargets(const PlainTargets&) = delete;
    PlainTargets& operator=(const PlainTargets&) = delete;

private:
    const CapturedContext& context_;
    unsigned int buffer_ = 0, target_ = 0, framebuffer_ = 0, readBuffer_ = 0;
};

// Nothing is done to the pixels on their way.
class PlainTransfer {
public:
    explicit PlainTransfer(const CapturedContext& context) {
        if (context.isCore)
            return;
        glPushAttrib(GL_PIXEL_MODE_BIT | GL_ENABLE_BIT);
        isPushed_ = true;
        for (const unsigned int name : {GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE, GL_ALPHA_SCALE})
            glPixelTransferf(name, 1);
        for (const unsigned int name : {GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS})
            glPixelTransferf(name, 0);
        glPixelTransferi(GL_MAP_COLOR, GL_FALSE);
        if (!context.has("GL_ARB_imaging"))
            return;
        for (const unsigned int name :
             {GL_COLOR_TABLE, GL_POST_CONVOLUTION_COLOR_TABLE, GL_POST_COLOR_MATRIX_COLOR_TABLE,
              GL_CONVOLUTION_1D, GL_CONVOLUTION_2D, GL_SEPARABLE_2D, GL_HISTOGRAM, GL_MINMAX})
            glDisable(name);
        for (const unsigned int name : {GL_POST_COLOR_MATRIX_RED_SCALE, GL_POST_COLOR_MATRIX_GREEN_SCALE,
                                        GL_POST_COLOR_MATRIX_BLUE_SCALE, GL_POST_COLOR_MATRIX_ALPHA_SCALE})
            glPixelTransferf(name, 1);
        for (const unsigned int name : {GL_POST_COLOR_MATRIX_RED_BIAS, GL_POST_COLOR_MATRIX_GREEN_BIAS,
                                        GL_POST_COLOR_MATRIX_BLUE_BIAS, GL_POST_COLOR_MATRIX_ALPHA_BIAS})
            glPixelTransferf(name, 0);
    }
    ~PlainTransfer() {
        if (isPushed_)
            glPopAttrib();
    }
    PlainTransfer(const PlainTransfer&) = delete;
    PlainTransfer& operator=(const PlainTransfer&) = delete;

private:
    bool isPushed_ = false;
};

} // namespace

std::uint64_t Picture::hash() const { return XXH3_64bits(pixels.data(), pixels.size()); }

bool readPicture(const CapturedContext& context, int width, int height, Picture& picture) {
    const bool isRoom =
        context.isCore || context.integer(GL_ATTRIB_STACK_DEPTH) < context.integer(GL_MAX_ATTRIB_STACK_DEPTH);
    if (!context.mayAsk() || context.isCompiling || !isRoom || width <= 0 || height <= 0)
        return false;
    picture.width = width;
    picture.height = height;
    picture.pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, 0);
    {
        const PlainTransfer transfer(context);
        const PlainTargets targets(context);
        const StoreParameter alignment(context, GL_PACK_ALIGNMENT, 1), length(context, GL_PACK_ROW_LENGTH, 0),
            rows(context, GL_PACK_SKIP_ROWS, 0), pixels(context, GL_PACK_SKIP_PIXELS, 0),
            swaps(context, GL_PACK_SWAP_BYTES, 0), bits(context, GL_PACK_LSB_FIRST, 0);
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    }
    // Whether a surface keeps an alpha is nothing to see.
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = 255;
    return true;
}

} // namespace ZLT::Capture
