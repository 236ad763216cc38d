#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// @file
/// Where in a program's sources a call stands, by the debug information that the program brings.

namespace ZLT::Interception {

struct Place {
    std::string
        file; ///< as the compiler was given it; the module and the offset in it where that is not known
    unsigned int line = 0; ///< 0 where it is not known
    std::string function;  ///< which the place is in; empty where it is not known

    bool isKnown() const { return line != 0; }
};

/// Reads the debug information of modules. What does so is loaded when the first place is wanted: it brings
/// libraries that would make the start of every watched program later.
class PlaceFinder {
public:
    virtual ~PlaceFinder() = default;

    /// The place of the call that returns to `address`, in the module's own numbers.
    /// @param module    the path of its file; empty where the address lies in none
    /// @param function  what was called. A function that ends by calling another one is left before: then the
    ///                  address is its caller's, and the call is looked for in it
    virtual Place find(const std::string& module, std::uint64_t address, const std::string& function) = 0;
    /// A module of the program, in which a function may be that another one calls.
    virtual void addModule(const std::string& path) = 0;
    /// As find(), with the calls that were inlined around it, the innermost first.
    virtual std::vector<Place> findAll(const std::string& module, std::uint64_t address) = 0;
};

/// A module without debug information, or none: "libGLU.so.1+0x1234".
Place placeWithoutLine(const std::string& module, std::uint64_t address);

/// The finder of this system.
PlaceFinder& placeFinder();

} // namespace ZLT::Interception
