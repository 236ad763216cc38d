#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// @file
/// The places that calls come from. In the program a place is a number, given once to each return address;
/// the command finds its file and line, so that nothing here reads debug information.

namespace ZLT::Interception {

/// The file text that stands for a place in the layers; the line is the place's number.
inline constexpr const char* siteFile = "@";

/// The number of the place that this return address stands for, from 1. The first time it tells the command;
/// any other time it takes no lock. For any thread at any time.
std::uint32_t siteOf(const void* returnAddress);

/// Of the call that the thread is in.
std::uint32_t currentSite();

/// Forgets all addresses: a module went, and another one may lie there later.
void forgetSites();

/// Where an address lies, by the system's loader: the path of the module ("" for the program itself) and the
/// address as the module's file has it. False where there is no module.
bool findModule(const void* address, const char*& path, std::uint64_t& offset);
/// The modules that were loaded since the last time: all of them at first.
std::vector<std::string> newModules();
/// The absolute path of a module's file.
std::string filePath(const char* module);

} // namespace ZLT::Interception
