#pragma once

#include <functional>

/// Runs `body` between start and stop of the library and its core, and returns what it returned. An exception
/// is reported on the error stream, with its place where it has one, and gives 1; so is memory that was not
/// released.
int runExample(const std::function<int()>& body);
