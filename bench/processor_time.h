// How the native benchmarks measure: in processor time, which other programs on the machine disturb
// less than the time of day. The thing and its baseline take turns in one run, and each figure is
// the best of the rounds.
#pragma once

#include <algorithm>
#include <ctime>
#include <functional>

namespace mvp::bench {

inline double CpuNanoseconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

// Nanoseconds of one run, of so many.
inline double TimeOf(long nRuns, const std::function<void()>& run) {
    const double start = CpuNanoseconds();
    for (long i = 0; i < nRuns; ++i) {
        run();
    }
    return (CpuNanoseconds() - start) / static_cast<double>(nRuns);
}

struct Times {
    double baseline;
    double value;
};

// Each round has enough runs to be measurable.
inline Times BestOf(int nRounds, const std::function<void()>& baseline,
                    const std::function<void()>& value) {
    constexpr double kRoundNs = 5e6;
    const auto runsOf = [](double ns) {
        return std::max(1L, static_cast<long>(kRoundNs / std::max(1.0, ns)));
    };
    Times best{TimeOf(3, baseline), TimeOf(3, value)};
    const long baselineRuns = runsOf(best.baseline);
    const long valueRuns = runsOf(best.value);
    for (int i = 0; i < nRounds; ++i) {
        best.baseline = std::min(best.baseline, TimeOf(baselineRuns, baseline));
        best.value = std::min(best.value, TimeOf(valueRuns, value));
    }
    return best;
}

}  // namespace mvp::bench
