#pragma once

#include <string>
#include <vector>

/// @file
/// Runs the benchmarks of a program and prints them as two tables: all figures, then ours beside the others.

namespace Bench {

/// One figure beside what it is compared with, both by the names of their benchmarks.
struct Comparison {
    enum class By { ratio, nanoseconds };

    std::string ours;
    std::string other;
    /// The largest ratio, or difference in nanoseconds, that we want to see; 0 where there is no aim.
    double aim = 0;
    By by = By::ratio;
    /// Where set, both are compared after these were taken off: what each adds to the bare thing.
    std::string oursWithout = {};
    std::string otherWithout = {};
};

/// Runs the benchmarks several times in random order, and prints medians. A time is the processor time of the
/// thread, so that other programs on the machine disturb it little, but on Windows the real time; benchmarks
/// that take their own time (`UseManualTime`) count that. Rows that didn't run are left out.
/// @param argc, argv  flags of Google Benchmark, such as `--benchmark_filter`
/// @return for main(): 1 when a flag is unknown or a benchmark failed
int run(int argc, char** argv, const std::vector<Comparison>& comparisons);

} // namespace Bench
