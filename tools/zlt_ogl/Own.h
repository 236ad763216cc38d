#pragma once

#include <string>

namespace ZLT::Interception {

/// The path of what belongs to the command: it lies beside it or among its libraries, wherever the folder was
/// put.
/// @throws Refusal when it is not there
std::string findOwn(const char* name);

} // namespace ZLT::Interception
