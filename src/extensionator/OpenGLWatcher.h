#pragma once

#include "extensionator/OpenGLCall.h"
#include "extensionator/OpenGLInterceptorDecorator.h"

#include <memory>

namespace ZLT::OGL {

class OpenGLWatchLayer;

/// Base of what treats all calls alike, to count, to time, to log or to leave some out: one function before
/// each call and one after it. The watcher has the layer that calls them.
///
///     class Counter : public OpenGLWatcher {
///     public:
///         std::map<std::string, int> calls;
///
///     protected:
///         bool before(const OpenGLCall& call) override {
///             ++calls[call.name()];
///             return true;
///         }
///     };
///
///     Counter counter;
///     const ScopedInterceptor installed(counter.layer());
///
/// The overrides run on the thread of the call, of several threads at the same time if the client calls so;
/// the watcher has no lock. They may make GL calls by the next layers (`layer().interceptor()`), but between
/// glBegin and glEnd only those that are legal there. An exception that leaves before() ends the call, which
/// is then not made. examples/count_calls is a complete program.
class ZLT_OGL_API OpenGLWatcher {
public:
    OpenGLWatcher();
    OpenGLWatcher(const OpenGLWatcher&) = delete;
    OpenGLWatcher& operator=(const OpenGLWatcher&) = delete;
    /// The layer goes too: take it off the chain first.
    virtual ~OpenGLWatcher();

    /// What to push in front of the chain. It lives as long as the watcher.
    OpenGLInterceptorDecorator& layer();

protected:
    /// Before the call is handed on.
    /// @return whether it is handed on. One that is not gives 0 or null as its result, and after() is not
    /// called
    virtual bool before(const OpenGLCall& call);
    /// After the call came back.
    virtual void after(const OpenGLCall& call);
    /// In place of after(), where a layer further down threw. The exception goes on to the client when this
    /// returns.
    virtual void failed(const OpenGLCall& call);

private:
    friend class OpenGLWatchLayer;
    std::unique_ptr<OpenGLWatchLayer> layer_;
};

} // namespace ZLT::OGL
