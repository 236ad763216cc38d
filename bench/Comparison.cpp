#include "Comparison.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>

namespace Bench {

namespace {

class Medians : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            const std::string& name = run.run_name.function_name;
            names_[run.family_index] = name;
            if (run.error_occurred) {
                std::printf("%s: %s\n", name.c_str(), run.error_message.c_str());
                failed_ = true;
                continue;
            }
#if defined(_WIN32)
            const bool real = true; // a thread's processor time goes in ticks of 10 or 15 ms
#else
            const bool real = run.run_name.time_type == "manual_time";
#endif
            times_[name].push_back(real ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime());
        }
    }

    void print(const std::vector<Comparison>& comparisons) {
        std::printf("%-58s %10s %10s %10s\n", "per call", "median ns", "least", "most");
        for (const auto& [index, name] : names_) {
            std::vector<double>& times = times_[name];
            if (times.empty())
                continue;
            std::ranges::sort(times);
            std::printf("%-58s %10.2f %10.2f %10.2f\n", name.c_str(), median(name), times.front(),
                        times.back());
        }
        std::printf("\n");
        for (const Comparison& comparison : comparisons)
            if (ran(comparison.ours) && ran(comparison.other) && ran(comparison.oursWithout) &&
                ran(comparison.otherWithout))
                print(comparison);
        std::printf("\n");
    }

    bool failed() const { return failed_; }

private:
    bool ran(const std::string& name) const { return name.empty() || times_.contains(name); }

    double median(const std::string& name) const {
        if (name.empty())
            return 0;
        const std::vector<double>& times = times_.at(name);
        return times[times.size() / 2];
    }

    void print(const Comparison& comparison) const {
        const double ours = median(comparison.ours) - median(comparison.oursWithout);
        const double other = median(comparison.other) - median(comparison.otherWithout);
        std::printf("%s%s\n    against %s: ", comparison.ours.c_str(),
                    comparison.oursWithout.empty() ? "" : ", what is added to the call",
                    comparison.other.c_str());
        const bool isRatio = comparison.by == Comparison::By::ratio;
        const double value = isRatio ? ours / other : ours - other;
        std::printf(isRatio ? "%.3f times" : "%+.2f ns", value);
        if (comparison.aim > 0)
            std::printf(", aim at most %g: %s", comparison.aim, value <= comparison.aim ? "met" : "MISSED");
        std::printf("\n");
    }

    // In the order in which they were registered.
    std::map<std::int64_t, std::string> names_;
    std::map<std::string, std::vector<double>> times_;
    bool failed_ = false;
};

} // namespace

int run(int argc, char** argv, const std::vector<Comparison>& comparisons) {
    // Flags of the command line come later and win.
    std::string repetitions = "--benchmark_repetitions=11";
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string minTime = "--benchmark_min_time=0.1";
    std::vector<char*> arguments = {argv[0], repetitions.data(), interleaving.data(), minTime.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;

    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    medians.print(comparisons);
    return medians.failed();
}

} // namespace Bench
