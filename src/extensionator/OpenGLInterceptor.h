#pragma once

#include "Export.h"

/// @file
/// The chain of layers through which a client's GL calls pass, and the macro that calls it.

struct __GLsync; // NOLINT(bugprone-reserved-identifier): GL's own name

// Old programs see this header, by gl_intercept.h: it keeps to C++11.
namespace ZLT {
namespace OGL {

class OpenGLInterceptorDecorator;

/// One virtual operation for each of 1,833 GL functions. A client calls these instead of GL:
///
///     OpenGLInterceptor::Instance()->cgmBindTexture(__FILE__, __LINE__, GL_TEXTURE_2D, name);
///     CGM(BindTexture, GL_TEXTURE_2D, name); // the same
///
/// The call passes through the layers that were added, from the newest to the oldest, and ends in an
/// OpenGLErrorChecker, which calls the driver and throws ExceptionOGL when `glGetError` reports an error.
///
/// All calls have the same form: `glName` becomes `cgmName`; `file` and `line` of the client's call come
/// first, then the GL function's own parameters, in plain types (`unsigned int` for `GLenum`, `long long` for
/// `GLsizeiptr`); the result is the GL function's. Half floats are passed by value as `unsigned int`.
///
/// Layers are added and removed by one thread at a time, while no other is in a call. The entries
/// themselves may be called from any thread that has a current context; they share the layers and their
/// state.
class ZLT_OGL_API OpenGLInterceptor {
public:
    OpenGLInterceptor(const OpenGLInterceptor&) = delete;
    OpenGLInterceptor& operator=(const OpenGLInterceptor&) = delete;

    /// The head of the chain: the layer that was added last, or the OpenGLErrorChecker, which is made when
    /// the chain is empty. The chain owns the checker, the client owns every other layer. Needs no context
    /// and no initialised library. Null only when there was no memory for the checker.
    static OpenGLInterceptor* Instance();

    /// Deletes the checker and empties the chain; does nothing to an empty one. Pop all layers first.
    /// @throws InternalException "Enforce dynamic_cast<OpenGLErrorChecker *>(gInterceptor) != NULL" while a
    ///         layer is installed; the chain is unchanged then
    static void destroy();

    /// Pushes `layer` in front of the chain, and makes the old head its next layer, whatever was given to its
    /// constructor. Works on the one chain of the process, whichever layer it is called on. Nothing is
    /// checked: a null layer is the caller's error, and a layer that is added twice makes a cycle.
    /// @param layer  owned by the client; must live until it is popped
    void addInterceptor(OpenGLInterceptorDecorator* layer);

    /// Removes the head of the chain and returns it to its owner; its next layer stays as it was.
    /// @return null, and nothing is changed, when only the checker is there or nothing at all
    OpenGLInterceptorDecorator* popInterceptor();

#include "extensionator/InterceptorEntries.inl"

    // The last virtual slot, after all entries.
    virtual ~OpenGLInterceptor();

protected:
    OpenGLInterceptor();
};

} // namespace OGL
} // namespace ZLT

/// Calls `gl<name>` through the chain, with the file and line of this place:
/// `CGM(Clear, GL_COLOR_BUFFER_BIT)`, `CGM(Finish)`.
#if __cplusplus >= 202002L
#define CGM(name, ...)                                                                                       \
    (::ZLT::OGL::OpenGLInterceptor::Instance()->cgm##name(__FILE__, __LINE__ __VA_OPT__(, ) __VA_ARGS__))
#else
#define CGM(name, ...)                                                                                       \
    (::ZLT::OGL::OpenGLInterceptor::Instance()->cgm##name(__FILE__, __LINE__, ##__VA_ARGS__))
#endif
