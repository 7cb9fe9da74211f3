// How the Windows benchmarks measure: the thing and its baseline take turns in one run. A machine
// that is slowed from outside slows both of a round alike, so the ratio is taken round by round;
// what is printed are medians.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <vector>

namespace mvp::bench {

constexpr int kRounds = 31;

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

// The middle one of the figures, of which there is at least one.
inline double Median(std::vector<double> figures) {
    const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
    std::nth_element(figures.begin(), middle, figures.end());
    return *middle;
}

// The rounds of a thing and its baseline; nanoseconds.
class Comparison {
public:
    void Add(double value, double baseline) {
        m_values.push_back(value);
        m_baselines.push_back(baseline);
        m_ratios.push_back(value / baseline);
    }
    double Value() const { return Median(m_values); }
    double Baseline() const { return Median(m_baselines); }
    double Ratio() const { return Median(m_ratios); }

private:
    std::vector<double> m_values;
    std::vector<double> m_baselines;
    std::vector<double> m_ratios;
};

// `time` gives the nanoseconds of one of the two. Who begins changes from round to round: what the
// first leaves behind (caches, work of the display) falls on the other.
template <class Time, class Value, class Baseline>
Comparison TakeTurns(int rounds, Time time, Value& value, Baseline& baseline) {
    Comparison result;
    for (int round = 0; round < rounds; ++round) {
        if (round % 2 == 0) {
            const double baselineTime = time(baseline);
            result.Add(time(value), baselineTime);
        } else {
            const double valueTime = time(value);
            result.Add(valueTime, time(baseline));
        }
    }
    return result;
}

template <class Body, class Baseline>
Comparison Compare(int repeats, Body body, Baseline baseline, int rounds = kRounds) {
    const auto time = [repeats](auto& what) { return NanosecondsEach(repeats, what); };
    return TakeTurns(rounds, time, body, baseline);
}

inline void Print(const char* pszWhat, const char* pszBaseline, const Comparison& result) {
    std::printf("%-44s %12.1f ns | %-36s %12.1f ns | ratio %.3f\n", pszWhat, result.Value(),
                pszBaseline, result.Baseline(), result.Ratio());
}

}  // namespace mvp::bench
