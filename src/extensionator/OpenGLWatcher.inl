#pragma once

#include "extensionator/OpenGLWatcher.h"
#include "extensionator/SharedCall.h"

#include <type_traits>

namespace ZLT::OGL {

/// The layer of an OpenGLWatcher.
class OpenGLWatchLayer final : public OpenGLInterceptorDecorator {
public:
    explicit OpenGLWatchLayer(OpenGLWatcher& watcher) : watcher_(&watcher) {}

#include "extensionator/LayerEntries.inl"

private:
    // The work of every entry. Out of line, and so once for all entries of the same types.
    template <class Result, class... Parameters>
    [[gnu::noinline]] Result watched(CallPlace place, Parameters... arguments) {
        const TypedEntry<Result, Parameters...>& entry = entriesOf<Result, Parameters...>[place.index];
        const CallValue values[] = {arguments..., 0};
        const OpenGLCall call(entry.number, place.file, place.line, values);
        if (!watcher_->before(call))
            return Result();
        const auto next = [&] {
            try {
                return (NextLayer::of(*this)->*entry.pointer)(place.file, place.line, arguments...);
            } catch (...) {
                watcher_->failed(call);
                throw;
            }
        };
        if constexpr (std::is_void_v<Result>) {
            next();
            watcher_->after(call);
        } else {
            const Result result = next();
            watcher_->after(call);
            return result;
        }
    }

    OpenGLWatcher* watcher_;
};

} // namespace ZLT::OGL
