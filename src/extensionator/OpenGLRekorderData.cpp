// The calls whose data is captured: images, matrices, uniform arrays, short vectors. What is captured and how
// is uneven, and is the format: replays are written for it. Each oddity is named where it stands.

#include "extensionator/OpenGLRekorder.h"

#include "extensionator/RecordForms.h"
#include "platform/GL.h"

#include <bit>
#include <cstdint>

namespace ZLT::OGL {

using namespace RecordForms;

namespace {

// The packed types count one byte for each component, right for four components alone.
unsigned int componentSize(unsigned int type) {
    switch (type) {
    case GL_UNSIGNED_BYTE:
    case GL_UNSIGNED_INT_8_8_8_8:
    case GL_UNSIGNED_INT_8_8_8_8_REV:
        return 1;
    case GL_FLOAT:
        return 4;
    default:
        return 0;
    }
}

// Two internal formats count as formats, on purpose.
unsigned int componentCount(unsigned int format) {
    switch (format) {
    case GL_ALPHA:
    case GL_LUMINANCE:
    case GL_INTENSITY:
        return 1;
    case GL_LUMINANCE_ALPHA:
        return 2;
    case GL_RGB:
    case GL_BGR:
    case GL_RGB8:
        return 3;
    case GL_RGBA:
    case GL_BGRA:
    case GL_RGBA8:
        return 4;
    default:
        return 0;
    }
}

// Bytes of a tightly packed image in 32 bits; pixel store, border and level don't count.
unsigned int imageSize(unsigned int pixelSize, int width, int height) {
    return pixelSize * static_cast<unsigned int>(width) * static_cast<unsigned int>(height);
}

// No comment and no call, so that a compiler stops here: the picture would be wrong without it.
void writePixelWarning(std::ostream& out, unsigned int type, unsigned int format) {
    out << "WARNING!!! Encountered unsupported type and / or format (type=" << Number(type)
        << ", format=" << Number(format) << ").\n";
}

// The arguments of glTexImage2D in front of the pixels.
struct ImageArguments {
    unsigned int target;
    int level, internalformat, width, height, border;
    unsigned int format, type;
};
std::ostream& operator<<(std::ostream& out, const ImageArguments& image) {
    return out << Enumerant(image.target) << comma << Number(image.level) << comma
               << Number(image.internalformat) << comma << Number(image.width) << comma
               << Number(image.height) << comma << Number(image.border) << comma << Enumerant(image.format)
               << comma << Enumerant(image.type) << comma;
}

// An array of uniforms from a data block.
void writeUniforms(std::ostream& out, unsigned int position, const char* function, int location, int count,
                   const char* cast, CallEnd end) {
    out << DataBlock(position) << "    " << function << '(' << Number(location) << comma << Number(count)
        << ", reinterpret_cast<const " << cast << " *>(&data[0])" << end << "}\n";
}

void writeUniformMatrices(std::ostream& out, unsigned int position, const char* function, int location,
                          int count, unsigned char transpose, CallEnd end) {
    // The size has no initialiser here, unlike in every other block. The format is so.
    out << DataBlock(position, false) << "    " << function << '(' << Number(location) << comma
        << Number(count) << comma << Boolean(transpose) << ", reinterpret_cast<const GLfloat *>(&data[0])"
        << end << "}\n";
}

// "a, b, c" of `count` values, each in the form Form.
template <class Form, class T>
void writeList(std::ostream& out, const T* values, int count) {
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            out << comma;
        out << Form(values[i]);
    }
}

struct FloatBits : Number<std::int32_t> {
    explicit FloatBits(float value) : Number(std::bit_cast<std::int32_t>(value)) {}
};
std::ostream& operator<<(std::ostream& out, FloatBits form) { return out << Number(form.value); }

// The first two lines of an inline block: the values as ints, floats by their bits, and for a reader as they
// are.
void writeInlineArray(std::ostream& out, const float* values, int count) {
    out << "{\n    int tmp_i[] = { ";
    writeList<FloatBits>(out, values, count);
    out << " }; // ";
    writeList<Number<float>>(out, values, count);
    out << '\n';
}

void writeInlineArray(std::ostream& out, const int* values, int count) {
    out << "{\n    int tmp_i[] = { ";
    writeList<Number<int>>(out, values, count);
    out << " }; // ";
    writeList<Number<int>>(out, values, count);
    out << '\n';
}

const char* pointerTo(const float*) { return "float *"; }
const char* pointerTo(const int*) { return "int *"; }

template <class T>
void writeMultiTexCoord(std::ostream& out, const char* function, unsigned int target, const T* values,
                        int count, CallEnd end) {
    writeInlineArray(out, values, count);
    out << "    " << function << '(' << Enumerant(target) << ", reinterpret_cast<" << pointerTo(values)
        << ">(&tmp_i[0]) " << end << "}\n";
}

} // namespace

