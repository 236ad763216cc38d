// Exported projects: what it takes to build one of 100,000 calls, how many calls a second are exported, and
// how fast a project plays beside the replay of the same capture, both off screen.

#include "Comparison.h"
#include "Shell.h"
#include "TemporaryFolder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <tuple>

namespace {

using Bench::runShell;

const Bench::TemporaryFolder temporary;
const std::string folder = temporary.path() + "/";
const std::string command = "'" ZLT_OGL_COMMAND "' ";

// A capture of these frames, by its name.
std::string capture(const std::string& name, const std::string& arguments) {
    std::string file = "'" + folder + name + ".zlt' ";
    runShell(command + "capture -o " + file + "'" FRAME_LOOP "' " + arguments);
    return file;
}

std::string projectOf(const std::string& name) { return "'" + folder + name + "' "; }

// As a user builds it, with both processors of the machine that the aims are for.
void build(const std::string& name, const std::string& what) {
    const std::string project = projectOf(name), to = "'" + folder + name + "/build' ";
    runShell("cmake -S " + project + "-B " + to);
    const Bench::Usage usage = runShell("cmake --build " + to + "-j2");
    std::printf("%s: built in %.1f s (aim at most 20), %.1f s of the processor; the largest compiler takes "
                "%.0f MiB (aim at most 1024)\n",
                what.c_str(), usage.seconds, usage.processor, usage.mebibytes);
}

void measureExport(long calls) {
    const std::string file = capture("many", "parameters " + std::to_string(calls));
    double times[5];
    for (double& time : times)
        time = runShell(command + "export " + file + projectOf("many")).seconds;
    std::ranges::sort(times);
    std::printf(
        "export of %ld calls: median %.2f s, %.0f calls a second (aim at least 1000000); %.2f to %.2f s\n",
        calls, times[2], static_cast<double>(calls) / times[2], times[0], times[4]);
}

void play(benchmark::State& state, const std::string& line) {
    for (auto _ : state)
        state.SetIterationTime(runShell(line).seconds);
}

void add(const std::string& name, const std::string& line) {
    benchmark::RegisterBenchmark(name.c_str(), play, line)->Iterations(1)->UseManualTime();
}

} // namespace

int main(int argc, char** argv) {
    setenv("EGL_PLATFORM", "surfaceless", 1);
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    unsetenv("CMAKE_CXX_COMPILER_LAUNCHER"); // a cache of objects would be measured
    std::vector<Bench::Comparison> comparisons;
    measureExport(1'000'000);
    for (const auto& [name, arguments, what, times] :
         {std::tuple("calls", "parameters 100000", "100,000 calls", " --loop 50 "),
          std::tuple("arrays", "arrays 200", "200 frames of 1 MiB of arrays", " --loop 4 "),
          // Each time makes its contexts anew.
          std::tuple("start", "arrays 1", "1 frame", " --loop 20 ")}) {
        const std::string file = capture(name, arguments), ours = what + std::string(": the project"),
                          other = what + std::string(": zlt_ogl replay");
        runShell(command + "export " + file + projectOf(name));
        build(name, what);
        add(ours, "'" + folder + name + "/build/" + name + "' --headless" + times);
        add(other, command + "replay" + times + file);
        comparisons.push_back({ours, other, 1.0});
    }
    return Bench::run(argc, argv, comparisons);
}
