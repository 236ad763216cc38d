#include "intercept/checks/FramebufferCheck.h"

#include "capture/TextureBinding.h"
#include "extensionator/TokenName.h"

#include <string>
#include <vector>

namespace ZLT::Interception {

namespace {

// Later than the tokens that have names here.
constexpr unsigned int undefinedFramebuffer = 0x8219, missingLayers = 0x8DA8;

const char* nameOfStatus(unsigned int status) {
    switch (status) {
    case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT:
        return "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT";
    case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT:
        return "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT";
    case GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT:
        return "GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT";
    case GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT:
        return "GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT";
    case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER:
        return "GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER";
    case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER:
        return "GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER";
    case GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE:
        return "GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE";
    case GL_FRAMEBUFFER_UNSUPPORTED:
        return "GL_FRAMEBUFFER_UNSUPPORTED";
    case undefinedFramebuffer:
        return "GL_FRAMEBUFFER_UNDEFINED";
    case missingLayers:
        return "GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS";
    default:
        return "of an unknown status";
    }
}

struct Attachment {
    unsigned int point = 0;
    int type = 0, object = 0;                             ///< GL_TEXTURE or GL_RENDERBUFFER, and its name
    int width = -1, height = -1, format = 0, samples = 0; ///< -1 where they are not known
};

std::string nameOfPoint(unsigned int point) {
    if (point >= GL_COLOR_ATTACHMENT0 && point < GL_COLOR_ATTACHMENT0 + 32)
        return "GL_COLOR_ATTACHMENT" + std::to_string(point - GL_COLOR_ATTACHMENT0);
    return point == GL_DEPTH_ATTACHMENT ? "GL_DEPTH_ATTACHMENT" : "GL_STENCIL_ATTACHMENT";
}

std::string describe(const Attachment& attachment) {
    return nameOfPoint(attachment.point) +
           (attachment.type == GL_TEXTURE ? ", texture " : ", renderbuffer ") +
           std::to_string(attachment.object);
}

class Framebuffer {
public:
    Framebuffer(CheckedContext& context, unsigned int target) : context_(context), target_(target) {}

    std::string blame(unsigned int status) {
        int most = 1;
        if (context_.asked.hasFramebuffers)
            most = context_.integer(GL_MAX_COLOR_ATTACHMENTS);
        for (int i = 0; i < most; ++i)
            add(GL_COLOR_ATTACHMENT0 + static_cast<unsigned int>(i));
        add(GL_DEPTH_ATTACHMENT);
        add(GL_STENCIL_ATTACHMENT);
        switch (status) {
        case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT:
            return attachments_.empty() ? ": nothing is attached" : "";
        case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT:
            return blameImage();
        case GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT:
            return blameDifference(
                [](const Attachment& one, const Attachment& other) {
                    return one.width != other.width || one.height != other.height;
                },
                [](const Attachment& one) {
                    return std::to_string(one.width) + " x " + std::to_string(one.height);
                });
        case GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE:
            return blameDifference(
                [](const Attachment& one, const Attachment& other) { return one.samples != other.samples; },
                [](const Attachment& one) { return std::to_string(one.samples) + " samples"; });
        case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER:
            return blameBuffer(GL_DRAW_BUFFER, "what is drawn to");
        case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER:
            return blameBuffer(GL_READ_BUFFER, "what is read from");
        default:
            return "";
        }
    }

private:
    void add(unsigned int point) {
        Attachment one;
        one.point = point;
        const auto ask = [&](unsigned int name) {
            GLint value = 0;
            context_.asked.functions.getFramebufferAttachmentParameteriv(target_, point, name, &value);
            return value;
        };
        one.type = ask(GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE);
        if (one.type != GL_TEXTURE && one.type != GL_RENDERBUFFER)
            return;
        one.object = ask(GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME);
        if (one.type == GL_RENDERBUFFER)
            readRenderbuffer(one);
        else
            readTexture(one, ask(GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_LEVEL),
                        ask(GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_CUBE_MAP_FACE));
        attachments_.push_back(one);
    }

    // Each is bound for the question. What was deleted would be made again by that.
    bool isThere(ObjectKind kind, int name) const {
        const auto is = context_.functions.isObject[static_cast<int>(kind)];
        return name == 0 || (is && is(static_cast<GLuint>(name)));
    }

    void readRenderbuffer(Attachment& one) {
        const int bound = context_.integer(GL_RENDERBUFFER_BINDING);
        const auto bind = context_.functions.bindRenderbuffer;
        const auto get = context_.functions.getRenderbufferParameteriv;
        if (!bind || !get || !isThere(ObjectKind::Renderbuffer, one.object) ||
            !isThere(ObjectKind::Renderbuffer, bound))
            return;
        bind(GL_RENDERBUFFER, static_cast<GLuint>(one.object));
        get(GL_RENDERBUFFER, GL_RENDERBUFFER_WIDTH, &one.width);
        get(GL_RENDERBUFFER, GL_RENDERBUFFER_HEIGHT, &one.height);
        get(GL_RENDERBUFFER, GL_RENDERBUFFER_INTERNAL_FORMAT, &one.format);
        if (context_.asked.isVersion(3, 0) || context_.asked.has("GL_EXT_framebuffer_multisample"))
            get(GL_RENDERBUFFER, GL_RENDERBUFFER_SAMPLES, &one.samples);
        bind(GL_RENDERBUFFER, static_cast<GLuint>(bound));
    }

