// A GL of which every function does nothing and returns 0, GL_TRUE where the result is a GLboolean, or "3.0"
// where it is a text: so it is a driver of 3.0 without extensions.

#define GL_GLEXT_PROTOTYPES
#if defined(_WIN32)
// Without windows.h, which declares the functions as imported ones.
#define WINGDIAPI
#define APIENTRY
#define CALLBACK
#endif
#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <cstdint>
#include <cstring>

namespace {

template <class Result>
Result nothing() {
    return Result();
}
template <>
GLboolean nothing() {
    return GL_TRUE;
}
template <>
const GLubyte* nothing() {
    return reinterpret_cast<const GLubyte*>("3.0");
}

} // namespace

extern "C" {

#define ZLT_GL_CORE_ENTRY(slot, group, name, result, parameters, arguments)                                  \
    result gl##name parameters {                                                                             \
        using Result = result;                                                                               \
        return nothing<Result>();                                                                            \
    }
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)
#include "EntryPoints.inl"
#undef ZLT_GL_CORE_ENTRY
#undef ZLT_GL_ENTRY

const GLubyte* gluErrorString(GLenum) { return nullptr; }

} // extern "C"

namespace {

#define ZLT_GL_CORE_ENTRY(slot, group, name, result, parameters, arguments)
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)                                       \
    result silent##name parameters {                                                                         \
        using Result = result;                                                                               \
        return nothing<Result>();                                                                            \
    }
#include "EntryPoints.inl"
#undef ZLT_GL_ENTRY

using Function = void (*)();

struct Entry {
    const char* name;
    Function function;
};

const Entry entries[] = {
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)                                       \
    {"gl" #name, reinterpret_cast<Function>(silent##name)},
#include "EntryPoints.inl"
#undef ZLT_GL_ENTRY
#undef ZLT_GL_CORE_ENTRY
};

} // namespace

#if defined(_WIN32)
#define eglGetProcAddress wglGetProcAddress
#endif
extern "C" Function eglGetProcAddress(const char* name) {
    for (const Entry& entry : entries)
        if (std::strcmp(entry.name, name) == 0)
            return entry.function;
    return nullptr;
}

#if defined(_WIN32)
// Contexts are numbers here. To a caller a function is the same whose arguments nobody reads.
static std::uintptr_t made, currentContext, currentDevice;

extern "C" {

std::uintptr_t wglCreateContext() { return ++made; }
int wglMakeCurrent(std::uintptr_t device, std::uintptr_t context) {
    currentDevice = device;
    currentContext = context;
    return 1;
}
std::uintptr_t wglGetCurrentContext() { return currentContext; }
std::uintptr_t wglGetCurrentDC() { return currentDevice; }

int yes() { return 1; }
// Besides what is called: what GDI asks, and what the library imports for its WGL chain.
[[gnu::alias("yes")]] int wglDeleteContext(), wglShareLists(), wglChoosePixelFormat(), wglSetPixelFormat(),
    wglGetPixelFormat(), wglDescribePixelFormat(), wglCopyContext(), wglCreateLayerContext(),
    wglDescribeLayerPlane(), wglGetLayerPaletteEntries(), wglRealizeLayerPalette(),
    wglSetLayerPaletteEntries(), wglSwapLayerBuffers(), wglSwapMultipleBuffers(), wglUseFontBitmapsA(),
    wglUseFontBitmapsW(), wglUseFontOutlinesA(), wglUseFontOutlinesW();

} // extern "C"
#endif
