// Objects, as GL has them.

#include "capture/PixelState.h"
#include "capture/TextureBinding.h"
#include "capture/exporting/StateReader.h"

#include <algorithm>

namespace ZLT::Capture {

using namespace Playing;

namespace {

// How an image is read without a loss.
struct PixelForm {
    std::uint32_t format = GL_RGBA, type = GL_UNSIGNED_BYTE;
    std::size_t bytes = 4; // of a pixel
};

bool isCube(std::uint32_t target) { return target == GL_TEXTURE_CUBE_MAP; }

int dimensionsOf(std::uint32_t target) {
    switch (target) {
    case GL_TEXTURE_1D:
        return 1;
    case GL_TEXTURE_3D:
    case GL_TEXTURE_2D_ARRAY:
        return 3;
    default:
        return 2;
    }
}

} // namespace

void StateReader::addTextureImage(std::uint32_t target, int level) {
    const auto ask = [&](std::uint32_t name) {
        GLint value = 0;
        glGetTexLevelParameteriv(target, level, name, &value);
        return value;
    };
    const int width = ask(GL_TEXTURE_WIDTH), height = ask(GL_TEXTURE_HEIGHT);
    const std::uint32_t first =
        target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z
            ? GL_TEXTURE_CUBE_MAP
            : target;
    const int dimensions = dimensionsOf(first);
    const int depth = dimensions == 3 ? ask(GL_TEXTURE_DEPTH) : 1;
    const auto internal = static_cast<std::uint32_t>(ask(GL_TEXTURE_INTERNAL_FORMAT));
    const int border = isCore_ ? 0 : ask(GL_TEXTURE_BORDER);
    const std::size_t pixels = static_cast<std::size_t>(width) *
                               static_cast<std::size_t>(std::max(height, 1)) *
                               static_cast<std::size_t>(std::max(depth, 1));
    const PlainTransfer transfer(facts_);
    const PlainPacking packing(facts_);
    forgetErrors();
    if (isVersion(1, 3) && ask(GL_TEXTURE_COMPRESSED)) {
        std::string bytes(static_cast<std::size_t>(ask(GL_TEXTURE_COMPRESSED_IMAGE_SIZE)), '\0');
        gl_.cgmGetCompressedTexImage(here, 0, target, level, bytes.data());
        const int size = static_cast<int>(bytes.size());
        if (dimensions == 1)
            to_.add("glCompressedTexImage1D", target, level, internal, width, border, size, bytes);
        else if (dimensions == 2)
            to_.add("glCompressedTexImage2D", target, level, internal, width, height, border, size, bytes);
        else
            to_.add("glCompressedTexImage3D", target, level, internal, width, height, depth, border, size,
                    bytes);
        return;
    }
    PixelForm form;
    const auto type = [&](std::uint32_t name) {
        return isVersion(3, 0) ? static_cast<std::uint32_t>(ask(name)) : 0;
    };
    const int depthBits = isVersion(1, 4) ? ask(GL_TEXTURE_DEPTH_SIZE) : 0;
    int bits = 0;
    std::uint32_t kind = 0;
    for (const auto& [size, its] :
         {std::pair<std::uint32_t, std::uint32_t>(GL_TEXTURE_RED_SIZE, GL_TEXTURE_RED_TYPE),
          {GL_TEXTURE_GREEN_SIZE, GL_TEXTURE_GREEN_TYPE},
          {GL_TEXTURE_BLUE_SIZE, GL_TEXTURE_BLUE_TYPE},
          {GL_TEXTURE_ALPHA_SIZE, GL_TEXTURE_ALPHA_TYPE},
          {GL_TEXTURE_LUMINANCE_SIZE, GL_TEXTURE_LUMINANCE_TYPE},
          {GL_TEXTURE_INTENSITY_SIZE, GL_TEXTURE_INTENSITY_TYPE}}) {
        const int here_ = ask(size);
        if (!isAnswered() || here_ == 0)
            continue;
        bits = std::max(bits, here_);
        if (const std::uint32_t its_ = type(its); isAnswered() && its_ != 0)
            kind = its_;
    }
    if (depthBits > 0) {
        const bool hasStencil = isVersion(3, 0) && ask(GL_TEXTURE_STENCIL_SIZE) > 0;
        const bool isFloat = type(GL_TEXTURE_DEPTH_TYPE) == GL_FLOAT;
        form = hasStencil && !isFloat ? PixelForm{GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8, 4}
               : hasStencil           ? PixelForm{GL_DEPTH_STENCIL, GL_FLOAT_32_UNSIGNED_INT_24_8_REV, 8}
               : isFloat              ? PixelForm{GL_DEPTH_COMPONENT, GL_FLOAT, 4}
                                      : PixelForm{GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, 4};
    } else if (kind == GL_INT || kind == GL_UNSIGNED_INT) {
        form = {GL_RGBA_INTEGER, kind, 16};
    } else if (kind == GL_FLOAT || kind == GL_SIGNED_NORMALIZED || bits > 16) {
        form = {GL_RGBA, GL_FLOAT, 16};
    } else if (bits > 8) {
        form = {GL_RGBA, GL_UNSIGNED_SHORT, 8};
    }
    std::string bytes(pixels * form.bytes, '\0');
    forgetErrors();
    glGetTexImage(target, level, form.format, form.type, bytes.data());
    if (!isAnswered()) {
        missing_("An image of a texture could not be read.");
        return;
    }
    if (dimensions == 1)
        to_.add("glTexImage1D", target, level, internal, width, border, form.format, form.type, bytes);
    else if (dimensions == 2)
        to_.add("glTexImage2D", target, level, internal, width, height, border, form.format, form.type,
                bytes);
    else
        to_.add("glTexImage3D", target, level, internal, width, height, depth, border, form.format, form.type,
                bytes);
}

void StateReader::addTextureImages(std::uint32_t target) {
    if (target == GL_TEXTURE_BUFFER) {
        const std::uint32_t buffer = token(GL_TEXTURE_BUFFER_DATA_STORE_BINDING_ARB);
        if (isAnswered() && buffer != 0)
            to_.add("glTexBufferARB", GL_TEXTURE_BUFFER, token(GL_TEXTURE_BUFFER_FORMAT_ARB),
                    capturedName(ObjectKind::Buffer, buffer));
        return;
    }
    constexpr int most = 20;
    const std::uint32_t images = isCube(target) ? 6 : 1;
    for (std::uint32_t i = 0; i < images; ++i)
        for (int level = 0; level < (target == GL_TEXTURE_RECTANGLE_ARB ? 1 : most); ++level) {
            const std::uint32_t image = isCube(target) ? GL_TEXTURE_CUBE_MAP_POSITIVE_X + i : target;
            GLint width = 0;
            glGetTexLevelParameteriv(image, level, GL_TEXTURE_WIDTH, &width);
            if (!isAnswered())
                break; // there is no such level
            if (width > 0)
                addTextureImage(image, level);
        }
}

void StateReader::addTextureParameters(std::uint32_t target) {
    if (target == GL_TEXTURE_BUFFER)
        return;
    const bool isRectangle = target == GL_TEXTURE_RECTANGLE_ARB;
    struct Integer {
        std::uint32_t name;
        int plain, rectangle;
    };
    constexpr Integer integers[] = {{GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_LINEAR, GL_LINEAR},
                                    {GL_TEXTURE_MAG_FILTER, GL_LINEAR, GL_LINEAR},
                                    {GL_TEXTURE_WRAP_S, GL_REPEAT, GL_CLAMP_TO_EDGE},
                                    {GL_TEXTURE_WRAP_T, GL_REPEAT, GL_CLAMP_TO_EDGE},
                                    {GL_TEXTURE_WRAP_R, GL_REPEAT, GL_CLAMP_TO_EDGE},
                                    {GL_TEXTURE_BASE_LEVEL, 0, 0},
                                    {GL_TEXTURE_MAX_LEVEL, 1000, 1000},
                                    {GL_TEXTURE_COMPARE_MODE, GL_NONE, GL_NONE},
                                    {GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL, GL_LEQUAL},
                                    {GL_DEPTH_TEXTURE_MODE, GL_LUMINANCE, GL_LUMINANCE},
                                    {GL_GENERATE_MIPMAP, GL_FALSE, GL_FALSE}};
    for (const Integer& parameter : integers) {
        GLint value = 0;
        glGetTexParameteriv(target, parameter.name, &value);
        if (isAnswered() && value != (isRectangle ? parameter.rectangle : parameter.plain))
            to_.add("glTexParameteri", target, parameter.name, value);
    }
    const std::pair<std::uint32_t, float> reals[] = {{GL_TEXTURE_MIN_LOD, -1000.0f},
                                                     {GL_TEXTURE_MAX_LOD, 1000.0f},
                                                     {GL_TEXTURE_LOD_BIAS, 0.0f},
                                                     {GL_TEXTURE_PRIORITY, 1.0f},
                                                     {GL_TEXTURE_MAX_ANISOTROPY_EXT, 1.0f}};
    for (const auto& [name, plain] : reals) {
        float value = plain;
        glGetTexParameterfv(target, name, &value);
        if (isAnswered() && value != plain)
            to_.add("glTexParameterf", target, name, value);
    }
    float color[4] = {};
    glGetTexParameterfv(target, GL_TEXTURE_BORDER_COLOR, color);
    if (isAnswered() && (color[0] != 0 || color[1] != 0 || color[2] != 0 || color[3] != 0))
        to_.add("glTexParameterfv", target, GL_TEXTURE_BORDER_COLOR, bytesOf(color, 4));
}

void StateReader::addTextureObject(std::uint32_t target) {
    addTextureImages(target);
    addTextureParameters(target);
}

void StateReader::addTexture(std::uint64_t name) {
    const auto known = known_.textureTargets.find(name);
    const std::uint32_t now = nameNow(ObjectKind::Texture, name);
    to_.add("glGenTextures", 1, Given{bytesOf(&name, 1).substr(0, 4)});
    if (known == known_.textureTargets.end() || now == 0)
        return;
    // Of a target that is later than what is read here nothing is known to have been bound.
    const std::uint32_t binding = textureBindingOf(known->second), before = binding ? token(binding) : 0;
    glBindTexture(known->second, now);
    to_.add("glBindTexture", known->second, name);
    if (isAnswered())
        addTextureObject(known->second);
    glBindTexture(known->second, before);
    to_.add("glBindTexture", known->second, 0);
}

void StateReader::addDefaultTextures() {
    for (const std::uint32_t target : {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP}) {
        const std::uint32_t before = token(textureBindingOf(target));
        if (!isAnswered())
            continue;
        glBindTexture(target, 0);
        addTextureObject(target);
        glBindTexture(target, before);
    }
    forgetErrors();
}

void StateReader::addBuffer(std::uint64_t name) {
    const std::uint32_t now = nameNow(ObjectKind::Buffer, name);
    to_.add("glGenBuffers", 1, Given{bytesOf(&name, 1).substr(0, 4)});
    if (now == 0)
        return;
    const std::uint32_t before = token(GL_ARRAY_BUFFER_BINDING);
    gl_.cgmBindBuffer(here, 0, GL_ARRAY_BUFFER, now);
    const auto ask = [&](std::uint32_t parameter) {
        int value = 0;
        gl_.cgmGetBufferParameteriv(here, 0, GL_ARRAY_BUFFER, parameter, &value);
        return value;
    };
    if (isAnswered()) {
        to_.add("glBindBuffer", GL_ARRAY_BUFFER, name);
        std::string bytes(static_cast<std::size_t>(ask(GL_BUFFER_SIZE)), '\0');
        // While it is mapped it can't be read.
        void* mapped = nullptr;
        int offset = 0, length = 0, access = 0;
        if (ask(GL_BUFFER_MAPPED)) {
            gl_.cgmGetBufferPointerv(here, 0, GL_ARRAY_BUFFER, GL_BUFFER_MAP_POINTER, &mapped);
            const bool isRange = isVersion(3, 0) || has("GL_ARB_map_buffer_range");
            access = ask(isRange ? GL_BUFFER_ACCESS_FLAGS : GL_BUFFER_ACCESS);
            offset = isRange ? ask(GL_BUFFER_MAP_OFFSET) : 0;
            length = isRange ? ask(GL_BUFFER_MAP_LENGTH) : 0;
            gl_.cgmUnmapBuffer(here, 0, GL_ARRAY_BUFFER);
        }
        if (!bytes.empty())
            gl_.cgmGetBufferSubData(here, 0, GL_ARRAY_BUFFER, 0, static_cast<long long>(bytes.size()),
                                    bytes.data());
        const int usage = ask(GL_BUFFER_USAGE);
        if (!bytes.empty())
            to_.add("glBufferData", GL_ARRAY_BUFFER, bytes.size(), bytes, usage);
        for (const auto& [captured, map] : context_.maps)
            if (mapped && map.address == mapped) {
                constexpr int invalidates = GL_MAP_INVALIDATE_RANGE_BIT | GL_MAP_INVALIDATE_BUFFER_BIT;
                if (length > 0)
                    to_.addMaking("glMapBufferRange", captured, GL_ARRAY_BUFFER, offset, length,
                                  access & ~invalidates);
                else
                    to_.addMaking("glMapBuffer", captured, GL_ARRAY_BUFFER, access);
            }
        to_.add("glBindBuffer", GL_ARRAY_BUFFER, 0);
    }
    gl_.cgmBindBuffer(here, 0, GL_ARRAY_BUFFER, before);
    forgetErrors();
}

void StateReader::addAssemblyProgram(std::uint64_t name) {
    const auto known = known_.assemblyTargets.find(name);
    const std::uint32_t now = nameNow(ObjectKind::AssemblyProgram, name);
    to_.add("glGenProgramsARB", 1, Given{bytesOf(&name, 1).substr(0, 4)});
    if (known == known_.assemblyTargets.end() || now == 0)
        return;
    const std::uint32_t target = known->second;
    const auto ask = [&](std::uint32_t parameter) {
        int value = 0;
        gl_.cgmGetProgramivARB(here, 0, target, parameter, &value);
        return value;
    };
    const auto before = static_cast<std::uint32_t>(ask(GL_PROGRAM_BINDING_ARB));
    gl_.cgmBindProgramARB(here, 0, target, now);
    to_.add("glBindProgramARB", target, name);
    std::string text(static_cast<std::size_t>(ask(GL_PROGRAM_LENGTH_ARB)), '\0');
    if (!text.empty()) {
        gl_.cgmGetProgramStringARB(here, 0, target, GL_PROGRAM_STRING_ARB, text.data());
        to_.add("glProgramStringARB", target, GL_PROGRAM_FORMAT_ASCII_ARB, text.size(), text);
    }
    const int count = ask(GL_MAX_PROGRAM_LOCAL_PARAMETERS_ARB);
    for (unsigned int i = 0; i < static_cast<unsigned int>(std::min(count, 4096)); ++i) {
        float values[4] = {};
        gl_.cgmGetProgramLocalParameterfvARB(here, 0, target, i, values);
        if (values[0] != 0 || values[1] != 0 || values[2] != 0 || values[3] != 0)
            to_.add("glProgramLocalParameter4fvARB", target, i, bytesOf(values, 4));
    }
    gl_.cgmBindProgramARB(here, 0, target, before);
    to_.add("glBindProgramARB", target, 0);
    forgetErrors();
}

void StateReader::addQuery(std::uint64_t name) {
    to_.add("glGenQueries", 1, Given{bytesOf(&name, 1).substr(0, 4)});
    const auto known = known_.queryTargets.find(name);
    if (known == known_.queryTargets.end())
        return;
    int current = 0;
    gl_.cgmGetQueryiv(here, 0, known->second, GL_CURRENT_QUERY, &current);
    to_.add("glBeginQuery", known->second, name);
    if (static_cast<std::uint32_t>(current) == nameNow(ObjectKind::Query, name) && current != 0)
        missing_("A query was begun before the first frame, and counts from there.");
    else
        to_.add("glEndQuery", known->second);
    forgetErrors();
}

void StateReader::addVertexArray(std::uint64_t name) {
    const std::uint32_t now = nameNow(ObjectKind::VertexArray, name);
    to_.add("glGenVertexArrays", 1, Given{bytesOf(&name, 1).substr(0, 4)});
    if (now == 0)
        return;
    const std::uint32_t before = token(GL_VERTEX_ARRAY_BINDING), buffer = token(GL_ARRAY_BUFFER_BINDING);
    gl_.cgmBindVertexArray(here, 0, now);
    to_.add("glBindVertexArray", name);
    if (isAnswered())
        addArrays();
    gl_.cgmBindVertexArray(here, 0, before);
    gl_.cgmBindBuffer(here, 0, GL_ARRAY_BUFFER, buffer);
    to_.add("glBindVertexArray", 0);
    forgetErrors();
}

} // namespace ZLT::Capture
