// Parse + style + layout of the rich-text engine with a fixed-advance measurer, against a floor: a
// loop that does no more than cut the same bytes into words, measure them and break lines greedily.
//
//     bench_richtext_layout [ROUNDS]     best of ROUNDS runs each (default 15)
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "counting_heap.h"
#include "processor_time.h"
#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"
#include "richtext_documents.h"

namespace {

using mvp::bench::CountHeap;
using mvp::bench::DocumentGenerator;
using mvp::bench::HeapCount;
using mvp::richtext::FixedMeasurer;
using mvp::richtext::RichText;

constexpr std::int32_t kWidth = 360;
constexpr std::size_t kKilobyte = 1024;

// Keeps the optimiser from leaving work out.
volatile std::int64_t g_nSink;

struct Token {
    std::uint32_t nOffset;
    std::uint32_t nLength;
    std::int32_t nWidth;
};

// The floor.
void BreakGreedily(const std::string& strText) {
    FixedMeasurer measurer;
    mvp::richtext::TextMeasurer& interface = measurer;
    mvp::richtext::FontMetrics metrics;
    const auto font = interface.OpenFont({{}, 13, 400, false}, metrics);
    std::vector<Token> tokens;
    const char* const text = strText.data();
    const char* const end = text + strText.size();
    for (const char* p = text; p != end;) {
        if (*p == '<') {
            while (p != end && *p != '>') {
                ++p;
            }
        } else if (*p != ' ' && *p != '>') {
            const char* const word = p;
            while (p != end && *p != ' ' && *p != '<') {
                ++p;
            }
            const auto length = static_cast<std::size_t>(p - word);
            tokens.push_back({static_cast<std::uint32_t>(word - text),
                              static_cast<std::uint32_t>(length),
                              interface.TextWidth(font, {word, length})});
            continue;
        }
        p += p != end ? 1 : 0;
    }
    const std::int32_t space = interface.TextWidth(font, " ");
    std::vector<std::uint32_t> lines;
    std::int32_t x = 0;
    for (const Token& token : tokens) {
        if (x != 0 && x + space + token.nWidth > kWidth) {
            lines.push_back(token.nOffset);
            x = 0;
        }
        x += token.nWidth + (x != 0 ? space : 0);
    }
    g_nSink = static_cast<std::int64_t>(lines.size());
}

std::unique_ptr<RichText> LayOut(FixedMeasurer& measurer, const std::string& strText) {
    auto text = std::make_unique<RichText>(measurer);
    text->SetStyleSheet(std::nullopt);
    text->SetText(strText);
    if (!text->Layout(kWidth)) {
        std::fputs("layout failed\n", stderr);
        std::exit(1);
    }
    return text;
}

void Report(const char* pszName, const std::string& strText, int nRounds) {
    const auto bytes = static_cast<double>(strText.size());
    const mvp::bench::Times times = mvp::bench::BestOf(
        nRounds, [&] { BreakGreedily(strText); },
        [&] {
            FixedMeasurer measurer;
            g_nSink = LayOut(measurer, strText)->Boxes().nHeight;
        });
    const double floor = times.baseline / bytes;
    const double whole = times.value;
    FixedMeasurer measurer;
    const HeapCount before = CountHeap();
    mvp::bench::ResetPeak();
    const auto text = LayOut(measurer, strText);
    const HeapCount after = CountHeap();
    std::printf("%-22s %9zu %11.2f %9.2f %9.2f %7.1f %9.1f %9.1f %10.1f\n", pszName, strText.size(),
                whole / 1000, whole / bytes, floor, whole / bytes / floor,
                static_cast<double>(after.nLive - before.nLive) / bytes,
                static_cast<double>(after.nPeak - before.nLive) / bytes,
                static_cast<double>(after.nAllocations - before.nAllocations) * 1024 / bytes);
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds =
        argc > 1 ? std::max(1, static_cast<int>(std::strtol(argv[1], nullptr, 10))) : 15;
    std::printf("%-22s %9s %11s %9s %9s %7s %9s %9s %10s\n", "document", "bytes", "us", "ns/byte",
                "floor", "ratio", "live B/B", "peak B/B", "allocs/KB");
    Report("notification 200 B", DocumentGenerator::Notification(), rounds);
    Report("notification 2 KB", DocumentGenerator::Report(), rounds);
    Report("mixed 50 KB", DocumentGenerator::Mixed(50 * kKilobyte), rounds);
    Report("table 50 x 20", DocumentGenerator::Table(), rounds);
    Report("mixed 1 MB", DocumentGenerator::Mixed(1024 * kKilobyte), rounds);
    Report("100 nested tables", DocumentGenerator::Nested(100), rounds);
    return 0;
}
