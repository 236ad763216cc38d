#pragma once

#include "extensionator/OpenGLInterceptorDecorator.h"
#include "extensionator/win/wglInterceptorDecorator.h"

/// @file
/// Layers that come and go with a scope, for both chains. Like a push and a pop, all this is for one thread
/// at a time, while no other is in a call.

namespace ZLT::OGL {

/// The operations behind ScopedInterceptor and wglScopedInterceptor. `Chain` is the interceptor of a chain,
/// and `Layer` the base of its layers.
template <class Chain, class Layer>
class ScopedLayer {
public:
    /// Pushes `layer` in front of the chain, unless it is in the chain already.
    /// @param layer  stays the client's, and must outlive this object
    explicit ScopedLayer(Layer& layer) : layer_(&layer), pushed_(!isInstalled(layer)) {
        if (pushed_)
            Chain::Instance()->addInterceptor(&layer);
    }
    /// Takes the layer out again, wherever in the chain it is now. Nothing happens where somebody else did
    /// so, or where it was there before.
    ~ScopedLayer() {
        if (pushed_)
            remove(*layer_);
    }
    ScopedLayer(const ScopedLayer&) = delete;
    ScopedLayer& operator=(const ScopedLayer&) = delete;

    /// Whether calls pass through `layer` now.
    static bool isInstalled(const Layer& layer) {
        for (const Layer* at = head(); at; at = after(*at))
            if (at == &layer)
                return true;
        return false;
    }
    /// Takes `layer` out of the chain, head or not; the others stay in their order. Its own next layer is
    /// left as it was, as popInterceptor() does.
    /// @return whether it was there
    static bool remove(Layer& layer) {
        Layer* front = head();
        if (front == &layer) {
            Chain::Instance()->popInterceptor();
            return true;
        }
        for (; front; front = after(*front))
            if (after(*front) == &layer) {
                front->setInterceptor(layer.interceptor());
                return true;
            }
        return false;
    }

private:
    static Layer* head() { return dynamic_cast<Layer*>(Chain::Instance()); }
    static Layer* after(Layer& layer) { return dynamic_cast<Layer*>(layer.interceptor()); }
    static const Layer* after(const Layer& layer) { return dynamic_cast<const Layer*>(layer.interceptor()); }

    Layer* layer_;
    bool pushed_;
};

/// A layer of the GL chain for the length of a scope:
///
///     OpenGLTracer tracer(std::cerr);
///     {
///         const ScopedInterceptor traced(tracer);
///         drawTheSuspect();
///     } // not traced any more, also if that threw
///
/// `ScopedInterceptor::isInstalled(layer)` and `ScopedInterceptor::remove(layer)` work on every layer,
/// however it came into the chain.
using ScopedInterceptor = ScopedLayer<OpenGLInterceptor, OpenGLInterceptorDecorator>;

/// The same for the WGL chain.
using wglScopedInterceptor = ScopedLayer<wglInterceptor, wglInterceptorDecorator>;

} // namespace ZLT::OGL
