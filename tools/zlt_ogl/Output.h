#pragma once

#include <fstream>
#include <string>

namespace ZLT::Interception {

/// A file to write, from its start.
/// @throws Refusal when it can't be written
std::ofstream openOutput(const std::string& path);
/// @throws Refusal when something of it was lost
void closeOutput(std::ofstream& file, const std::string& path);

} // namespace ZLT::Interception
