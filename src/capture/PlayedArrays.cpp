#include "capture/PlayedArrays.h"

#include "capture/CapturedContext.h"

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

// The functions of one kind, by the type of what they take.
template <class Call>
bool callByType(const PlayedArray& array, bool isScaled, const Call& call) {
    const auto with = [&]<class Value>(Value) {
        // One is the largest value where values stand for a part of it.
        const Value one =
            isScaled && std::numeric_limits<Value>::is_integer ? std::numeric_limits<Value>::max() : Value(1);
        call(components<Value>(array, one));
        return true;
    };
    switch (array.type) {
    case GL_BYTE:
        return with(static_cast<signed char>(0));
    case GL_UNSIGNED_BYTE:
        return with(static_cast<unsigned char>(0));
    case GL_SHORT:
        return with(static_cast<short>(0));
    case GL_UNSIGNED_SHORT:
        return with(static_cast<unsigned short>(0));
    case GL_INT:
        return with(0);
    case GL_UNSIGNED_INT:
        return with(0u);
    case GL_HALF_FLOAT:
    case GL_FLOAT:
        return with(0.0f);
    case GL_DOUBLE:
        return with(0.0);
    default:
        return false;
    }
}

// By the type of the values, the function of that name with the letters for the type.
struct Immediate {
    OGL::OpenGLInterceptor& gl;
    const PlayedArray& array;

    void color(const std::array<signed char, 4>& v) const { gl.cgmColor4bv(here, 0, v.data()); }
    void color(const std::array<unsigned char, 4>& v) const { gl.cgmColor4ubv(here, 0, v.data()); }
    void color(const std::array<short, 4>& v) const { gl.cgmColor4sv(here, 0, v.data()); }
    void color(const std::array<unsigned short, 4>& v) const { gl.cgmColor4usv(here, 0, v.data()); }
    void color(const std::array<int, 4>& v) const { gl.cgmColor4iv(here, 0, v.data()); }
    void color(const std::array<unsigned int, 4>& v) const { gl.cgmColor4uiv(here, 0, v.data()); }
    void color(const std::array<float, 4>& v) const { gl.cgmColor4fv(here, 0, v.data()); }
    void color(const std::array<double, 4>& v) const { gl.cgmColor4dv(here, 0, v.data()); }

    void secondary(const std::array<signed char, 4>& v) const { gl.cgmSecondaryColor3bv(here, 0, v.data()); }
    void secondary(const std::array<unsigned char, 4>& v) const {
        gl.cgmSecondaryColor3ubv(here, 0, v.data());
    }
    void secondary(const std::array<short, 4>& v) const { gl.cgmSecondaryColor3sv(here, 0, v.data()); }
    void secondary(const std::array<unsigned short, 4>& v) const {
        gl.cgmSecondaryColor3usv(here, 0, v.data());
    }
    void secondary(const std::array<int, 4>& v) const { gl.cgmSecondaryColor3iv(here, 0, v.data()); }
    void secondary(const std::array<unsigned int, 4>& v) const {
        gl.cgmSecondaryColor3uiv(here, 0, v.data());
    }
    void secondary(const std::array<float, 4>& v) const { gl.cgmSecondaryColor3fv(here, 0, v.data()); }
    void secondary(const std::array<double, 4>& v) const { gl.cgmSecondaryColor3dv(here, 0, v.data()); }

    void normal(const std::array<signed char, 4>& v) const { gl.cgmNormal3bv(here, 0, v.data()); }
    void normal(const std::array<short, 4>& v) const { gl.cgmNormal3sv(here, 0, v.data()); }
    void normal(const std::array<int, 4>& v) const { gl.cgmNormal3iv(here, 0, v.data()); }
    void normal(const std::array<float, 4>& v) const { gl.cgmNormal3fv(here, 0, v.data()); }
    void normal(const std::array<double, 4>& v) const { gl.cgmNormal3dv(here, 0, v.data()); }
    template <class Value>
    void normal(const std::array<Value, 4>&) const {} // GL has no such arrays

    void vertex(const std::array<short, 4>& v) const { gl.cgmVertex4sv(here, 0, v.data()); }
    void vertex(const std::array<int, 4>& v) const { gl.cgmVertex4iv(here, 0, v.data()); }
    void vertex(const std::array<float, 4>& v) const { gl.cgmVertex4fv(here, 0, v.data()); }
    void vertex(const std::array<double, 4>& v) const { gl.cgmVertex4dv(here, 0, v.data()); }
    template <class Value>
    void vertex(const std::array<Value, 4>&) const {}

    // A driver without units has but one.
    unsigned int unit() const { return GL_TEXTURE0 + array.index; }
    void texCoord(const std::array<short, 4>& v) const {
        array.index == 0 ? gl.cgmTexCoord4sv(here, 0, v.data())
                         : gl.cgmMultiTexCoord4sv(here, 0, unit(), v.data());
    }
    void texCoord(const std::array<int, 4>& v) const {
        array.index == 0 ? gl.cgmTexCoord4iv(here, 0, v.data())
                         : gl.cgmMultiTexCoord4iv(here, 0, unit(), v.data());
    }
    void texCoord(const std::array<float, 4>& v) const {
        array.index == 0 ? gl.cgmTexCoord4fv(here, 0, v.data())
                         : gl.cgmMultiTexCoord4fv(here, 0, unit(), v.data());
    }
    void texCoord(const std::array<double, 4>& v) const {
        array.index == 0 ? gl.cgmTexCoord4dv(here, 0, v.data())
                         : gl.cgmMultiTexCoord4dv(here, 0, unit(), v.data());
    }
    template <class Value>
    void texCoord(const std::array<Value, 4>&) const {}

