// The calls whose data is captured and that no family covers: images, matrices, a few vectors. What is
// captured and how is uneven, and is the format: replays are written for it. Each oddity is named where it
// stands.

#include "extensionator/OpenGLRekorder.h"

#include "extensionator/RecordBlocks.h"
#include "platform/GL.h"

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

// Two internal formats count as formats: old clients pass them.
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

} // namespace

void OpenGLRekorder::cgmTexImage2D(const char* file, unsigned int line, unsigned int target, int level,
                                   int internalformat, int width, int height, int border, unsigned int format,
                                   unsigned int type, const void* pixels) {
    std::ostream& out = *outputStream_;
    const ImageArguments arguments = {target, level, internalformat, width, height, border, format, type};
    const unsigned int pixelSize = componentSize(type) * componentCount(format);
    if (!pixels) {
        // Never with a comment: readers of recordings know it so.
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

// Null pixels are read here, unlike above: the format has no form for them.
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

// Of the four matrices, glLoadMatrixd is not captured: replays know its marker.

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

// Counts 8 bytes for each element though they have 4, as replays read it: the record holds what lies behind
// the array too.
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
