#pragma once

#include <cstdint>
#include <string>

namespace ZLT::OGL {
class OpenGLCall;
} // namespace ZLT::OGL

/// @file
/// Memory of the program that a call reads, but for what draws read of arrays.

namespace ZLT::Interception {

/// Whether one of the entry's pointers is looked at.
bool entryReadsMemory(unsigned int entry);

/// What can't be read of what the call reads, as a sentence; "" for nothing. The sizes are asked of the
/// driver, by what capturedContext() is.
std::string unreadableOf(const OGL::OpenGLCall& call);

/// Forgets which memory was readable: the program may have given it back.
void forgetReadable();

} // namespace ZLT::Interception
