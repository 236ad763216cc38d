// Whole programs under the command, from start to end: `check` against the program that asks for its errors
// itself, `check --more` against `check`, `trace` against `apitrace trace`, each into a file and with the
// places of the calls; and what a start costs. The times are real ones, since two processes work.

#include "Comparison.h"
#include "Shell.h"
#include "TemporaryFolder.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <tuple>

namespace {

constexpr const char* count = "2000000";
constexpr int starts = 5;
const Bench::TemporaryFolder temporary;
const std::string folder = temporary.path();
const std::string command = "'" ZLT_OGL_COMMAND "' ";

void program(benchmark::State& state, const std::string& line) {
    Bench::Usage usage;
    for (auto _ : state) {
        usage = Bench::runShell(line);
        state.SetIterationTime(usage.seconds);
    }
    state.counters["MiB"] = usage.mebibytes;
}

void add(const std::string& name, const std::string& line, int times = 1) {
    benchmark::RegisterBenchmark(name.c_str(), program, line)->Iterations(times)->UseManualTime();
}

} // namespace

int main(int argc, char** argv) {
    using Bench::Comparison;
    setenv("EGL_PLATFORM", "surfaceless", 1);
    const std::string loop = "'" CALL_LOOP "' ";
    const std::string traced = command + "trace -o '" + folder + "/trace.txt' ";
    const std::string apitrace = "apitrace trace --api egl --output '" + folder + "/calls.trace' ";
    std::vector<Comparison> comparisons;

    add("glBindTexture and glGetError: bare", loop + "asked " + count);
    add("glBindTexture: zlt_ogl check", command + "check " + loop + "bind " + count);
    comparisons.push_back({"glBindTexture: zlt_ogl check", "glBindTexture and glGetError: bare", 1.5});
    // What the further checks add where draws read client arrays: of many small draws, and of few large ones.
    for (const auto& [name, kind, draws] : {std::tuple{"36 indices of client arrays", "cubes", "200000"},
                                            std::tuple{"1 MiB of client arrays", "arrays", "500"}}) {
        const std::string line = std::string("'" FRAME_LOOP "' ") + kind + ' ' + draws,
                          plain = name + std::string(": zlt_ogl check"), more = plain + " --more";
        add(name + std::string(": bare"), line);
        add(plain, command + "check " + line);
        add(more, command + "check --more " + line);
        comparisons.push_back({more, plain, 3});
    }
    add("start: bare", loop + "bind 1", starts);
    add("start: zlt_ogl check", command + "check " + loop + "bind 1", starts);
    comparisons.push_back({"start: zlt_ogl check", "start: bare", 15e6, Comparison::By::nanoseconds});
    for (const auto& [name, kind, aim] :
         {std::tuple{"glBindTexture", "bind", 0.4}, std::tuple{"glColor4f", "random", 0.8}}) {
        const std::string ours = name + std::string(": zlt_ogl trace");
        add(ours, traced + loop + kind + " " + count);
        if (std::system("command -v apitrace >/dev/null") != 0)
            continue;
        add(name + std::string(": apitrace trace"), apitrace + loop + kind + " " + count);
        comparisons.push_back({ours, name + std::string(": apitrace trace"), aim});
    }
    if (std::system("command -v apitrace >/dev/null") == 0) {
        add("start: apitrace trace", apitrace + loop + "bind 1", starts);
        comparisons.push_back({"start: zlt_ogl check", "start: apitrace trace"});
    }
    return Bench::run(argc, argv, comparisons);
}
