// Pixels that come to a texture from a pixmap or a pbuffer, by the window system. A capture has the texture's
// own at that time, as what a call of glTexImage gave it.

#include "capture/OpenGLCapture.inl"
#include "capture/PixelState.h"
#include "extensionator/OpenGLEntry.h"

#include <algorithm>

namespace ZLT::Capture {

namespace {

struct Texels {
    int width = 0, height = 0;
    unsigned int type = GL_UNSIGNED_BYTE; ///< of the components of RGBA
    int format = 0;                       ///< which a texture of these has
    std::vector<unsigned char> pixels;
};

bool readTexels(const CapturedContext& context, unsigned int target, Texels& texels) {
    if (!context.mayAsk() || context.isCompiling ||
        (target != GL_TEXTURE_1D && target != GL_TEXTURE_2D && target != GL_TEXTURE_RECTANGLE_ARB))
        return false;
    const auto parameter = [target](unsigned int name) {
        int value = 0;
        glGetTexLevelParameteriv(target, 0, name, &value);
        return value;
    };
    texels.width = parameter(GL_TEXTURE_WIDTH);
    texels.height = parameter(GL_TEXTURE_HEIGHT);
    if (texels.width <= 0 || texels.height <= 0)
        return false;
    const bool isDeep = parameter(GL_TEXTURE_RED_SIZE) > 8, hasAlpha = parameter(GL_TEXTURE_ALPHA_SIZE) > 0;
    texels.type = isDeep ? GL_UNSIGNED_SHORT : GL_UNSIGNED_BYTE;
    texels.format = isDeep ? (hasAlpha ? GL_RGBA16 : GL_RGB16) : hasAlpha ? GL_RGBA8 : GL_RGB8;
    texels.pixels.resize(static_cast<std::size_t>(texels.width) * static_cast<std::size_t>(texels.height) *
                         (isDeep ? 8 : 4));
    const PlainPacking packing(context);
    glGetTexImage(target, 0, GL_RGBA, texels.type, texels.pixels.data());
    return true;
}

// What a player has to set while it makes the call, and to set back. The calls are made here as well, and so
// nothing is changed.
class PlainUnpackingInside {
public:
    PlainUnpackingInside(OpenGLCapture& capture, const CapturedContext& context, const char* file,
                         unsigned int line)
        : capture_(capture), isOld_(!context.isVersion(1, 5)), file_(file), line_(line) {
        if (context.hasPixelBuffers)
            buffer_ = static_cast<unsigned int>(context.integer(GL_PIXEL_UNPACK_BUFFER_BINDING));
        bind(0);
        for (Parameter& parameter : parameters_) {
            parameter.before = context.integer(parameter.name);
            set(parameter, parameter.plain);
        }
        if (!context.isCore && isTransferred(context) && hasRoom(context)) {
            isPushed_ = true;
            capture.cgmPushAttrib(file, line, GL_PIXEL_MODE_BIT);
            for (const unsigned int name : scales)
                capture.cgmPixelTransferf(file, line, name, 1);
            for (const unsigned int name : biases)
                capture.cgmPixelTransferf(file, line, name, 0);
            capture.cgmPixelTransferi(file, line, GL_MAP_COLOR, GL_FALSE);
        }
    }
    ~PlainUnpackingInside() {
        if (isPushed_)
            capture_.cgmPopAttrib(file_, line_);
        for (const Parameter& parameter : parameters_)
            set(parameter, parameter.before);
        bind(buffer_);
    }
    PlainUnpackingInside(const PlainUnpackingInside&) = delete;
    PlainUnpackingInside& operator=(const PlainUnpackingInside&) = delete;

private:
    struct Parameter {
        unsigned int name;
        int plain, before = 0;
    };
    static constexpr unsigned int scales[] = {GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE, GL_ALPHA_SCALE};
    static constexpr unsigned int biases[] = {GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS};

    static bool isTransferred(const CapturedContext& context) {
        const auto is = [](float wanted) {
            return [wanted](unsigned int name) {
                float value = wanted;
                glGetFloatv(name, &value);
                return value == wanted;
            };
        };
        return context.integer(GL_MAP_COLOR) != 0 || !std::ranges::all_of(scales, is(1)) ||
               !std::ranges::all_of(biases, is(0));
    }
    static bool hasRoom(const CapturedContext& context) {
        return context.integer(GL_ATTRIB_STACK_DEPTH) < context.integer(GL_MAX_ATTRIB_STACK_DEPTH);
    }
    void set(const Parameter& parameter, int value) {
        if (parameter.before != parameter.plain)
            capture_.cgmPixelStorei(file_, line_, parameter.name, value);
    }
    void bind(unsigned int buffer) {
        if (buffer_ == 0)
            return;
        if (isOld_)
            capture_.cgmBindBufferARB(file_, line_, GL_PIXEL_UNPACK_BUFFER, buffer);
        else
            capture_.cgmBindBuffer(file_, line_, GL_PIXEL_UNPACK_BUFFER, buffer);
    }

    OpenGLCapture& capture_;
    bool isOld_;
    const char* file_;
    unsigned int line_;
    unsigned int buffer_ = 0;
    Parameter parameters_[6] = {{GL_UNPACK_ALIGNMENT, 4},  {GL_UNPACK_ROW_LENGTH, 0},
                                {GL_UNPACK_SKIP_ROWS, 0},  {GL_UNPACK_SKIP_PIXELS, 0},
                                {GL_UNPACK_SWAP_BYTES, 0}, {GL_UNPACK_LSB_FIRST, 0}};
    bool isPushed_ = false;
};

} // namespace

void OpenGLCapture::texelsGiven(const char* file, unsigned int line, unsigned int target,
                                std::string_view what) {
    CaptureState& state = stateOf(*shared_);
    Texels texels;
    if (!readTexels(state.context(), target, texels))
        return state.incomplete(what);
    const PlainUnpackingInside plain(*this, state.context(), file, line);
    const bool isRow = target == GL_TEXTURE_1D;
    const auto number =
        static_cast<std::uint32_t>(isRow ? OGL::OpenGLEntry::TexImage1D : OGL::OpenGLEntry::TexImage2D);
    CallWriter call(state, number, file, line);
    call.value(target);
    call.value(0);
    call.value(texels.format);
    call.value(texels.width);
    if (!isRow)
        call.value(texels.height);
    call.value(0);
    call.value(static_cast<unsigned int>(GL_RGBA));
    call.value(texels.type);
    call.image(texels.pixels.data(),
               Sizes::image(GL_RGBA, texels.type, texels.width, isRow ? 1 : texels.height, 1));
}

} // namespace ZLT::Capture
