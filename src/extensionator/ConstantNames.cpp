#include "extensionator/ConstantNames.h"

#include "extensionator/TokenName.h"
#include "platform/GL.h"

#include <algorithm>

namespace ZLT::OGL {

namespace {

constexpr const char* primitives[] = {"GL_POINTS",
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

bool isPrimitive(std::string_view function, unsigned int parameter) {
    return parameter == 0 && (function == "glBegin" || function.starts_with("glMultiDraw") ||
                              function.starts_with("glBeginTransformFeedback") ||
                              (function.starts_with("glDraw") && !function.starts_with("glDrawBuffer")));
}

// These are bits of a mask too, of which TokenName() has the names.
constexpr NamedConstant twice[] = {
    {GL_ACCUM, "GL_ACCUM"}, {GL_NEVER, "GL_NEVER"},   {GL_FRONT_LEFT, "GL_FRONT_LEFT"}, {GL_EXP, "GL_EXP"},
    {GL_S, "GL_S"},         {GL_LIGHT0, "GL_LIGHT0"}, {GL_ABGR_EXT, "GL_ABGR_EXT"}};

constexpr NamedConstant clearBits[] = {{GL_COLOR_BUFFER_BIT, "GL_COLOR_BUFFER_BIT"},
                                       {GL_DEPTH_BUFFER_BIT, "GL_DEPTH_BUFFER_BIT"},
                                       {GL_STENCIL_BUFFER_BIT, "GL_STENCIL_BUFFER_BIT"},
                                       {GL_ACCUM_BUFFER_BIT, "GL_ACCUM_BUFFER_BIT"}};
// The set of all of them is smaller in old headers, and in those of Windows.
constexpr NamedConstant attributeBits[] = {{0xFFFFFFFF, "GL_ALL_ATTRIB_BITS"},
                                           {0x000FFFFF, "GL_ALL_ATTRIB_BITS"},
                                           {GL_CURRENT_BIT, "GL_CURRENT_BIT"},
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
constexpr NamedConstant clientBits[] = {{0xFFFFFFFF, "GL_CLIENT_ALL_ATTRIB_BITS"},
                                        {GL_CLIENT_PIXEL_STORE_BIT, "GL_CLIENT_PIXEL_STORE_BIT"},
                                        {GL_CLIENT_VERTEX_ARRAY_BIT, "GL_CLIENT_VERTEX_ARRAY_BIT"}};
constexpr NamedConstant mapBits[] = {{GL_MAP_READ_BIT, "GL_MAP_READ_BIT"},
                                     {GL_MAP_WRITE_BIT, "GL_MAP_WRITE_BIT"},
                                     {GL_MAP_INVALIDATE_RANGE_BIT, "GL_MAP_INVALIDATE_RANGE_BIT"},
                                     {GL_MAP_INVALIDATE_BUFFER_BIT, "GL_MAP_INVALIDATE_BUFFER_BIT"},
                                     {GL_MAP_FLUSH_EXPLICIT_BIT, "GL_MAP_FLUSH_EXPLICIT_BIT"},
                                     {GL_MAP_UNSYNCHRONIZED_BIT, "GL_MAP_UNSYNCHRONIZED_BIT"}};

struct BitSet {
    std::string_view function;
    unsigned int parameter;
    std::span<const NamedConstant> names;
};
constexpr BitSet bitSets[] = {{"glClear", 0, clearBits},
                              {"glPushAttrib", 0, attributeBits},
                              {"glPushClientAttrib", 0, clientBits},
                              {"glPushClientAttribDefaultEXT", 0, clientBits},
                              {"glClientAttribDefaultEXT", 0, clientBits},
                              {"glBlitFramebuffer", 8, clearBits},
                              {"glBlitFramebufferEXT", 8, clearBits},
                              {"glMapBufferRange", 3, mapBits}};

// Whether the values of this parameter of glTexParameteri and the like are constants.
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

} // namespace

const char* constantName(std::string_view function, unsigned int parameter, std::uint32_t value) {
    if (isPrimitive(function, parameter))
        return value < std::size(primitives) ? primitives[value] : nullptr;
    if (value <= 1 && (function.starts_with("glBlend") || function.starts_with("glStencilOp")))
        return value == 0 ? "GL_ZERO" : "GL_ONE";
    if (value == 0)
        return function == "glGetError" ? "GL_NO_ERROR" : "GL_NONE";
    const auto other = std::ranges::find(twice, value, &NamedConstant::value);
    if (other != std::end(twice))
        return other->name;
    // Small numbers are many constants, or none; large ones are bits.
    if (value < 0x100 || value > 0xFFFF)
        return nullptr;
    const char* const name = TokenName(value);
    // Where a token is wanted, the name of a bit of a mask would mislead.
    const std::string_view text = name;
    return text == "Unknown Token" || text.ends_with("_BIT") ? nullptr : name;
}

std::span<const NamedConstant> bitNames(std::string_view function, unsigned int parameter) {
    const auto set = std::ranges::find_if(
        bitSets, [&](const BitSet& one) { return one.function == function && one.parameter == parameter; });
    return set == std::end(bitSets) ? std::span<const NamedConstant>() : set->names;
}

bool isConstant(std::string_view function, unsigned int parameter, std::uint32_t before,
                std::uint32_t value) {
    constexpr std::string_view images[] = {"glTexImage", "glTextureImage", "glMultiTexImage"};
    for (const std::string_view image : images)
        if (function.starts_with(image)) // up to 4 it is a number of components
            return parameter == (image == images[0] ? 2 : 3) && value > 4;
    constexpr std::string_view setters[] = {
        "TexParameter", "TextureParameter", "PointParameter", "TexEnv", "TexGen", "glFog", "glLightModel"};
    return parameter > 0 && hasConstants(before) && std::ranges::any_of(setters, [&](std::string_view one) {
               return function.find(one) != std::string_view::npos;
           });
}

} // namespace ZLT::OGL
