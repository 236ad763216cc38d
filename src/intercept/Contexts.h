#pragma once

#include "intercept/DisplayLists.h"

#include <cstdint>
#include <memory>
#include <vector>

/// @file
/// The contexts that the program made, as far as it made them by functions that we see.

namespace ZLT::OGL {
class ExtensionManager;
} // namespace ZLT::OGL

namespace ZLT::Interception {

/// What one API calls a context: GLXContext, EGLContext, HGLRC.
using NativeContext = void*;

struct ContextRecord {
    std::uint32_t number = 0; ///< from 1, in the order of their making
    bool isDesktop = true;    ///< OpenGL, not OpenGL ES
    /// Whether it was seen when it was made, with what it shares.
    bool isKnownFromStart = true;
    std::shared_ptr<DisplayLists> lists;
    ListBalance balance;
#if defined(_WIN32)
    OGL::ExtensionManager* manager = nullptr; ///< made with the first call past GL 1.1
    std::vector<void (*)()> functions;        ///< as realFunction() keeps them
#endif
};

/// A context was made; `share` may be null, or unknown. Records are kept for good: a thread may still have
/// the context current when it is destroyed, and a new one of the same address gets another record.
ContextRecord* addContext(NativeContext context, NativeContext share, bool isDesktop);
/// The context is no more known by its address.
/// @return its record; null for an unknown one
ContextRecord* removeContext(NativeContext context);
/// Null for one that was made past us.
ContextRecord* findContext(NativeContext context);
/// One that was made past us is made current: as if it had been made now.
ContextRecord* findOrAddContext(NativeContext context, bool isDesktop);
/// `to` shares the lists of `from` from now on.
void shareLists(NativeContext from, NativeContext to);
/// The calling thread has this context from now on; null for none.
void setCurrentContext(ContextRecord* context);
/// Between calls: whether those of the thread go to its chain, by the context that it has.
void chooseChain();

} // namespace ZLT::Interception