    void readTexture(Attachment& one, int level, int face) {
        unsigned int target = 0;
        {
            const std::lock_guard guard(context_.group->lock);
            const auto found = context_.group->targets.find(static_cast<std::uint32_t>(one.object));
            if (found != context_.group->targets.end())
                target = found->second;
        }
        const unsigned int binding = Capture::textureBindingOf(target);
        if (binding == 0)
            return;
        const int bound = context_.integer(binding);
        if (!isThere(ObjectKind::Texture, one.object) || !isThere(ObjectKind::Texture, bound))
            return;
        const unsigned int image = face != 0 ? static_cast<unsigned int>(face) : target;
        glBindTexture(target, static_cast<GLuint>(one.object));
        glGetTexLevelParameteriv(image, level, GL_TEXTURE_WIDTH, &one.width);
        glGetTexLevelParameteriv(image, level, GL_TEXTURE_HEIGHT, &one.height);
        glGetTexLevelParameteriv(image, level, GL_TEXTURE_INTERNAL_FORMAT, &one.format);
        glBindTexture(target, static_cast<GLuint>(bound));
    }

    // One without an image, or else one of a format that is not drawn to there.
    std::string blameImage() const {
        for (const Attachment& one : attachments_) {
            if (!isThere(one.type == GL_TEXTURE ? ObjectKind::Texture : ObjectKind::Renderbuffer, one.object))
                return ": " + describe(one) + ", is deleted";
            if (one.width == 0 || one.height == 0)
                return ": " + describe(one) + ", has no image";
        }
        for (const Attachment& one : attachments_) {
            const bool isColor = one.point != GL_DEPTH_ATTACHMENT && one.point != GL_STENCIL_ATTACHMENT;
            if (one.width > 0 && isColor != isColorFormat(one.format))
                return ": " + describe(one) + ", has the format " +
                       OGL::TokenName(static_cast<unsigned int>(one.format));
        }
        return "";
    }

    static bool isColorFormat(int format) {
        switch (format) {
        case GL_DEPTH_COMPONENT:
        case GL_DEPTH_COMPONENT16:
        case GL_DEPTH_COMPONENT24:
        case GL_DEPTH_COMPONENT32:
        case GL_DEPTH_COMPONENT32F:
        case GL_DEPTH_STENCIL:
        case GL_DEPTH24_STENCIL8:
        case GL_DEPTH32F_STENCIL8:
        case GL_STENCIL_INDEX:
        case GL_STENCIL_INDEX1:
        case GL_STENCIL_INDEX4:
        case GL_STENCIL_INDEX8:
        case GL_STENCIL_INDEX16:
            return false;
        default:
            return true;
        }
    }

    template <class Differs, class Text>
    std::string blameDifference(const Differs& differs, const Text& text) const {
        for (const Attachment& one : attachments_)
            if (one.width >= 0 && attachments_.front().width >= 0 && differs(attachments_.front(), one))
                return ": " + describe(attachments_.front()) + ", has " + text(attachments_.front()) +
                       ", and " + describe(one) + ", has " + text(one);
        return "";
    }

    std::string blameBuffer(unsigned int name, const char* what) const {
        const auto point = static_cast<unsigned int>(context_.integer(name));
        if (point < GL_COLOR_ATTACHMENT0 || point >= GL_COLOR_ATTACHMENT0 + 32)
            return "";
        for (const Attachment& one : attachments_)
            if (one.point == point)
                return "";
        return ": nothing is attached to " + nameOfPoint(point) + ", " + what;
    }

    CheckedContext& context_;
    unsigned int target_;
    std::vector<Attachment> attachments_;
};

} // namespace

Finding findIncompleteFramebuffer(CheckedContext& context) {
    if (!context.asked.hasFramebuffers || !context.functions.checkFramebufferStatus ||
        !context.asked.functions.getFramebufferAttachmentParameteriv)
        return {};
    const int framebuffer = context.integer(GL_FRAMEBUFFER_BINDING);
    if (framebuffer == 0)
        return {}; // the window system's, of which nothing can be said here
    const bool hasTwo = context.asked.isVersion(3, 0) || context.asked.has("GL_ARB_framebuffer_object") ||
                        context.asked.has("GL_EXT_framebuffer_blit");
    const unsigned int target = hasTwo ? GL_DRAW_FRAMEBUFFER : GL_FRAMEBUFFER;
    const unsigned int status = context.functions.checkFramebufferStatus(target);
    if (status == GL_FRAMEBUFFER_COMPLETE || status == 0)
        return {};
    return {incompleteFramebuffer, "framebuffer " + std::to_string(framebuffer) + " is incomplete (" +
                                       nameOfStatus(status) + ")" +
                                       Framebuffer(context, target).blame(status)};
}

} // namespace ZLT::Interception
