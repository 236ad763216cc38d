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

inline bool OpenGLErrorReporter::leave() {
    Detail::reporterThread.inCall = false;
    return Detail::reporterThread.messages != 0;
}

// The work of an entry. Out of line, and so once for all entries of the same types.
//
// What only a failure needs waits in memory. In registers over the call, as the compiler would have it, it
// would cost each call six of them to save and restore, which is most of what a call without error costs
// here.
template <class Result, class... Parameters>
[[gnu::noinline]] Result OpenGLErrorReporter::reported(CallPlace place, Parameters... arguments) {
    struct {
        OpenGLErrorReporter* reporter;
        CallPlace place;
        CallValue values[sizeof...(arguments) + 1];
        [[gnu::noinline, gnu::cold]] unsigned int number() const {
            return entriesOf<Result, Parameters...>[place.index].number;
        }
    } kept = {this, place, {arguments..., 0}};
    asm volatile("" : : "g"(&kept) : "memory");
    enter(place.file, place.line);
    const auto pointer = entriesOf<Result, Parameters...>[place.index].pointer;
    const auto next = [&] {
        try {
            return (NextLayer::of(*kept.reporter)->*pointer)(place.file, place.line, arguments...);
        } catch (const LogicalException& failure) {
            kept.reporter->failed(failure,
                                  OpenGLCall(kept.number(), kept.place.file, kept.place.line, kept.values));
            return Result();
        }
    };
    const auto leaveEntry = [&] {
        if (leave()) [[unlikely]]
            kept.reporter->tellMessages(kept.number(), kept.place.file, kept.place.line);
    };
    if constexpr (std::is_void_v<Result>) {
        next();
        leaveEntry();
    } else {
        const Result result = next();
        leaveEntry();
        return result;
    }
}

} // namespace ZLT::OGL
