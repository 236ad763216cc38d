#pragma once

#include "platform/Platform.h"

namespace ZLT::Platform {

/// What a failing function returns: 0 in whatever type it has.
struct Failure {
    template <class T>
    operator T() const {
        return T();
    }
};

/// Leaves `error` for GetLastError() and a sentence for lastErrorText(): `sentence`, or what the number says
/// in general.
Failure fail(DWORD error, const char* sentence = nullptr);

} // namespace ZLT::Platform
