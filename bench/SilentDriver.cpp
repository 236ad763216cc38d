// A GL of which every function does nothing and returns 0, GL_TRUE where the result is a GLboolean, or "3.0"
// where it is a text: so it is a driver of 3.0 without extensions.

#define GL_GLEXT_PROTOTYPES
#include <EGL/egl.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

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

struct Entry {
    const char* name;
    __eglMustCastToProperFunctionPointerType function;
};

const Entry entries[] = {
#define ZLT_GL_ENTRY(slot, group, name, result, parameters, arguments)                                       \
    {"gl" #name, reinterpret_cast<__eglMustCastToProperFunctionPointerType>(silent##name)},
#include "EntryPoints.inl"
#undef ZLT_GL_ENTRY
#undef ZLT_GL_CORE_ENTRY
};

} // namespace

extern "C" __eglMustCastToProperFunctionPointerType eglGetProcAddress(const char* name) {
    for (const Entry& entry : entries)
        if (std::strcmp(entry.name, name) == 0)
            return entry.function;
    return nullptr;
}
