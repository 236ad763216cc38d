// The setters of uniforms: 34 kinds of value, each by location and by name, checked and unsafe.

#include "ogl/Program.h"

#include "extensionator/EntryPoint.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

void Program::requireEnabled() const {
    if (!isEnabled())
        ZLT_RAISE("Program must be enabled to set uniform parameter");
}

int Program::getUniformLocation(const char* name) const {
    return ZLT_GL(glGetUniformLocation)(_hObject, name);
}

template <Program::Row row, class Set>
void Program::checked(int location, const Set& set) {
    requireEnabled();
    set(location);
}

template <Program::Row row, class Set>
void Program::checked(const char* name, const Set& set) {
    if constexpr (row == Row::Scalar)
        requireEnabled(); // and once more below, where matrices ask for the first time
    const int location = getUniformLocation(name);
    if constexpr (row == Row::Scalar || row == Row::Matrix)
        checked<row>(location, set);
    else
        set(location); // Arrays by name are not tested: existing clients rely on it.
}

template <Program::Row row, class Set>
void Program::unsafe(int location, const Set& set) {
    // Arrays of floats are handed on: existing clients rely on it.
    if (row != Row::Floats && location == -1)
        return;
    set(location);
}

template <Program::Row row, class Set>
void Program::unsafe(const char* name, const Set& set) {
    const int location = getUniformLocation(name);
    // Arrays of both kinds are handed on: existing clients rely on it.
    if ((row == Row::Scalar || row == Row::Matrix) && location == -1)
        return;
    set(location);
}

#define ZLT_UNPACK(...) __VA_ARGS__
#define ZLT_UNIFORM_FORM(rule, row, member, where, function, parameters, ...)                                \
    void Program::member(where, ZLT_UNPACK parameters) {                                                     \
        rule<Row::row>(uniform, [&](int location) { ZLT_GL(function)(location, __VA_ARGS__); });             \
    }
#define ZLT_UNIFORM(row, member, function, parameters, ...)                                                  \
    ZLT_UNIFORM_FORM(checked, row, member, int uniform, function, parameters, __VA_ARGS__)                   \
    ZLT_UNIFORM_FORM(checked, row, member, const char* uniform, function, parameters, __VA_ARGS__)           \
    ZLT_UNIFORM_FORM(unsafe, row, member##_Unsafe, int uniform, function, parameters, __VA_ARGS__)           \
    ZLT_UNIFORM_FORM(unsafe, row, member##_Unsafe, const char* uniform, function, parameters, __VA_ARGS__)

ZLT_UNIFORM(Scalar, setUniform, glUniform1i, (bool x), x)
ZLT_UNIFORM(Scalar, setUniform, glUniform2i, (bool x, bool y), x, y)
ZLT_UNIFORM(Scalar, setUniform, glUniform3i, (bool x, bool y, bool z), x, y, z)
ZLT_UNIFORM(Scalar, setUniform, glUniform4i, (bool x, bool y, bool z, bool w), x, y, z, w)
ZLT_UNIFORM(Scalar, setUniform, glUniform1i, (unsigned char x), x)
ZLT_UNIFORM(Scalar, setUniform, glUniform2i, (unsigned char x, unsigned char y), x, y)
ZLT_UNIFORM(Scalar, setUniform, glUniform3i, (unsigned char x, unsigned char y, unsigned char z), x, y, z)
ZLT_UNIFORM(Scalar, setUniform, glUniform4i,
            (unsigned char x, unsigned char y, unsigned char z, unsigned char w), x, y, z, w)
ZLT_UNIFORM(Scalar, setUniform, glUniform1i, (int x), x)
ZLT_UNIFORM(Scalar, setUniform, glUniform2i, (int x, int y), x, y)
ZLT_UNIFORM(Scalar, setUniform, glUniform3i, (int x, int y, int z), x, y, z)
ZLT_UNIFORM(Scalar, setUniform, glUniform4i, (int x, int y, int z, int w), x, y, z, w)
ZLT_UNIFORM(Scalar, setUniform, glUniform1f, (float x), x)
ZLT_UNIFORM(Scalar, setUniform, glUniform2f, (float x, float y), x, y)
ZLT_UNIFORM(Scalar, setUniform, glUniform3f, (float x, float y, float z), x, y, z)
ZLT_UNIFORM(Scalar, setUniform, glUniform4f, (float x, float y, float z, float w), x, y, z, w)
ZLT_UNIFORM(Scalar, setUniformSampler1D, glUniform1i, (int unit), unit)
ZLT_UNIFORM(Scalar, setUniformSampler2D, glUniform1i, (int unit), unit)
ZLT_UNIFORM(Scalar, setUniformSampler3D, glUniform1i, (int unit), unit)
ZLT_UNIFORM(Scalar, setUniformSampler2DRECT, glUniform1i, (int unit), unit)
ZLT_UNIFORM(Matrix, setUniformMatrices2, glUniformMatrix2fv,
            (int count, const float* values, unsigned char transpose), count, transpose, values)
ZLT_UNIFORM(Matrix, setUniformMatrices3, glUniformMatrix3fv,
            (int count, const float* values, unsigned char transpose), count, transpose, values)
ZLT_UNIFORM(Matrix, setUniformMatrices4, glUniformMatrix4fv,
            (int count, const float* values, unsigned char transpose), count, transpose, values)
ZLT_UNIFORM(Matrix, setUniformMatrix2, glUniformMatrix2fv, (const float* values, unsigned char transpose), 1,
            transpose, values)
ZLT_UNIFORM(Matrix, setUniformMatrix3, glUniformMatrix3fv, (const float* values, unsigned char transpose), 1,
            transpose, values)
ZLT_UNIFORM(Matrix, setUniformMatrix4, glUniformMatrix4fv, (const float* values, unsigned char transpose), 1,
            transpose, values)
ZLT_UNIFORM(Integers, setUniform, glUniform1iv, (int count, const int* values), count, values)
ZLT_UNIFORM(Floats, setUniform, glUniform1fv, (int count, const float* values), count, values)
ZLT_UNIFORM(Integers, setUniform2, glUniform2iv, (int count, const int* values), count, values)
ZLT_UNIFORM(Floats, setUniform2, glUniform2fv, (int count, const float* values), count, values)
ZLT_UNIFORM(Integers, setUniform3, glUniform3iv, (int count, const int* values), count, values)
ZLT_UNIFORM(Floats, setUniform3, glUniform3fv, (int count, const float* values), count, values)
ZLT_UNIFORM(Integers, setUniform4, glUniform4iv, (int count, const int* values), count, values)
// Three components for four: existing clients rely on it.
ZLT_UNIFORM(Floats, setUniform4, glUniform3fv, (int count, const float* values), count, values)

} // namespace ZLT::OGL
