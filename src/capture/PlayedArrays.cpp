#include "capture/PlayedArrays.h"

#include "capture/CapturedContext.h"
#include "capture/PlayedEntries.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace ZLT::Capture {

namespace {

constexpr const char* here = "capture";

float floatOfHalf(std::uint16_t half) {
    const int exponent = (half >> 10) & 0x1F;
    const float fraction = static_cast<float>(half & 0x3FF);
    const float value = exponent == 0    ? std::ldexp(fraction, -24)
                        : exponent == 31 ? (fraction == 0 ? std::numeric_limits<float>::infinity()
                                                          : std::numeric_limits<float>::quiet_NaN())
                                         : std::ldexp(fraction + 1024, exponent - 25);
    return half & 0x8000 ? -value : value;
}

// One element, with four components: what the array lacks is 0, and the last one `one`.
template <class Value>
std::array<Value, 4> components(const PlayedArray& array, Value one) {
    std::array<Value, 4> values = {0, 0, 0, one};
    const bool isReversed = array.size == GL_BGRA;
    const std::size_t count = isReversed ? 4 : static_cast<std::size_t>(std::clamp(array.size, 0, 4));
    const std::size_t size = array.type == GL_HALF_FLOAT ? 2 : sizeof(Value);
    for (std::size_t i = 0; i < count && (i + 1) * size <= array.bytes.size(); ++i) {
        if (array.type == GL_HALF_FLOAT) {
            std::uint16_t half;
            std::memcpy(&half, array.data() + i * size, size);
            values[i] = static_cast<Value>(floatOfHalf(half));
        } else {
            std::memcpy(&values[i], array.data() + i * size, size);
        }
    }
    if (isReversed)
        std::swap(values[0], values[2]);
    return values;
}

// The call of immediate mode for an element of an array of this kind and type.
struct ElementEntry {
    ArrayKind kind;
    std::uint32_t type;
    const char* name;
};
constexpr ElementEntry elementEntries[] = {
    {ArrayKind::Color, GL_BYTE, "glColor4bv"},
    {ArrayKind::Color, GL_UNSIGNED_BYTE, "glColor4ubv"},
    {ArrayKind::Color, GL_SHORT, "glColor4sv"},
    {ArrayKind::Color, GL_UNSIGNED_SHORT, "glColor4usv"},
    {ArrayKind::Color, GL_INT, "glColor4iv"},
    {ArrayKind::Color, GL_UNSIGNED_INT, "glColor4uiv"},
    {ArrayKind::Color, GL_FLOAT, "glColor4fv"},
    {ArrayKind::Color, GL_DOUBLE, "glColor4dv"},
    {ArrayKind::SecondaryColor, GL_BYTE, "glSecondaryColor3bv"},
    {ArrayKind::SecondaryColor, GL_UNSIGNED_BYTE, "glSecondaryColor3ubv"},
    {ArrayKind::SecondaryColor, GL_SHORT, "glSecondaryColor3sv"},
    {ArrayKind::SecondaryColor, GL_UNSIGNED_SHORT, "glSecondaryColor3usv"},
    {ArrayKind::SecondaryColor, GL_INT, "glSecondaryColor3iv"},
    {ArrayKind::SecondaryColor, GL_UNSIGNED_INT, "glSecondaryColor3uiv"},
    {ArrayKind::SecondaryColor, GL_FLOAT, "glSecondaryColor3fv"},
    {ArrayKind::SecondaryColor, GL_DOUBLE, "glSecondaryColor3dv"},
    {ArrayKind::Normal, GL_BYTE, "glNormal3bv"},
    {ArrayKind::Normal, GL_SHORT, "glNormal3sv"},
    {ArrayKind::Normal, GL_INT, "glNormal3iv"},
    {ArrayKind::Normal, GL_FLOAT, "glNormal3fv"},
    {ArrayKind::Normal, GL_DOUBLE, "glNormal3dv"},
    {ArrayKind::Vertex, GL_SHORT, "glVertex4sv"},
    {ArrayKind::Vertex, GL_INT, "glVertex4iv"},
    {ArrayKind::Vertex, GL_FLOAT, "glVertex4fv"},
    {ArrayKind::Vertex, GL_DOUBLE, "glVertex4dv"},
    {ArrayKind::TexCoord, GL_SHORT, "glTexCoord4sv"},
    {ArrayKind::TexCoord, GL_INT, "glTexCoord4iv"},
    {ArrayKind::TexCoord, GL_FLOAT, "glTexCoord4fv"},
    {ArrayKind::TexCoord, GL_DOUBLE, "glTexCoord4dv"},
    {ArrayKind::Index, GL_UNSIGNED_BYTE, "glIndexubv"},
    {ArrayKind::Index, GL_SHORT, "glIndexsv"},
    {ArrayKind::Index, GL_INT, "glIndexiv"},
    {ArrayKind::Index, GL_FLOAT, "glIndexfv"},
    {ArrayKind::Index, GL_DOUBLE, "glIndexdv"},
    {ArrayKind::FogCoord, GL_FLOAT, "glFogCoordfv"},
    {ArrayKind::FogCoord, GL_DOUBLE, "glFogCoorddv"},
    {ArrayKind::Attribute, GL_FLOAT, "glVertexAttrib4fv"},
    {ArrayKind::Attribute, GL_DOUBLE, "glVertexAttrib4dv"},
    {ArrayKind::Attribute, GL_BYTE, "glVertexAttrib4bv"},
    {ArrayKind::Attribute, GL_UNSIGNED_BYTE, "glVertexAttrib4ubv"},
    {ArrayKind::Attribute, GL_SHORT, "glVertexAttrib4sv"},
    {ArrayKind::Attribute, GL_UNSIGNED_SHORT, "glVertexAttrib4usv"},
    {ArrayKind::Attribute, GL_INT, "glVertexAttrib4iv"},
    {ArrayKind::Attribute, GL_UNSIGNED_INT, "glVertexAttrib4uiv"},
};

// glVertexAttrib4fv takes values as they are, glVertexAttrib4Nubv as parts of the largest, glVertexAttribI4iv
// keeps them integers.
std::string nameOfEntry(const PlayedArray& array) {
    const std::uint32_t type = array.type == GL_HALF_FLOAT ? GL_FLOAT : array.type;
    for (const ElementEntry& entry : elementEntries) {
        if (entry.kind != array.kind || entry.type != type)
            continue;
        std::string name = entry.name;
        constexpr std::size_t number = std::char_traits<char>::length("glVertexAttrib");
        if (array.kind == ArrayKind::Attribute && type != GL_FLOAT && type != GL_DOUBLE) {
            if (array.flags & arrayIsInteger)
                name.insert(number, "I");
            else if (array.flags & arrayIsNormalized)
                name.insert(number + 1, "N");
        }
        // A driver without units has but one.
        return array.kind == ArrayKind::TexCoord && array.index != 0 ? "glMultiTex" + name.substr(5) : name;
    }
    return {}; // of extensions that no driver has which could be asked
}

template <class Value>
std::string bytesOf(const PlayedArray& array, bool isScaled) {
    // One is the largest value where values stand for a part of it.
    const Value one =
        isScaled && std::numeric_limits<Value>::is_integer ? std::numeric_limits<Value>::max() : Value(1);
    const std::array<Value, 4> values = components<Value>(array, one);
    return {reinterpret_cast<const char*>(values.data()), sizeof values};
}

std::string bytesOf(const PlayedArray& array) {
    const bool isScaled = array.kind == ArrayKind::Color || array.kind == ArrayKind::SecondaryColor ||
                          (array.kind == ArrayKind::Attribute && (array.flags & arrayIsNormalized) != 0);
    switch (array.type) {
    case GL_BYTE:
        return bytesOf<signed char>(array, isScaled);
    case GL_UNSIGNED_BYTE:
        return bytesOf<unsigned char>(array, isScaled);
    case GL_SHORT:
        return bytesOf<short>(array, isScaled);
    case GL_UNSIGNED_SHORT:
        return bytesOf<unsigned short>(array, isScaled);
    case GL_INT:
        return bytesOf<int>(array, isScaled);
    case GL_UNSIGNED_INT:
        return bytesOf<unsigned int>(array, isScaled);
    case GL_DOUBLE:
        return bytesOf<double>(array, isScaled);
    default:
        return bytesOf<float>(array, isScaled);
    }
}

// It makes the vertex, and so it comes last.
bool isVertex(const PlayedArray& array) {
    return array.kind == ArrayKind::Vertex || (array.kind == ArrayKind::Attribute && array.index == 0);
}

} // namespace

