#pragma once

#include "extensionator/OpenGLErrorReporter.h"
#include "extensionator/ReporterThread.h"
#include "extensionator/SharedCall.h"
#include "zlt/core/Exceptions.h"

#include <type_traits>

/// @file
/// What is done around each call: a test, two stores and another test.

namespace ZLT::OGL {

inline void OpenGLErrorReporter::enter(const char* file, unsigned int line) {
    if (Detail::reporterThread.settledFor != serial_) [[unlikely]]
        settle(file, line);
    Detail::reporterThread.inCall = true;
}

inline void OpenGLErrorReporter::leave(unsigned int number, const char* file, unsigned int line) {
    Detail::reporterThread.inCall = false;
    if (Detail::reporterThread.messages) [[unlikely]]
        tellMessages(number, file, line);
}

// The work of an entry. Out of line, and so once for all entries of the same types.
template <class Result, class... Parameters>
[[gnu::noinline]] Result OpenGLErrorReporter::reported(CallPlace place, Parameters... arguments) {
    enter(place.file, place.line);
    const TypedEntry<Result, Parameters...>& entry = entriesOf<Result, Parameters...>[place.index];
    const auto next = [&] {
        try {
            return (NextLayer::of(*this)->*entry.pointer)(place.file, place.line, arguments...);
        } catch (const LogicalException& failure) {
            const CallValue values[] = {arguments..., 0};
            failed(failure, OpenGLCall(entry.number, place.file, place.line, values));
            return Result();
        }
    };
    if constexpr (std::is_void_v<Result>) {
        next();
        leave(entry.number, place.file, place.line);
    } else {
        const Result result = next();
        leave(entry.number, place.file, place.line);
        return result;
    }
}

} // namespace ZLT::OGL
