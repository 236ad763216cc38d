#include "capture/ReadPicture.h"

#include "capture/PixelState.h"

namespace ZLT::Capture {

namespace {

// The program's own framebuffer gives way.
class PlainTargets {
public:
    explicit PlainTargets(const CapturedContext& context) : context_(context) {
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
    }
    PlainTargets(const PlainTargets&) = delete;
    PlainTargets& operator=(const PlainTargets&) = delete;

private:
    const CapturedContext& context_;
    unsigned int target_ = 0, framebuffer_ = 0, readBuffer_ = 0;
};

} // namespace

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
        const PlainPacking packing(context);
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    }
    // Whether a surface keeps an alpha is nothing to see.
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = 255;
    return true;
}

} // namespace ZLT::Capture