void OpenGLRekorder::cgmTexImage2D(const char* file, unsigned int line, unsigned int target, int level,
                                   int internalformat, int width, int height, int border, unsigned int format,
                                   unsigned int type, const void* pixels) {
    std::ostream& out = *outputStream_;
    const ImageArguments arguments = {target, level, internalformat, width, height, border, format, type};
    const unsigned int pixelSize = componentSize(type) * componentCount(format);
    if (!pixels) {
        // Never with a comment, on purpose.
        out << "glTexImage2D(" << arguments << Pointer(pixels) << ");\n";
    } else if (pixelSize == 0) {
        writePixelWarning(out, type, format);
    } else {
        const unsigned int position = writeRecord(pixels, imageSize(pixelSize, width, height));
        out << DataBlock(position) << "    glTexImage2D(" << arguments << "&data[0]"
            << CallEnd(lineComments_, file, line) << "}\n";
    }
    interceptor()->cgmTexImage2D(file, line, target, level, internalformat, width, height, border, format,
                                 type, pixels);
}

// Null pixels are read here, unlike above, on purpose.
void OpenGLRekorder::cgmTexSubImage2D(const char* file, unsigned int line, unsigned int target, int level,
                                      int xoffset, int yoffset, int width, int height, unsigned int format,
                                      unsigned int type, const void* pixels) {
    std::ostream& out = *outputStream_;
    const unsigned int pixelSize = componentSize(type) * componentCount(format);
    if (pixelSize == 0) {
        writePixelWarning(out, type, format);
    } else {
        const unsigned int position = writeRecord(pixels, imageSize(pixelSize, width, height));
        out << DataBlock(position) << "    glTexSubImage2D(" << Enumerant(target) << comma << Number(level)
            << comma << Number(xoffset) << comma << Number(yoffset) << comma << Number(width) << comma
            << Number(height) << comma << Enumerant(format) << comma << Enumerant(type) << ", &data[0]"
            << CallEnd(lineComments_, file, line) << "}\n";
    }
    interceptor()->cgmTexSubImage2D(file, line, target, level, xoffset, yoffset, width, height, format, type,
                                    pixels);
}

// A comment in the text: a replay reads nothing back.
void OpenGLRekorder::cgmReadPixels(const char* file, unsigned int line, int x, int y, int width, int height,
                                   unsigned int format, unsigned int type, void* pixels) {
    *outputStream_ << "//glReadPixels(" << Number(x) << comma << Number(y) << comma << Number(width) << comma
                   << Number(height) << comma << Enumerant(format) << comma << Enumerant(type) << comma
                   << Pointer(pixels) << CallEnd(lineComments_, file, line);
    interceptor()->cgmReadPixels(file, line, x, y, width, height, format, type, pixels);
}

// Of the four matrices, glLoadMatrixd is not captured, on purpose.

void OpenGLRekorder::cgmLoadMatrixf(const char* file, unsigned int line, const float* m) {
    const unsigned int position = writeRecord(m, 16 * sizeof(float));
    *outputStream_ << DataBlock(position) << "    glLoadMatrixf((GLfloat *)&data[0]"
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmLoadMatrixf(file, line, m);
}

void OpenGLRekorder::cgmMultMatrixf(const char* file, unsigned int line, const float* m) {
    const unsigned int position = writeRecord(m, 16 * sizeof(float));
    *outputStream_ << DataBlock(position) << "    glMultMatrixf(reinterpret_cast<const GLfloat *>(&data[0])"
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmMultMatrixf(file, line, m);
}

void OpenGLRekorder::cgmMultMatrixd(const char* file, unsigned int line, const double* m) {
    const unsigned int position = writeRecord(m, 16 * sizeof(double));
    *outputStream_ << DataBlock(position) << "    glMultMatrixd(reinterpret_cast<const GLdouble *>(&data[0])"
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmMultMatrixd(file, line, m);
}

