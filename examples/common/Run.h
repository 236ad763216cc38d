#pragma once

#include <functional>
#include <string>

/// Runs `body` between start and stop of the library and its core, and returns what it returned. An exception
/// is reported on the error stream, with its place where it has one, and gives 1; so is memory that was not
/// released.
int runExample(const std::function<int()>& body);

/// The full path of `file` in the folder that the command line names, or else in the current one. The
/// folder is made if it is missing.
std::string outputPath(int argc, char** argv, const char* file);
