#pragma once

#include "Export.h"
#include "platform/Platform.h"

namespace ZLT::OGL {

class wglInterceptorDecorator;

/// The smaller chain, for a client's WGL calls: the same as OpenGLInterceptor for 20 functions. A client
/// calls `wcgmName(file, line, arguments)` instead of `wglName(arguments)`; the call passes through the
/// layers that were added and ends in a wglErrorChecker, which calls the platform. `CWGM` fills in file
/// and line:
///
///     CWGM(MakeCurrent, device, context);
///
/// Functions of WGL extensions are not in it. Independent of the GL chain, and like it not locked: layers are
/// added and removed by one thread at a time, while no other is in a call.
class ZLT_OGL_API wglInterceptor {
public:
    wglInterceptor(const wglInterceptor&) = delete;
    wglInterceptor& operator=(const wglInterceptor&) = delete;

    /// The head of the chain: the layer that was added last, or the wglErrorChecker, which is made when the
    /// chain is empty. The chain owns the checker, the client every other layer. Needs no
    /// context and no initialised library. Null only when there was no memory for the checker.
    static wglInterceptor* Instance();

    /// Deletes the checker and empties the chain; does nothing to an empty one. Pop all layers first.
    /// @throws InternalException "Enforce dynamic_cast<wglErrorChecker *>(gInterceptor) != NULL" while
    ///         a layer is installed; the chain is unchanged then
    static void destroy();

    /// Pushes `layer` in front of the chain and makes the old head its next layer. Nothing is checked.
    /// @param layer  owned by the client; must live until it is popped
    void addInterceptor(wglInterceptorDecorator* layer);

    /// Removes the head of the chain and returns it to its owner.
    /// @return null, and nothing is changed, when only the checker is there or nothing at all
    wglInterceptorDecorator* popInterceptor();

#include "extensionator/win/wglInterceptorEntries.inl"

    // The last virtual slot, behind all entries.
    virtual ~wglInterceptor();

protected:
    wglInterceptor();
};

} // namespace ZLT::OGL

/// Calls `wgl<name>` (or `SwapBuffers`) through the WGL chain, with the file and line of this place.
#define CWGM(name, ...)                                                                                      \
    (::ZLT::OGL::wglInterceptor::Instance()->wcgm##name(__FILE__, __LINE__ __VA_OPT__(, ) __VA_ARGS__))