void OpenGLRekorder::cgmUniform1fv(const char* file, unsigned int line, int location, int count,
                                   const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 4);
    writeUniforms(*outputStream_, position, "glUniform1fv", location, count, "GLfloat",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform1fv(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform2fv(const char* file, unsigned int line, int location, int count,
                                   const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 8);
    writeUniforms(*outputStream_, position, "glUniform2fv", location, count, "GLfloat",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform2fv(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform3fv(const char* file, unsigned int line, int location, int count,
                                   const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 12);
    writeUniforms(*outputStream_, position, "glUniform3fv", location, count, "GLfloat",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform3fv(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform4fv(const char* file, unsigned int line, int location, int count,
                                   const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 16);
    writeUniforms(*outputStream_, position, "glUniform4fv", location, count, "GLfloat",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform4fv(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform1iv(const char* file, unsigned int line, int location, int count,
                                   const int* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 4);
    writeUniforms(*outputStream_, position, "glUniform1iv", location, count, "GLint",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform1iv(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform2iv(const char* file, unsigned int line, int location, int count,
                                   const int* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 8);
    writeUniforms(*outputStream_, position, "glUniform2iv", location, count, "GLint",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform2iv(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform3iv(const char* file, unsigned int line, int location, int count,
                                   const int* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 12);
    writeUniforms(*outputStream_, position, "glUniform3iv", location, count, "GLint",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform3iv(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform4iv(const char* file, unsigned int line, int location, int count,
                                   const int* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 16);
    writeUniforms(*outputStream_, position, "glUniform4iv", location, count, "GLint",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform4iv(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform1fvARB(const char* file, unsigned int line, int location, int count,
                                      const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 4);
    writeUniforms(*outputStream_, position, "glUniform1fvARB", location, count, "GLfloat",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform1fvARB(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform2fvARB(const char* file, unsigned int line, int location, int count,
                                      const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 8);
    writeUniforms(*outputStream_, position, "glUniform2fvARB", location, count, "GLfloat",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform2fvARB(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform3fvARB(const char* file, unsigned int line, int location, int count,
                                      const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 12);
    writeUniforms(*outputStream_, position, "glUniform3fvARB", location, count, "GLfloat",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform3fvARB(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform4fvARB(const char* file, unsigned int line, int location, int count,
                                      const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 16);
    writeUniforms(*outputStream_, position, "glUniform4fvARB", location, count, "GLfloat",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform4fvARB(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform1ivARB(const char* file, unsigned int line, int location, int count,
                                      const int* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 4);
    writeUniforms(*outputStream_, position, "glUniform1ivARB", location, count, "GLint",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform1ivARB(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform2ivARB(const char* file, unsigned int line, int location, int count,
                                      const int* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 8);
    writeUniforms(*outputStream_, position, "glUniform2ivARB", location, count, "GLint",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform2ivARB(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform3ivARB(const char* file, unsigned int line, int location, int count,
                                      const int* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 12);
    writeUniforms(*outputStream_, position, "glUniform3ivARB", location, count, "GLint",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform3ivARB(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniform4ivARB(const char* file, unsigned int line, int location, int count,
                                      const int* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 16);
    writeUniforms(*outputStream_, position, "glUniform4ivARB", location, count, "GLint",
                  CallEnd(lineComments_, file, line));
    interceptor()->cgmUniform4ivARB(file, line, location, count, value);
}

void OpenGLRekorder::cgmUniformMatrix2fv(const char* file, unsigned int line, int location, int count,
                                         unsigned char transpose, const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 16);
    writeUniformMatrices(*outputStream_, position, "glUniformMatrix2fv", location, count, transpose,
                         CallEnd(lineComments_, file, line));
    interceptor()->cgmUniformMatrix2fv(file, line, location, count, transpose, value);
}

void OpenGLRekorder::cgmUniformMatrix2fvARB(const char* file, unsigned int line, int location, int count,
                                            unsigned char transpose, const float* value) {
    const unsigned int position = writeRecord(value, static_cast<unsigned int>(count) * 16);
    writeUniformMatrices(*outputStream_, position, "glUniformMatrix2fvARB", location, count, transpose,
                         CallEnd(lineComments_, file, line));
    interceptor()->cgmUniformMatrix2fvARB(file, line, location, count, transpose, value);
}

// Counts 8 bytes for each element though they have 4, on purpose: the record holds what lies behind the
// array.
void OpenGLRekorder::cgmDrawBuffersARB(const char* file, unsigned int line, int n, const unsigned int* bufs) {
    const unsigned int position = writeWideRecord(bufs, n * 8LL);
    *outputStream_ << DataBlock(position) << "    glDrawBuffersARB(" << Number(n)
                   << ", reinterpret_cast<const GLenum *>(&data[0])" << CallEnd(lineComments_, file, line)
                   << "}\n";
    interceptor()->cgmDrawBuffersARB(file, line, n, bufs);
}

// The only vertex vector that is captured, with a blank behind the bracket that no other call has.
void OpenGLRekorder::cgmVertex2fv(const char* file, unsigned int line, const float* v) {
    writeInlineArray(*outputStream_, v, 2);
    *outputStream_ << "    glVertex2fv( reinterpret_cast<float *>(&tmp_i[0]) "
                   << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmVertex2fv(file, line, v);
}

void OpenGLRekorder::cgmMultiTexCoord1fv(const char* file, unsigned int line, unsigned int target,
                                         const float* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord1fv", target, v, 1,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord1fv(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord2fv(const char* file, unsigned int line, unsigned int target,
                                         const float* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord2fv", target, v, 2,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord2fv(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord3fv(const char* file, unsigned int line, unsigned int target,
                                         const float* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord3fv", target, v, 3,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord3fv(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord4fv(const char* file, unsigned int line, unsigned int target,
                                         const float* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord4fv", target, v, 4,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord4fv(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord1iv(const char* file, unsigned int line, unsigned int target,
                                         const int* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord1iv", target, v, 1,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord1iv(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord2iv(const char* file, unsigned int line, unsigned int target,
                                         const int* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord2iv", target, v, 2,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord2iv(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord3iv(const char* file, unsigned int line, unsigned int target,
                                         const int* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord3iv", target, v, 3,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord3iv(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord4iv(const char* file, unsigned int line, unsigned int target,
                                         const int* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord4iv", target, v, 4,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord4iv(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord1fvARB(const char* file, unsigned int line, unsigned int target,
                                            const float* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord1fvARB", target, v, 1,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord1fvARB(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord2fvARB(const char* file, unsigned int line, unsigned int target,
                                            const float* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord2fvARB", target, v, 2,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord2fvARB(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord3fvARB(const char* file, unsigned int line, unsigned int target,
                                            const float* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord3fvARB", target, v, 3,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord3fvARB(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord4fvARB(const char* file, unsigned int line, unsigned int target,
                                            const float* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord4fvARB", target, v, 4,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord4fvARB(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord1ivARB(const char* file, unsigned int line, unsigned int target,
                                            const int* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord1ivARB", target, v, 1,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord1ivARB(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord2ivARB(const char* file, unsigned int line, unsigned int target,
                                            const int* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord2ivARB", target, v, 2,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord2ivARB(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord3ivARB(const char* file, unsigned int line, unsigned int target,
                                            const int* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord3ivARB", target, v, 3,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord3ivARB(file, line, target, v);
}

void OpenGLRekorder::cgmMultiTexCoord4ivARB(const char* file, unsigned int line, unsigned int target,
                                            const int* v) {
    writeMultiTexCoord(*outputStream_, "glMultiTexCoord4ivARB", target, v, 4,
                       CallEnd(lineComments_, file, line));
    interceptor()->cgmMultiTexCoord4ivARB(file, line, target, v);
}

// Four floats whatever the parameter takes, and their values, not their bits, in an array of int: a replay
// gets other numbers. The format is so.
void OpenGLRekorder::cgmTexParameterfv(const char* file, unsigned int line, unsigned int target,
                                       unsigned int pname, const float* params) {
    std::ostream& out = *outputStream_;
    out << "{\n    int tmp_i[] = { ";
    writeList<Number<float>>(out, params, 4);
    out << " };\n    glTexParameterfv(" << Enumerant(target) << comma << Enumerant(pname)
        << ", reinterpret_cast<float *>(&tmp_i[0]) " << CallEnd(lineComments_, file, line) << "}\n";
    interceptor()->cgmTexParameterfv(file, line, target, pname, params);
}

} // namespace ZLT::OGL
