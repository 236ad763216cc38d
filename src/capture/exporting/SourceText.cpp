#include "capture/exporting/SourceText.h"

#include "extensionator/TokenName.h"
#include "platform/GL.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <span>
#include <utility>

namespace ZLT::Capture {

namespace {

template <class Value>
void append(std::string& to, Value value) {
    char text[40];
    to.append(text, std::to_chars(text, text + sizeof text, value).ptr);
}

void appendHex(std::string& to, std::uint64_t value) {
    char text[24] = "0x";
    to.append(text, std::to_chars(text + 2, text + sizeof text, value, 16).ptr);
}

// As C++ takes it: "1" would be an integer.
template <class Value>
void appendReal(std::string& to, Value value) {
    const std::size_t start = to.size();
    append(to, value);
    if (to.find_first_of(".e", start) == std::string::npos)
        to += ".0";
}

} // namespace

void appendFloat(std::string& to, float value) {
    if (std::isfinite(value)) {
        appendReal(to, value);
        to += 'f';
        return;
    }
    to += "float_of(";
    appendHex(to, std::bit_cast<std::uint32_t>(value));
    to += ')';
}

void appendDouble(std::string& to, double value) {
    if (std::isfinite(value)) {
        appendReal(to, value);
        return;
    }
    to += "double_of(";
    appendHex(to, std::bit_cast<std::uint64_t>(value));
    to += ')';
}

void appendNumber(std::string& to, std::int64_t value) {
    // The smallest ones have no literal: a minus stands in front of one that is too large.
    if (value == INT32_MIN)
        to += "(-2147483647 - 1)";
    else if (value == INT64_MIN)
        to += "(-9223372036854775807 - 1)";
    else
        append(to, value);
}

void appendNumber(std::string& to, std::uint64_t value) {
    append(to, value);
    if (value > INT32_MAX)
        to += 'u';
}

void appendText(std::string& to, std::string_view text) {
    to += '"';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char letter = text[i];
        if (letter == '"' || letter == '\\')
            (to += '\\') += letter;
        else if (letter == '\n') {
            to += "\\n";
            if (i + 1 < text.size())
                to += "\"\n        \"";
        } else if (letter == '\t')
            to += "\\t";
        else if (letter == '?')
            to += "\\?"; // no trigraphs
        else if (static_cast<unsigned char>(letter) < ' ' || static_cast<unsigned char>(letter) >= 0x7F) {
            const auto code = static_cast<unsigned char>(letter);
            to += '\\';
            for (const int shift : {6, 3, 0})
                to += static_cast<char>('0' + ((code >> shift) & 7));
        } else
            to += letter;
    }
    to += '"';
}

void appendComment(std::string& to, std::string_view text) {
    for (const char letter : text)
        to += static_cast<unsigned char>(letter) < ' ' || letter == 0x7F ? ' ' : letter;
    if (text.ends_with('\\')) // the next line would belong to it
        to += '.';
}

void ConstantText::use(std::string_view name, std::uint32_t value) {
    if (!used_.contains(name))
        used_.emplace(name, value);
}

void ConstantText::append(std::string& to, std::uint32_t value) {
    // Small numbers are many constants.
    if (value == 0) {
        use("GL_NONE", 0);
        to += "GL_NONE";
        return;
    }
    // These are bits of a mask too, of which TokenName() has the names.
    constexpr std::pair<std::uint32_t, const char*> twice[] = {{GL_NEVER, "GL_NEVER"},
                                                               {GL_FRONT_LEFT, "GL_FRONT_LEFT"},
                                                               {GL_EXP, "GL_EXP"},
                                                               {GL_S, "GL_S"},
                                                               {GL_LIGHT0, "GL_LIGHT0"}};
    std::string_view name = value < 0x100 ? "Unknown Token" : OGL::TokenName(value);
    for (const auto& [constant, other] : twice)
        if (value == constant)
            name = other;
    // Where a token is wanted, the name of a bit of a mask would mislead.
    if (name == "Unknown Token" || name.ends_with("_BIT")) {
        appendHex(to, value);
        return;
    }
    use(name, value);
    to += name;
}