    template <class Value>
    void index(const std::array<Value, 4>& v) const {
        const auto value = static_cast<double>(v[0]);
        gl.cgmIndexdv(here, 0, &value);
    }
    template <class Value>
    void fog(const std::array<Value, 4>& v) const {
        const auto value = static_cast<double>(v[0]);
        gl.cgmFogCoorddv(here, 0, &value);
    }

    void attribute(const std::array<float, 4>& v) const {
        gl.cgmVertexAttrib4fv(here, 0, array.index, v.data());
    }
    void attribute(const std::array<double, 4>& v) const {
        gl.cgmVertexAttrib4dv(here, 0, array.index, v.data());
    }
    void attribute(const std::array<signed char, 4>& v) const {
        isInteger()      ? gl.cgmVertexAttribI4bv(here, 0, array.index, v.data())
        : isNormalized() ? gl.cgmVertexAttrib4Nbv(here, 0, array.index, v.data())
                         : gl.cgmVertexAttrib4bv(here, 0, array.index, v.data());
    }
    void attribute(const std::array<unsigned char, 4>& v) const {
        isInteger()      ? gl.cgmVertexAttribI4ubv(here, 0, array.index, v.data())
        : isNormalized() ? gl.cgmVertexAttrib4Nubv(here, 0, array.index, v.data())
                         : gl.cgmVertexAttrib4ubv(here, 0, array.index, v.data());
    }
    void attribute(const std::array<short, 4>& v) const {
        isInteger()      ? gl.cgmVertexAttribI4sv(here, 0, array.index, v.data())
        : isNormalized() ? gl.cgmVertexAttrib4Nsv(here, 0, array.index, v.data())
                         : gl.cgmVertexAttrib4sv(here, 0, array.index, v.data());
    }
    void attribute(const std::array<unsigned short, 4>& v) const {
        isInteger()      ? gl.cgmVertexAttribI4usv(here, 0, array.index, v.data())
        : isNormalized() ? gl.cgmVertexAttrib4Nusv(here, 0, array.index, v.data())
                         : gl.cgmVertexAttrib4usv(here, 0, array.index, v.data());
    }
    void attribute(const std::array<int, 4>& v) const {
        isInteger()      ? gl.cgmVertexAttribI4iv(here, 0, array.index, v.data())
        : isNormalized() ? gl.cgmVertexAttrib4Niv(here, 0, array.index, v.data())
                         : gl.cgmVertexAttrib4iv(here, 0, array.index, v.data());
    }
    void attribute(const std::array<unsigned int, 4>& v) const {
        isInteger()      ? gl.cgmVertexAttribI4uiv(here, 0, array.index, v.data())
        : isNormalized() ? gl.cgmVertexAttrib4Nuiv(here, 0, array.index, v.data())
                         : gl.cgmVertexAttrib4uiv(here, 0, array.index, v.data());
    }
    bool isInteger() const { return (array.flags & arrayIsInteger) != 0; }
    bool isNormalized() const { return (array.flags & arrayIsNormalized) != 0; }

    void play() const {
        switch (array.kind) {
        case ArrayKind::Color:
            callByType(array, true, [this](const auto& v) { color(v); });
            break;
        case ArrayKind::SecondaryColor:
            callByType(array, true, [this](const auto& v) { secondary(v); });
            break;
        case ArrayKind::Normal:
            callByType(array, true, [this](const auto& v) { normal(v); });
            break;
        case ArrayKind::Vertex:
            callByType(array, false, [this](const auto& v) { vertex(v); });
            break;
        case ArrayKind::TexCoord:
            callByType(array, false, [this](const auto& v) { texCoord(v); });
            break;
        case ArrayKind::Index:
            callByType(array, false, [this](const auto& v) { index(v); });
            break;
        case ArrayKind::FogCoord:
            callByType(array, false, [this](const auto& v) { fog(v); });
            break;
        case ArrayKind::EdgeFlag:
            if (!array.bytes.empty())
                gl.cgmEdgeFlag(here, 0, static_cast<unsigned char>(array.bytes.front()));
            break;
        case ArrayKind::Attribute:
            callByType(array, isNormalized(), [this](const auto& v) { attribute(v); });
            break;
        default:
            break; // of extensions that no driver has which could be asked
        }
    }

    // It makes the vertex, and so it comes last.
    bool isVertex() const {
        return array.kind == ArrayKind::Vertex || (array.kind == ArrayKind::Attribute && array.index == 0);
    }
};

} // namespace

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

void playElement(OGL::OpenGLInterceptor& gl, const std::vector<PlayedArray>& arrays) {
    for (const bool last : {false, true})
        for (const PlayedArray& array : arrays)
            if (const Immediate immediate{gl, array}; immediate.isVertex() == last)
                immediate.play();
}

} // namespace ZLT::Capture
