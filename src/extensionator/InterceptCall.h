#pragma once

#include "extensionator/OpenGLInterceptor.h"

/// @file
/// What the macros of gl_intercept.h call where a parameter is a pointer. Old programs see this header: it
/// keeps to C++11.

namespace ZLT {
namespace OGL {
namespace Intercept {

/// An argument that becomes a T by a cast. It accepts what a C compiler does, a `void*` for any pointer, and
/// either spelling where GL headers differ: a const inside a pointer to pointers, two names of the 64-bit
/// integers.
template <class T>
struct Pointer {
    // By reference, so that a class's own conversion to a pointer counts. It is made of an argument and
    // passed on as a T, so it stands in for no copy.
    template <class From>
    Pointer(From&& from) : value((T)from) {} // NOLINT(bugprone-forwarding-reference-overload)
    /// A null that is written as 0.
    Pointer(int null) : value((T)(long long)null) {}
    operator T() const { return value; }

    T value;
};

/// What is passed for a parameter of type T: a pointer to void takes any pointer by itself.
template <class T>
struct Argument {
    typedef T type;
};
template <class T>
struct Argument<T*> {
    typedef Pointer<T*> type;
};
template <>
struct Argument<void*> {
    typedef void* type;
};
template <>
struct Argument<const void*> {
    typedef const void* type;
};

/// A call of one entry of the chain, up to its arguments.
template <class Result, class... Parameters>
struct Call {
    Result operator()(typename Argument<Parameters>::type... arguments) const {
        return (OpenGLInterceptor::Instance()->*entry)(file, line, arguments...);
    }

    Result (OpenGLInterceptor::*entry)(const char* file, unsigned int line, Parameters...);
    const char* file;
    unsigned int line;
};

/// `call(&OpenGLInterceptor::cgmFogfv, __FILE__, __LINE__)(GL_FOG_COLOR, memory)`: as cgmFogfv(), but
/// `memory` may be any pointer.
template <class Result, class... Parameters>
Call<Result, Parameters...> call(Result (OpenGLInterceptor::*entry)(const char*, unsigned int, Parameters...),
                                 const char* file, unsigned int line) {
    return Call<Result, Parameters...>{entry, file, line};
}

} // namespace Intercept
} // namespace OGL
} // namespace ZLT
