// How the Windows benchmarks measure: the thing and its baseline take turns in one run, each figure
// is the best of the rounds, and what is printed is the ratio. A busy machine slows both alike.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>

namespace mvp::bench {

constexpr int kRounds = 15;

// Nanoseconds for one call of `body`, over `repeats` calls.
template <class Body>
double NanosecondsEach(int repeats, Body& body) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < repeats; ++i) {
        body();
    }
    const std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - start;
    return took.count() / repeats;
}

struct Comparison {
    double value = std::numeric_limits<double>::max();     // nanoseconds
    double baseline = std::numeric_limits<double>::max();  // nanoseconds
    double Ratio() const { return value / baseline; }
};

template <class Body, class Baseline>
Comparison Compare(int repeats, Body body, Baseline baseline, int rounds = kRounds) {
    Comparison result;
    for (int round = 0; round < rounds; ++round) {
        result.baseline = std::min(result.baseline, NanosecondsEach(repeats, baseline));
        result.value = std::min(result.value, NanosecondsEach(repeats, body));
    }
    return result;
}

inline void Print(const char* pszWhat, const char* pszBaseline, const Comparison& result) {
    std::printf("%-44s %12.1f ns | %-36s %12.1f ns | ratio %.3f\n", pszWhat, result.value,
                pszBaseline, result.baseline, result.Ratio());
}

}  // namespace mvp::bench
