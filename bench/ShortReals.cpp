// Proves that the tracer's own formatting of reals writes what std::to_chars writes: for all 2^32 floats, and
// for doubles by samples of several kinds. Says how many values took the short route; fails on any
// difference.

#include "extensionator/ValueForms.h"

#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <random>
#include <string_view>
#include <thread>
#include <vector>

namespace {

namespace Detail = ZLT::OGL::ValueForms::Detail;

struct Count {
    std::uint64_t compared = 0;
    std::uint64_t onShortRoute = 0;
    std::uint64_t different = 0;

    Count& operator+=(const Count& other) {
        compared += other.compared;
        onShortRoute += other.onShortRoute;
        different += other.different;
        return *this;
    }
};

std::mutex printing;
int printed = 0;

template <class Real>
void printDifference(Real value, std::string_view ours, std::string_view expected) {
    const std::lock_guard lock(printing);
    if (++printed <= 10)
        std::printf("%a: \"%.*s\" instead of \"%.*s\"\n", static_cast<double>(value),
                    static_cast<int>(ours.size()), ours.data(), static_cast<int>(expected.size()),
                    expected.data());
}

template <class Real>
bool goesShort(Real value) {
    const auto narrow = static_cast<float>(value);
    char text[Detail::maxRealSize];
    return static_cast<Real>(narrow) == value && Detail::formatShort(text, narrow);
}

template <class Real>
void compare(Real value, Count& count) {
    char ours[Detail::maxRealSize];
    char expected[Detail::maxRealSize];
    const char* oursEnd = Detail::formatReal(ours, value);
    const char* expectedEnd =
        std::to_chars(expected, expected + sizeof(expected), value, std::chars_format::general, 6).ptr;
    ++count.compared;
    count.onShortRoute += goesShort(value);
    if (std::string_view(ours, oursEnd) != std::string_view(expected, expectedEnd)) {
        ++count.different;
        printDifference(value, std::string_view(ours, oursEnd), std::string_view(expected, expectedEnd));
    }
}

bool print(const char* what, const Count& count) {
    std::printf("%-40s %12llu compared, %12llu by the short route, %llu different\n", what,
                static_cast<unsigned long long>(count.compared),
                static_cast<unsigned long long>(count.onShortRoute),
                static_cast<unsigned long long>(count.different));
    std::fflush(stdout);
    return count.different == 0;
}

Count compareAllFloats() {
    constexpr std::uint64_t end = std::uint64_t(1) << 32;
    constexpr std::uint64_t step = std::uint64_t(1) << 22;
    std::atomic<std::uint64_t> next = 0;
    std::mutex adding;
    Count total;
    const auto work = [&] {
        Count count;
        for (std::uint64_t begin; (begin = next.fetch_add(step)) < end;)
            for (std::uint64_t word = begin; word < begin + step; ++word)
                compare(std::bit_cast<float>(static_cast<std::uint32_t>(word)), count);
        const std::lock_guard lock(adding);
        total += count;
    };
    {
        const std::jthread first(work);
        const std::jthread second(work);
    }
    return total;
}

constexpr int sampleCount = 20000000;

template <class Next>
Count compareDoubles(Next next) {
    std::mt19937_64 random(1);
    Count count;
    for (int i = 0; i < sampleCount; ++i) {
        const double value = next(random);
        compare(value, count);
        compare(-value, count);
    }
    return count;
}

double randomBits(std::mt19937_64& random) { return std::bit_cast<double>(random()); }

double widenedFloat(std::mt19937_64& random) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(random()));
}

double decimal(std::mt19937_64& random) {
    static constexpr double scales[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};
    return static_cast<double>(random() % 10000000) / scales[random() % std::size(scales)];
}

// Half-way between two texts of six digits, or the nearest double, or one of its neighbours.
double nearTie(std::mt19937_64& random) {
    const double digits = static_cast<double>(100000 + random() % 900000) + 0.5;
    const double tie = digits * std::pow(10.0, static_cast<int>(random() % 12) - 10);
    switch (random() % 3) {
    case 0:
        return std::nextafter(tie, 0.0);
    case 1:
        return std::nextafter(tie, HUGE_VAL);
    default:
        return tie;
    }
}

double dyadic(std::mt19937_64& random) {
    return std::ldexp(static_cast<double>(random() % (1 << 24)), -static_cast<int>(random() % 40));
}

} // namespace

int main() {
    bool equal = print("doubles, random bits", compareDoubles(randomBits));
    equal &= print("doubles, widened floats", compareDoubles(widenedFloat));
    equal &= print("doubles, decimal numbers", compareDoubles(decimal));
    equal &= print("doubles, near ties", compareDoubles(nearTie));
    equal &= print("doubles, multiples of powers of two", compareDoubles(dyadic));
    equal &= print("all floats", compareAllFloats());
    return equal ? 0 : 1;
}
