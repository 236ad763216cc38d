// Framebuffers, renderbuffers, and the pixels of windows.

#include "capture/PixelState.h"
#include "capture/exporting/StateReader.h"

#include <algorithm>

namespace ZLT::Capture {

using namespace Playing;

namespace {

// Numbers for objects that carry pixels and are deleted then; no program has these.
constexpr std::uint64_t carrierTexture = 0x7FFFFFF0, carrierFramebuffer = 0x7FFFFFF1,
                        filledFramebuffer = 0x7FFFFFF2;

Given names(std::initializer_list<std::uint64_t> numbers) {
    Given given;
    for (const std::uint64_t number : numbers)
        given.bytes += bytesOf(&number, 1).substr(0, 4);
    return given;
}

std::string nameBytes(std::initializer_list<std::uint64_t> numbers) { return names(numbers).bytes; }

struct Pixels {
    std::uint32_t attachment, mask, format, type;
    std::size_t bytes;
};

} // namespace

void StateReader::carry(const CarriedPixels& pixels, int width, int height, const std::string& bytes,
                        std::uint64_t renderbuffer) {
    // A texture brings them there, bit for bit: drawn pixels of a depth go through a float.
    const bool isColor = pixels.mask == GL_COLOR_BUFFER_BIT;
    to_.add("glGenTextures", 1, names({carrierTexture}));
    to_.add("glBindTexture", GL_TEXTURE_2D, carrierTexture);
    to_.add("glTexImage2D", GL_TEXTURE_2D, 0, pixels.internal, width, height, 0, pixels.format, pixels.type,
            bytes);
    to_.add("glTexParameteri", GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    to_.add("glGenFramebuffers", 1, names({carrierFramebuffer}));
    to_.add("glBindFramebuffer", GL_FRAMEBUFFER, carrierFramebuffer);
    to_.add("glFramebufferTexture2D", GL_FRAMEBUFFER, pixels.attachment, GL_TEXTURE_2D, carrierTexture, 0);
    if (!isColor)
        to_.add("glDrawBuffer", GL_NONE), to_.add("glReadBuffer", GL_NONE);
    if (renderbuffer != 0) {
        to_.add("glGenFramebuffers", 1, names({filledFramebuffer}));
        to_.add("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, filledFramebuffer);
        to_.add("glFramebufferRenderbuffer", GL_DRAW_FRAMEBUFFER, pixels.attachment, GL_RENDERBUFFER,
                renderbuffer);
        if (!isColor)
            to_.add("glDrawBuffer", GL_NONE);
    } else {
        to_.add("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, 0);
    }
    to_.add("glBlitFramebuffer", 0, 0, width, height, 0, 0, width, height, pixels.mask, GL_NEAREST);
    to_.add("glBindFramebuffer", GL_FRAMEBUFFER, 0);
    to_.add("glDeleteFramebuffers", 1, nameBytes({carrierFramebuffer}));
    if (renderbuffer != 0)
        to_.add("glDeleteFramebuffers", 1, nameBytes({filledFramebuffer}));
    to_.add("glBindTexture", GL_TEXTURE_2D, 0);
    to_.add("glDeleteTextures", 1, nameBytes({carrierTexture}));
}

void StateReader::addRenderbuffer(std::uint64_t name) {
    const std::uint32_t now = nameNow(ObjectKind::Renderbuffer, name);
    to_.add("glGenRenderbuffers", 1, names({name}));
    if (now == 0)
        return;
    const std::uint32_t before = token(GL_RENDERBUFFER_BINDING), framebuffer = token(GL_FRAMEBUFFER_BINDING),
                        read = token(GL_READ_FRAMEBUFFER_BINDING);
    gl_.cgmBindRenderbuffer(here, 0, GL_RENDERBUFFER, now);
    const auto ask = [&](std::uint32_t parameter) {
        int value = 0;
        gl_.cgmGetRenderbufferParameteriv(here, 0, GL_RENDERBUFFER, parameter, &value);
        return isAnswered() ? value : 0;
    };
    const int width = ask(GL_RENDERBUFFER_WIDTH), height = ask(GL_RENDERBUFFER_HEIGHT),
              samples = ask(GL_RENDERBUFFER_SAMPLES);
    const auto internal = static_cast<std::uint32_t>(ask(GL_RENDERBUFFER_INTERNAL_FORMAT));
    const bool hasDepth = ask(GL_RENDERBUFFER_DEPTH_SIZE) > 0,
               hasStencil = ask(GL_RENDERBUFFER_STENCIL_SIZE) > 0;
    const bool isWide = ask(GL_RENDERBUFFER_RED_SIZE) > 8;
    to_.add("glBindRenderbuffer", GL_RENDERBUFFER, name);
    if (samples > 0)
        to_.add("glRenderbufferStorageMultisample", GL_RENDERBUFFER, samples, internal, width, height);
    else if (width > 0)
        to_.add("glRenderbufferStorage", GL_RENDERBUFFER, internal, width, height);
    to_.add("glBindRenderbuffer", GL_RENDERBUFFER, 0);
    if (samples > 0)
        missing_("What a multisampled renderbuffer holds is not carried over.");
    if (samples == 0 && width > 0) {
        Pixels pixels = {GL_COLOR_ATTACHMENT0, GL_COLOR_BUFFER_BIT, GL_RGBA, GL_UNSIGNED_BYTE, 4};
        if (isWide)
            pixels = {GL_COLOR_ATTACHMENT0, GL_COLOR_BUFFER_BIT, GL_RGBA, GL_FLOAT, 16};
        if (hasDepth && hasStencil)
            pixels = {GL_DEPTH_STENCIL_ATTACHMENT, GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT,
                      GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8, 4};
        else if (hasDepth)
            pixels = {GL_DEPTH_ATTACHMENT, GL_DEPTH_BUFFER_BIT, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, 4};
        unsigned int carrier = 0;
        gl_.cgmGenFramebuffers(here, 0, 1, &carrier);
        gl_.cgmBindFramebuffer(here, 0, GL_FRAMEBUFFER, carrier);
        gl_.cgmFramebufferRenderbuffer(here, 0, GL_FRAMEBUFFER, pixels.attachment, GL_RENDERBUFFER, now);
        const bool isColor = pixels.mask == GL_COLOR_BUFFER_BIT;
        if (!isColor) {
            glDrawBuffer(GL_NONE);
            glReadBuffer(GL_NONE);
        }
        std::string bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * pixels.bytes,
                          '\0');
        {
            const PlainTransfer transfer(facts_);
            const PlainPacking packing(facts_);
            forgetErrors();
            glReadPixels(0, 0, width, height, pixels.format, pixels.type, bytes.data());
        }
        const bool isRead = isAnswered() && !(hasStencil && !hasDepth);
        gl_.cgmBindFramebuffer(here, 0, GL_FRAMEBUFFER, 0);
        gl_.cgmDeleteFramebuffers(here, 0, 1, &carrier);
        if (isRead) {
            carry({pixels.attachment, pixels.mask, internal, pixels.format, pixels.type}, width, height,
                  bytes, name);
        } else {
            missing_("What a renderbuffer holds could not be read.");
        }
    }
    gl_.cgmBindRenderbuffer(here, 0, GL_RENDERBUFFER, before);
    gl_.cgmBindFramebuffer(here, 0, GL_DRAW_FRAMEBUFFER, framebuffer);
    gl_.cgmBindFramebuffer(here, 0, GL_READ_FRAMEBUFFER, read);
    forgetErrors();
}

void StateReader::addAttachment(std::uint32_t target, std::uint32_t point) {
    const auto ask = [&](std::uint32_t parameter) {
        int value = 0;
        gl_.cgmGetFramebufferAttachmentParameteriv(here, 0, target, point, parameter, &value);
        return isAnswered() ? value : 0;
    };
    const int type = ask(GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE);
    const auto now = static_cast<std::uint32_t>(ask(GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME));
    if (type == GL_RENDERBUFFER) {
        to_.add("glFramebufferRenderbuffer", target, point, GL_RENDERBUFFER,
                capturedName(ObjectKind::Renderbuffer, now));
        return;
    }
    if (type != GL_TEXTURE)
        return;
    const std::uint64_t name = capturedName(ObjectKind::Texture, now);
    const auto known = known_.textureTargets.find(name);
    const int level = ask(GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_LEVEL),
              face = ask(GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_CUBE_MAP_FACE),
              layer = ask(GL_FRAMEBUFFER_ATTACHMENT_TEXTURE_LAYER);
    const std::uint32_t its = known == known_.textureTargets.end() ? GL_TEXTURE_2D : known->second;
    switch (its) {
    case GL_TEXTURE_1D:
        return to_.add("glFramebufferTexture1D", target, point, its, name, level);
    case GL_TEXTURE_3D:
        return to_.add("glFramebufferTexture3D", target, point, its, name, level, layer);
    case GL_TEXTURE_1D_ARRAY:
    case GL_TEXTURE_2D_ARRAY:
        return to_.add("glFramebufferTextureLayer", target, point, name, level, layer);
    default:
        return to_.add("glFramebufferTexture2D", target, point,
                       face != 0 ? static_cast<std::uint32_t>(face) : its, name, level);
    }
}

void StateReader::addFramebuffer(std::uint64_t name) {
    const std::uint32_t now = nameNow(ObjectKind::Framebuffer, name);
    to_.add("glGenFramebuffers", 1, names({name}));
    if (now == 0)
        return;
    const std::uint32_t draw = token(GL_FRAMEBUFFER_BINDING), read = token(GL_READ_FRAMEBUFFER_BINDING);
    gl_.cgmBindFramebuffer(here, 0, GL_FRAMEBUFFER, now);
    to_.add("glBindFramebuffer", GL_FRAMEBUFFER, name);
    for (int i = 0; i < integer(GL_MAX_COLOR_ATTACHMENTS); ++i)
        addAttachment(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0 + static_cast<std::uint32_t>(i));
    addAttachment(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT);
    addAttachment(GL_FRAMEBUFFER, GL_STENCIL_ATTACHMENT);
    addDrawBuffers(false);
    gl_.cgmBindFramebuffer(here, 0, GL_DRAW_FRAMEBUFFER, draw);
    gl_.cgmBindFramebuffer(here, 0, GL_READ_FRAMEBUFFER, read);
    to_.add("glBindFramebuffer", GL_FRAMEBUFFER, 0);
    forgetErrors();
}

void StateReader::addDrawBuffers(bool isWindow) {
    const auto surface = play_.surfaces.find(context_.draw);
    const bool isDouble = surface != play_.surfaces.end() && surface->second.shape.isDoubleBuffered;
    const bool isOne = isDouble && play_.system.hasOneBuffer(surface->second.handle);
    // Where there is one buffer, the player has drawn to that in place of the back.
    const auto captured = [&](std::uint32_t buffer) -> std::uint32_t {
        if (!isWindow || !isOne)
            return buffer;
        return buffer == GL_FRONT        ? GL_BACK
               : buffer == GL_FRONT_LEFT ? GL_BACK_LEFT
                                         : (buffer == GL_FRONT_RIGHT ? GL_BACK_RIGHT : buffer);
    };
    const std::uint32_t plain = !isWindow ? GL_COLOR_ATTACHMENT0 : isDouble ? GL_BACK : GL_FRONT;
    std::vector<std::uint32_t> buffers;
    for (int i = 0; isVersion(2, 0) && i < integer(GL_MAX_DRAW_BUFFERS); ++i)
        buffers.push_back(captured(token(GL_DRAW_BUFFER0 + static_cast<std::uint32_t>(i))));
    while (!buffers.empty() && buffers.back() == GL_NONE)
        buffers.pop_back();
    if (buffers.size() > 1) {
        to_.add("glDrawBuffers", buffers.size(), bytesOf(buffers.data(), buffers.size()));
    } else {
        const std::uint32_t buffer = captured(token(GL_DRAW_BUFFER));
        addUnless(buffer == plain || (isWindow && surface == play_.surfaces.end()), "glDrawBuffer", buffer);
    }
    const std::uint32_t buffer = captured(token(GL_READ_BUFFER));
    addUnless(buffer == plain || (isWindow && surface == play_.surfaces.end()), "glReadBuffer", buffer);
}

void StateReader::addPixels(const SurfaceShape& shape) {
    if (shape.width <= 0 || shape.height <= 0)
        return;
    if (shape.samples > 0)
        missing_("A multisampled window begins with what it showed, but not with its samples.");
    const std::uint32_t before = facts_.hasFramebuffers ? token(GL_FRAMEBUFFER_BINDING) : 0;
    if (before != 0)
        facts_.functions.bindFramebuffer(GL_FRAMEBUFFER, 0);
    const std::uint32_t readBuffer = token(GL_READ_BUFFER);
    glReadBuffer(integer(GL_DOUBLEBUFFER) != 0 ? GL_BACK : GL_FRONT);
    const std::size_t count = static_cast<std::size_t>(shape.width) * static_cast<std::size_t>(shape.height);
    const auto read = [&](std::uint32_t format, std::uint32_t type, std::size_t size) {
        std::string bytes(count * size, '\0');
        const PlainTransfer transfer(facts_);
        const PlainPacking packing(facts_);
        forgetErrors();
        glReadPixels(0, 0, shape.width, shape.height, format, type, bytes.data());
        return isAnswered() ? bytes : std::string();
    };
    const bool carries = shape.samples == 0 && isVersion(3, 0), isWide = shape.red > 8,
               isPacked = carries && shape.depth == 24 && shape.stencil == 8;
    const std::uint32_t type = isWide ? GL_UNSIGNED_SHORT : GL_UNSIGNED_BYTE;
    const std::string color = read(GL_RGBA, type, isWide ? 8 : 4);
    const std::string packed = isPacked ? read(GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8, 4) : "";
    const std::string depth =
        packed.empty() && shape.depth > 0 ? read(GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, 4) : "";
    const std::string stencil =
        packed.empty() && shape.stencil > 0 ? read(GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, 1) : "";
    glReadBuffer(readBuffer);
    if (before != 0)
        facts_.functions.bindFramebuffer(GL_FRAMEBUFFER, before);
    const bool isStencilPlain = stencil.find_first_not_of('\0') == std::string::npos;
    if (!color.empty() && carries)
        carry({GL_COLOR_ATTACHMENT0, GL_COLOR_BUFFER_BIT, std::uint32_t(isWide ? GL_RGBA16 : GL_RGBA8),
               GL_RGBA, type},
              shape.width, shape.height, color, 0);
    if (!packed.empty()) {
        carry({GL_DEPTH_STENCIL_ATTACHMENT, GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT, GL_DEPTH24_STENCIL8,
               GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8},
              shape.width, shape.height, packed, 0);
    } else if (!depth.empty() && carries) {
        const std::uint32_t internal = shape.depth > 24    ? GL_DEPTH_COMPONENT32
                                       : shape.depth == 24 ? GL_DEPTH_COMPONENT24
                                                           : GL_DEPTH_COMPONENT16;
        carry({GL_DEPTH_ATTACHMENT, GL_DEPTH_BUFFER_BIT, internal, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT},
              shape.width, shape.height, depth, 0);
    }
    if (isCore_) {
        if (!isStencilPlain)
            missing_("The stencil of a window of a core profile begins with zeros.");
        return;
    }
    if (carries && isStencilPlain)
        return;
    to_.add("glDisable", GL_DITHER);
    to_.add("glRasterPos2f", -1, -1); // the lower left corner, since no matrix is set yet
    if (!color.empty() && !carries)
        to_.add("glDrawPixels", shape.width, shape.height, GL_RGBA, type, color);
    if (!depth.empty() && !carries) {
        // Written alone, and whatever was there.
        to_.add("glColorMask", 0, 0, 0, 0);
        to_.add("glEnable", GL_DEPTH_TEST);
        to_.add("glDepthFunc", GL_ALWAYS);
        to_.add("glDrawPixels", shape.width, shape.height, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, depth);
        to_.add("glDepthFunc", GL_LESS);
        to_.add("glDisable", GL_DEPTH_TEST);
        to_.add("glColorMask", 1, 1, 1, 1);
    }
    if (!isStencilPlain)
        to_.add("glDrawPixels", shape.width, shape.height, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, stencil);
    to_.add("glEnable", GL_DITHER);
}

} // namespace ZLT::Capture
