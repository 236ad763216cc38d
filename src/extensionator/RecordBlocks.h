#pragma once

#include "extensionator/RecordForms.h"

/// @file
/// The blocks that families of recorded calls share. `function` is the GL function's name; the caller has put
/// the record on the binary stream, at `position`.

namespace ZLT::OGL::RecordForms {

/// "a, b, c" of `count` values, each in the form Form.
template <class Form, class T>
void writeList(std::ostream& out, const T* values, int count) {
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            out << comma;
        out << Form(values[i]);
    }
}

/// An array of uniforms from a data block. `cast` is "GLfloat" or "GLint".
void writeUniforms(std::ostream& out, unsigned int position, const char* function, int location, int count,
                   const char* cast, CallEnd end);

/// An array of matrices from a data block.
void writeUniformMatrices(std::ostream& out, unsigned int position, const char* function, int location,
                          int count, unsigned char transpose, CallEnd end);

/// The first two lines of an inline block: the values as ints, floats by their bits, and for a reader as they
/// are.
void writeInlineArray(std::ostream& out, const float* values, int count);
void writeInlineArray(std::ostream& out, const int* values, int count);

/// A vector of `count` texture coordinates in an inline block.
void writeMultiTexCoord(std::ostream& out, const char* function, unsigned int target, const float* values,
                        int count, CallEnd end);
void writeMultiTexCoord(std::ostream& out, const char* function, unsigned int target, const int* values,
                        int count, CallEnd end);

} // namespace ZLT::OGL::RecordForms