PlayedArray arrayOf(const CapturedCall& call) {
    PlayedArray array;
    array.kind = static_cast<ArrayKind>(call.u32(0));
    array.index = call.u32(1);
    array.size = call.i32(2);
    array.type = call.u32(3);
    array.stride = call.i32(4);
    array.flags = call.u32(5);
    array.first = call.values[6].bits;
    array.bytes = call.values[7].bytes;
    array.held = call.held;
    return array;
}

ArraysForDraw::ArraysForDraw(OGL::OpenGLInterceptor& gl, const CapturedContext& context,
                             const std::vector<PlayedArray>& arrays)
    : gl_(gl), context_(context) {
    if (arrays.empty())
        return;
    if (context.hasBuffers) {
        gl.cgmGetIntegerv(here, 0, GL_ARRAY_BUFFER_BINDING, &buffer_);
        if (buffer_ != 0)
            gl.cgmBindBuffer(here, 0, GL_ARRAY_BUFFER, 0);
    }
    for (const PlayedArray& array : arrays)
        point(array);
}

ArraysForDraw::~ArraysForDraw() {
    if (buffer_ != 0)
        gl_.cgmBindBuffer(here, 0, GL_ARRAY_BUFFER, static_cast<unsigned int>(buffer_));
}

void ArraysForDraw::point(const PlayedArray& array) const {
    ClientArray shape;
    shape.size = array.size;
    shape.type = array.type;
    shape.stride = array.stride;
    // As if the elements in front were there too: nothing of them is read.
    auto* const pointer = reinterpret_cast<void*>( // which some functions want without const

        reinterpret_cast<std::uintptr_t>(array.data()) - array.first * shape.step());
    switch (array.kind) {
    case ArrayKind::Vertex:
        return gl_.cgmVertexPointer(here, 0, array.size, array.type, array.stride, pointer);
    case ArrayKind::Normal:
        return gl_.cgmNormalPointer(here, 0, array.type, array.stride, pointer);
    case ArrayKind::Color:
        return gl_.cgmColorPointer(here, 0, array.size, array.type, array.stride, pointer);
    case ArrayKind::SecondaryColor:
        return gl_.cgmSecondaryColorPointer(here, 0, array.size, array.type, array.stride, pointer);
    case ArrayKind::FogCoord:
        return gl_.cgmFogCoordPointer(here, 0, array.type, array.stride, pointer);
    case ArrayKind::Index:
        return gl_.cgmIndexPointer(here, 0, array.type, array.stride, pointer);
    case ArrayKind::EdgeFlag:
        return gl_.cgmEdgeFlagPointer(here, 0, array.stride, pointer);
    case ArrayKind::TexCoord: {
        int active = GL_TEXTURE0;
        if (context_.textureUnits > 1) {
            gl_.cgmGetIntegerv(here, 0, GL_CLIENT_ACTIVE_TEXTURE, &active);
            gl_.cgmClientActiveTexture(here, 0, GL_TEXTURE0 + array.index);
        }
        gl_.cgmTexCoordPointer(here, 0, array.size, array.type, array.stride, pointer);
        if (context_.textureUnits > 1)
            gl_.cgmClientActiveTexture(here, 0, static_cast<unsigned int>(active));
        return;
    }
    case ArrayKind::Attribute:
        if (array.flags & arrayIsInteger)
            return gl_.cgmVertexAttribIPointer(here, 0, array.index, array.size, array.type, array.stride,
                                               pointer);
        return gl_.cgmVertexAttribPointer(here, 0, array.index, array.size, array.type,
                                          (array.flags & arrayIsNormalized) != 0, array.stride, pointer);
    case ArrayKind::Weight:
        return gl_.cgmWeightPointerARB(here, 0, array.size, array.type, array.stride, pointer);
    case ArrayKind::MatrixIndex:
        return gl_.cgmMatrixIndexPointerARB(here, 0, array.size, array.type, array.stride, pointer);
    case ArrayKind::Tangent:
        return gl_.cgmTangentPointerEXT(here, 0, array.type, array.stride, pointer);
    case ArrayKind::Binormal:
        return gl_.cgmBinormalPointerEXT(here, 0, array.type, array.stride, pointer);
    case ArrayKind::VertexWeight:
        return gl_.cgmVertexWeightPointerEXT(here, 0, array.size, array.type, array.stride, pointer);
    case ArrayKind::Element:
        if (context_.has("GL_ATI_element_array"))
            return gl_.cgmElementPointerATI(here, 0, array.type, pointer);
        return gl_.cgmElementPointerAPPLE(here, 0, array.type, pointer);
    default:
        return;
    }
}

