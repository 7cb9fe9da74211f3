// What a log line costs whose level is off.
//
// Baseline "empty call": a call of an exported function that takes the same arguments and returns.
#include <vklog/vklog.h>

#include "bench.h"

extern "C" __declspec(dllimport) void BenchEmptyLog(const char* pszTag, int nLevel,
                                                    const char* pszFormat, ...);

int main() {
    constexpr int kRepeats = 10'000'000;
    vklogSetOutput(nullptr, 0);
    int i = 0;
    mvp::bench::Print("vklogLog, level off", "empty call",
                      mvp::bench::Compare(
                          kRepeats, [&] { vklogLog("MVPINGUI", 8, "line %d of %s", ++i, "bench"); },
                          [&] { BenchEmptyLog("MVPINGUI", 8, "line %d of %s", ++i, "bench"); }));
}