void ConstantText::appendPrimitive(std::string& to, std::uint32_t value) {
    constexpr const char* names[] = {"GL_POINTS",
                                     "GL_LINES",
                                     "GL_LINE_LOOP",
                                     "GL_LINE_STRIP",
                                     "GL_TRIANGLES",
                                     "GL_TRIANGLE_STRIP",
                                     "GL_TRIANGLE_FAN",
                                     "GL_QUADS",
                                     "GL_QUAD_STRIP",
                                     "GL_POLYGON",
                                     "GL_LINES_ADJACENCY",
                                     "GL_LINE_STRIP_ADJACENCY",
                                     "GL_TRIANGLES_ADJACENCY",
                                     "GL_TRIANGLE_STRIP_ADJACENCY"};
    if (value >= std::size(names))
        return append(to, value);
    use(names[value], value);
    to += names[value];
}

namespace {

struct Bit {
    std::uint32_t value;
    const char* name;
};
constexpr Bit clearBits[] = {{GL_COLOR_BUFFER_BIT, "GL_COLOR_BUFFER_BIT"},
                             {GL_DEPTH_BUFFER_BIT, "GL_DEPTH_BUFFER_BIT"},
                             {GL_STENCIL_BUFFER_BIT, "GL_STENCIL_BUFFER_BIT"},
                             {GL_ACCUM_BUFFER_BIT, "GL_ACCUM_BUFFER_BIT"}};
constexpr Bit attributeBits[] = {{GL_CURRENT_BIT, "GL_CURRENT_BIT"},
                                 {GL_POINT_BIT, "GL_POINT_BIT"},
                                 {GL_LINE_BIT, "GL_LINE_BIT"},
                                 {GL_POLYGON_BIT, "GL_POLYGON_BIT"},
                                 {GL_POLYGON_STIPPLE_BIT, "GL_POLYGON_STIPPLE_BIT"},
                                 {GL_PIXEL_MODE_BIT, "GL_PIXEL_MODE_BIT"},
                                 {GL_LIGHTING_BIT, "GL_LIGHTING_BIT"},
                                 {GL_FOG_BIT, "GL_FOG_BIT"},
                                 {GL_DEPTH_BUFFER_BIT, "GL_DEPTH_BUFFER_BIT"},
                                 {GL_ACCUM_BUFFER_BIT, "GL_ACCUM_BUFFER_BIT"},
                                 {GL_STENCIL_BUFFER_BIT, "GL_STENCIL_BUFFER_BIT"},
                                 {GL_VIEWPORT_BIT, "GL_VIEWPORT_BIT"},
                                 {GL_TRANSFORM_BIT, "GL_TRANSFORM_BIT"},
                                 {GL_ENABLE_BIT, "GL_ENABLE_BIT"},
                                 {GL_COLOR_BUFFER_BIT, "GL_COLOR_BUFFER_BIT"},
                                 {GL_HINT_BIT, "GL_HINT_BIT"},
                                 {GL_EVAL_BIT, "GL_EVAL_BIT"},
                                 {GL_LIST_BIT, "GL_LIST_BIT"},
                                 {GL_TEXTURE_BIT, "GL_TEXTURE_BIT"},
                                 {GL_SCISSOR_BIT, "GL_SCISSOR_BIT"},
                                 {GL_MULTISAMPLE_BIT, "GL_MULTISAMPLE_BIT"}};
constexpr Bit clientBits[] = {{GL_CLIENT_PIXEL_STORE_BIT, "GL_CLIENT_PIXEL_STORE_BIT"},
                              {GL_CLIENT_VERTEX_ARRAY_BIT, "GL_CLIENT_VERTEX_ARRAY_BIT"}};
constexpr Bit mapBits[] = {{GL_MAP_READ_BIT, "GL_MAP_READ_BIT"},
                           {GL_MAP_WRITE_BIT, "GL_MAP_WRITE_BIT"},
                           {GL_MAP_INVALIDATE_RANGE_BIT, "GL_MAP_INVALIDATE_RANGE_BIT"},
                           {GL_MAP_INVALIDATE_BUFFER_BIT, "GL_MAP_INVALIDATE_BUFFER_BIT"},
                           {GL_MAP_FLUSH_EXPLICIT_BIT, "GL_MAP_FLUSH_EXPLICIT_BIT"},
                           {GL_MAP_UNSYNCHRONIZED_BIT, "GL_MAP_UNSYNCHRONIZED_BIT"}};

std::span<const Bit> bitsOf(std::string_view function) {
    if (function.find("MapBufferRange") != std::string_view::npos)
        return mapBits;
    if (function.find("PushClientAttrib") != std::string_view::npos ||
        function.find("ClientAttribDefault") != std::string_view::npos)
        return clientBits;
    return function == "glPushAttrib" ? std::span<const Bit>(attributeBits) : clearBits;
}

} // namespace

