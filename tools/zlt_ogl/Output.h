#pragma once

#include <memory>
#include <ostream>
#include <string>

namespace ZLT::Interception {

/// The name of a new file here: that of `path` with this extension, and a number where there is one.
std::string freeName(const std::string& path, const std::string& extension);
/// A file to write, from its start. The program that is started does not get it.
/// @throws Refusal when it can't be written
std::unique_ptr<std::ostream> openOutput(const std::string& path);
/// @throws Refusal when something of it was lost
void closeOutput(std::ostream& file, const std::string& path);

} // namespace ZLT::Interception
