#pragma once

#include "extensionator/OpenGLInterceptorDecorator.h"

namespace ZLT::OGL {

/// A layer that hands every call on, as a base for layers that care about a few of them: override what you
/// need, and call the same entry of OpenGLForwarder to hand the call on.
///
///     class DrawCounter : public OpenGLForwarder {
///     public:
///         void cgmDrawArrays(const char* file, unsigned int line, unsigned int mode, int first,
///                            int count) override {
///             ++draws;
///             OpenGLForwarder::cgmDrawArrays(file, line, mode, first, count);
///         }
///         int draws = 0;
///     };
///
///     DrawCounter counter;
///     const ScopedInterceptor installed(counter);
///
/// For a layer that treats all calls alike, see OpenGLWatcher. Needs what the next layer needs; adds no
/// errors, no allocation and no lock.
class ZLT_OGL_API OpenGLForwarder : public OpenGLInterceptorDecorator {
public:
    /// @param next  the next layer, not owned; addInterceptor() replaces it. No call may pass while it is
    /// null
    OpenGLForwarder(OpenGLInterceptor* next = nullptr);
    ~OpenGLForwarder() override;

#include "extensionator/LayerEntries.inl"
};

} // namespace ZLT::OGL
