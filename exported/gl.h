// OpenGL as the frames call it. Functions of OpenGL 1.1 are linked, all others are loaded by address, so that
// the headers of the system don't matter.
#pragma once

#include "gl_constants.h"

#include <cstdint>

#if defined(_WIN32)
#define APIENTRY __stdcall
#define GLAPI __declspec(dllimport)
#else
#define APIENTRY
#define GLAPI
#endif

using GLenum = unsigned int;
using GLbitfield = unsigned int;
using GLuint = unsigned int;
using GLint = int;
using GLsizei = int;
using GLboolean = unsigned char;
using GLbyte = signed char;
using GLubyte = unsigned char;
using GLshort = short;
using GLushort = unsigned short;
using GLfloat = float;
using GLdouble = double;
using GLchar = char;
using GLint64 = std::int64_t;
using GLuint64 = std::uint64_t;
using GLsync = struct __GLsync*;

#define GL_1_1_FUNCTION(result, name, parameters) extern "C" GLAPI result APIENTRY name parameters;
// In a namespace, so that no library takes them for its own functions.
#define GL_FUNCTION(result, name, parameters)                                                                \
    namespace loaded {                                                                                       \
    extern result(APIENTRY* name) parameters;                                                                \
    }                                                                                                        \
    using loaded::name;
#include "gl_functions.inl"
#undef GL_1_1_FUNCTION
#undef GL_FUNCTION

// Loads the functions, when a context is current. A function that the driver lacks does nothing from then on.
void gl_load(void* (*address_of)(const char* name), void (*missing)(const char* name));