void ConstantText::appendBits(std::string& to, std::string_view function, std::uint32_t value) {
    const std::span<const Bit> bits = bitsOf(function);
    const std::uint32_t all = bits.data() == attributeBits ? GL_ALL_ATTRIB_BITS
                              : bits.data() == clientBits  ? GL_CLIENT_ALL_ATTRIB_BITS
                                                           : 0;
    if (all != 0 && (value == all || (bits.data() == attributeBits && value == 0x000FFFFF))) {
        const char* const name =
            bits.data() == clientBits ? "GL_CLIENT_ALL_ATTRIB_BITS" : "GL_ALL_ATTRIB_BITS";
        use(name, value);
        to += name;
        return;
    }
    std::uint32_t left = value;
    const char* separator = "";
    for (const Bit& bit : bits)
        if (left & bit.value) {
            use(bit.name, bit.value);
            (to += separator) += bit.name;
            left &= ~bit.value;
            separator = " | ";
        }
    if (left != 0 || value == 0) {
        to += separator;
        left == 0 ? to += '0' : (appendHex(to, left), to);
    }
}

bool isBits(const Function& function, const Parameter& parameter) {
    constexpr std::string_view functions[] = {"glClear",
                                              "glPushAttrib",
                                              "glPushClientAttrib",
                                              "glBlitFramebuffer",
                                              "glMapBufferRange",
                                              "glBlitFramebufferEXT",
                                              "glPushClientAttribDefaultEXT",
                                              "glClientAttribDefaultEXT"};
    return (parameter.name == "mask" || parameter.name == "access") &&
           std::ranges::find(functions, function.name) != std::end(functions);
}

bool hasConstants(std::uint32_t name) {
    constexpr std::uint32_t names[] = {GL_TEXTURE_MIN_FILTER,
                                       GL_TEXTURE_MAG_FILTER,
                                       GL_TEXTURE_WRAP_S,
                                       GL_TEXTURE_WRAP_T,
                                       GL_TEXTURE_WRAP_R,
                                       GL_TEXTURE_COMPARE_MODE,
                                       GL_TEXTURE_COMPARE_FUNC,
                                       GL_DEPTH_TEXTURE_MODE,
                                       GL_TEXTURE_ENV_MODE,
                                       GL_COMBINE_RGB,
                                       GL_COMBINE_ALPHA,
                                       GL_SRC0_RGB,
                                       GL_SRC1_RGB,
                                       GL_SRC2_RGB,
                                       GL_SRC0_ALPHA,
                                       GL_SRC1_ALPHA,
                                       GL_SRC2_ALPHA,
                                       GL_OPERAND0_RGB,
                                       GL_OPERAND1_RGB,
                                       GL_OPERAND2_RGB,
                                       GL_OPERAND0_ALPHA,
                                       GL_OPERAND1_ALPHA,
                                       GL_OPERAND2_ALPHA,
                                       GL_TEXTURE_GEN_MODE,
                                       GL_FOG_MODE,
                                       GL_FOG_COORD_SRC,
                                       GL_LIGHT_MODEL_COLOR_CONTROL,
                                       GL_POINT_SPRITE_COORD_ORIGIN};
    return std::ranges::find(names, name) != std::end(names);
}

void ConstantText::append(std::string& to, const Function& function, const Parameter& parameter,
                          std::uint32_t value) {
    const std::string_view name = parameter.name;
    const std::string_view of = function.name;
    if (name == "mode" &&
        (of.starts_with("glDraw") || of.starts_with("glBegin") || of.starts_with("glMulti")))
        return appendPrimitive(to, value);
    if (value <= 1 && (of.starts_with("glBlend") || of.starts_with("glStencilOp"))) {
        use(value == 0 ? "GL_ZERO" : "GL_ONE", value);
        to += value == 0 ? "GL_ZERO" : "GL_ONE";
        return;
    }
    append(to, value);
}

} // namespace ZLT::Capture
