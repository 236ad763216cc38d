#pragma once

#include <exception>

namespace ZLT::OGL::internal {

/// Runs the body of a destructor, whose failure passes out of it. While another exception unwinds the stack
/// the failure is dropped: two at once would end the process.
template <class Body>
void tearDown(const Body& body) {
    try {
        body();
    } catch (...) {
        if (std::uncaught_exceptions() == 0)
            throw;
    }
}

} // namespace ZLT::OGL::internal
