// The name of a GL value against a compiled switch over the same values.

#include "Comparison.h"
#include "OtherTokenNames.h"
#include "extensionator/TokenName.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr unsigned int named[] = {
#define ZLT_GL_TOKEN(value, name) value,
#include "extensionator/TokenRows.inl"
#undef ZLT_GL_TOKEN
};

// So many that no branch predictor learns their order.
constexpr std::size_t valueCount = std::size_t(1) << 18;

std::vector<unsigned int> draw(std::function<unsigned int()> next) {
    std::vector<unsigned int> values(valueCount);
    std::ranges::generate(values, next);
    return values;
}

std::vector<unsigned int> presentValues() {
    return draw([random = std::mt19937(1)]() mutable { return named[random() % std::size(named)]; });
}

// Below `end`; the enumerants lie below 0x9200.
std::vector<unsigned int> absentValues(std::uint64_t end) {
    const std::set<unsigned int> names(std::begin(named), std::end(named));
    return draw([&, random = std::mt19937(2)]() mutable {
        for (;;) {
            const auto value = static_cast<unsigned int>(random() % end);
            if (!names.contains(value))
                return value;
        }
    });
}

// GL_LINE_BIT, GL_FLOAT, GL_BLEND, GL_TEXTURE_2D, GL_RGBA, GL_MODELVIEW, GL_TEXTURE0, GL_ARRAY_BUFFER.
constexpr unsigned int handful[] = {4, 0x1406, 0x0BE2, 0x0DE1, 0x1908, 0x1700, 0x84C0, 0x8892};

std::vector<unsigned int> hotValues() {
    return draw([random = std::mt19937(3)]() mutable { return handful[random() % std::size(handful)]; });
}

std::vector<unsigned int> repeatingValues() {
    return draw([i = 0u]() mutable { return handful[i++ % std::size(handful)]; });
}

using Function = const char* (*)(unsigned int value);

void add(const std::string& name, Function function, const std::vector<unsigned int>& values) {
    benchmark::RegisterBenchmark(name.c_str(), [=, &values](benchmark::State& state) {
        std::size_t i = 0;
        for (auto _ : state)
            benchmark::DoNotOptimize(function(values[i++ % valueCount]));
    });
}

} // namespace

int main(int argc, char** argv) {
    // Where all branches of the switch are foreseen it costs little more than a call, and there is no aim.
    struct Kind {
        std::string name;
        std::vector<unsigned int> values;
        double aim;
    };
    const Kind kinds[] = {{"present", presentValues(), 0.2},
                          {"absent, among the enumerants", absentValues(0x9200), 0.2},
                          {"absent, anywhere", absentValues(std::uint64_t(1) << 32), 0},
                          {"hot, random order", hotValues(), 0.2},
                          {"hot, repeating", repeatingValues(), 0}};

    std::vector<Bench::Comparison> comparisons;
    for (const auto& [name, values, aim] : kinds) {
        for (const unsigned int value : values)
            if (std::strcmp(ZLT::OGL::TokenName(value), switchTokenName(value)) != 0) {
                std::fprintf(stderr, "0x%x: TokenName and the switch disagree\n", value);
                return 1;
            }
        add(name + ": TokenName", ZLT::OGL::TokenName, values);
        add(name + ": switch", switchTokenName, values);
        comparisons.push_back({name + ": TokenName", name + ": switch", aim});
#if defined(WITH_GLBINDING)
        add(name + ": glbinding", glbindingTokenName, values);
        comparisons.push_back({name + ": TokenName", name + ": glbinding"});
#endif
    }
    return Bench::run(argc, argv, comparisons);
}
