// GLU's texts, by which the checker names an error, without GLU.

#include "platform/GL.h"

#if defined(_WIN32)
#define ZLT_GLU extern "C"
#else
#define ZLT_GLU extern "C" __attribute__((visibility("hidden")))
#endif

ZLT_GLU const GLubyte* APIENTRY gluErrorString(GLenum code) {
    const char* text = "";
    switch (code) {
    case GL_INVALID_ENUM:
        text = "invalid enumerant";
        break;
    case GL_INVALID_VALUE:
        text = "invalid value";
        break;
    case GL_INVALID_OPERATION:
        text = "invalid operation";
        break;
    case GL_STACK_OVERFLOW:
        text = "stack overflow";
        break;
    case GL_STACK_UNDERFLOW:
        text = "stack underflow";
        break;
    case GL_OUT_OF_MEMORY:
        text = "out of memory";
        break;
    default:
        break;
    }
    return reinterpret_cast<const GLubyte*>(text);
}
