#pragma once

#include <exception>

namespace ZLT::OGL::internal {

/// Runs the body of a destructor, whose failure passes out of it. When another exception unwinds the object
/// the failure is dropped: two at once would end the process.
/// @param exceptions  `std::uncaught_exceptions()` when the object was made. No more of them at its end: it
///                    goes in the ordinary way, be it inside a destructor that an older exception has called.
template <class Body>
void tearDown(int exceptions, const Body& body) {
    try {
        body();
    } catch (...) {
        if (std::uncaught_exceptions() <= exceptions)
            throw;
    }
}

} // namespace ZLT::OGL::internal