std::vector<ElementCall> elementCalls(const std::vector<PlayedArray>& arrays) {
    std::vector<ElementCall> calls;
    for (const bool last : {false, true})
        for (const PlayedArray& array : arrays) {
            if (isVertex(array) != last || array.bytes.empty())
                continue;
            const bool isFlag = array.kind == ArrayKind::EdgeFlag;
            const Function* const function = functionNamed(isFlag ? "glEdgeFlag" : nameOfEntry(array));
            if (!function)
                continue;
            ElementCall one = {function, std::nullopt,
                               isFlag ? std::string(1, array.bytes[0]) : bytesOf(array)};
            if (array.kind == ArrayKind::Attribute)
                one.index = array.index;
            else if (array.kind == ArrayKind::TexCoord && array.index != 0)
                one.index = GL_TEXTURE0 + array.index;
            calls.push_back(std::move(one));
        }
    return calls;
}

void playElement(OGL::OpenGLInterceptor& gl, const std::vector<PlayedArray>& arrays) {
    for (const ElementCall& one : elementCalls(arrays)) {
        std::uint64_t arguments[2] = {}, result = 0;
        std::size_t count = 0;
        if (one.index)
            arguments[count++] = *one.index;
        arguments[count] = one.function->parameters.back().form == 'p'
                               ? reinterpret_cast<std::uintptr_t>(one.bytes.data())
                               : static_cast<unsigned char>(one.bytes[0]);
        playerOf(one.function->number - firstEntry)(gl, here, 0, arguments, result);
    }
}

} // namespace ZLT::Capture
