#pragma once

#include "intercept/Thread.h"

#include <cstddef>

/// @file
/// The driver's own functions, as the program would have got them.

namespace ZLT::Interception {

using RealFunction = void (*)();

#if !defined(_WIN32)
/// One for each entry; null while nobody asked for it. The addresses are the same for all contexts. Those
/// past GL 1.1 are the table that the checker calls by.
extern RealFunction realFunctions[];
#endif

/// Where the address of an entry's function is kept.
inline RealFunction& realFunction(unsigned int number) {
#if defined(_WIN32)
    return thread.functions[number];
#else
    return realFunctions[number];
#endif
}
/// The same, and finds the address if it is not known. A function that is nowhere ends the program, as the
/// loader would.
RealFunction requireReal(unsigned int number);

/// `glGetError` of the driver.
unsigned int realGetError();

/// By the name, "glBindTexture": the number of the entry, or the count of the entries for another name.
unsigned int entryNumber(const char* name);

/// Functions that came after the list. Each has a stub that counts the call and goes on to the driver.
std::size_t laterCount();
const char* laterName(std::size_t number);
/// By the name: the place among them, or laterCount().
std::size_t laterNumber(const char* name);

} // namespace ZLT::Interception
