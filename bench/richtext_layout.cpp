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

using mvp::bench::CDocumentGenerator;
using mvp::bench::CountHeap;
using mvp::bench::HeapCount;
using mvp::richtext::CFixedMeasurer;
using mvp::richtext::CRichText;

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
    CFixedMeasurer measurer;
    mvp::richtext::CTextMeasurer& interface = measurer;
    mvp::richtext::FontMetrics metrics;
    const auto font = interface.OpenFont({{}, 13, 400, false}, metrics);
    std::vector<Token> tokens;
    const char* const pText = strText.data();
    const char* const pEnd = pText + strText.size();
    for (const char* p = pText; p != pEnd;) {
        if (*p == '<') {
            while (p != pEnd && *p != '>') {
                ++p;
            }
        } else if (*p != ' ' && *p != '>') {
            const char* const pWord = p;
            while (p != pEnd && *p != ' ' && *p != '<') {
                ++p;
            }
            const auto nLength = static_cast<std::size_t>(p - pWord);
            tokens.push_back({static_cast<std::uint32_t>(pWord - pText),
                              static_cast<std::uint32_t>(nLength),
                              interface.TextWidth(font, {pWord, nLength})});
            continue;
        }
        p += p != pEnd ? 1 : 0;
    }
    const std::int32_t nSpace = interface.TextWidth(font, " ");
    std::vector<std::uint32_t> lines;
    std::int32_t nX = 0;
    for (const Token& token : tokens) {
        if (nX != 0 && nX + nSpace + token.nWidth > kWidth) {
            lines.push_back(token.nOffset);
            nX = 0;
        }
        nX += token.nWidth + (nX != 0 ? nSpace : 0);
    }
    g_nSink = static_cast<std::int64_t>(lines.size());
}

std::unique_ptr<CRichText> LayOut(CFixedMeasurer& measurer, const std::string& strText) {
    auto pText = std::make_unique<CRichText>(measurer);
    pText->SetStyleSheet(std::nullopt);
    pText->SetText(strText);
    if (!pText->Layout(kWidth)) {
        std::fputs("layout failed\n", stderr);
        std::exit(1);
    }
    return pText;
}

void Report(const char* pszName, const std::string& strText, int nRounds) {
    const auto nBytes = static_cast<double>(strText.size());
    const mvp::bench::Times times = mvp::bench::BestOf(
        nRounds, [&] { BreakGreedily(strText); },
        [&] {
            CFixedMeasurer measurer;
            g_nSink = LayOut(measurer, strText)->Boxes().nHeight;
        });
    const double floor = times.baseline / nBytes;
    const double whole = times.value;
    CFixedMeasurer measurer;
    const HeapCount before = CountHeap();
    mvp::bench::ResetPeak();
    const auto pText = LayOut(measurer, strText);
    const HeapCount after = CountHeap();
    std::printf("%-22s %9zu %11.2f %9.2f %9.2f %7.1f %9.1f %9.1f %10.1f\n", pszName, strText.size(),
                whole / 1000, whole / nBytes, floor, whole / nBytes / floor,
                static_cast<double>(after.nLive - before.nLive) / nBytes,
                static_cast<double>(after.nPeak - before.nLive) / nBytes,
                static_cast<double>(after.nAllocations - before.nAllocations) * 1024 / nBytes);
}

}  // namespace

int main(int argc, char** argv) {
    const int nRounds =
        argc > 1 ? std::max(1, static_cast<int>(std::strtol(argv[1], nullptr, 10))) : 15;
    std::printf("%-22s %9s %11s %9s %9s %7s %9s %9s %10s\n", "document", "bytes", "us", "ns/byte",
                "floor", "ratio", "live B/B", "peak B/B", "allocs/KB");
    Report("notification 200 B", CDocumentGenerator::Notification(), nRounds);
    Report("notification 2 KB", CDocumentGenerator::Report(), nRounds);
    Report("mixed 50 KB", CDocumentGenerator::Mixed(50 * kKilobyte), nRounds);
    Report("table 50 x 20", CDocumentGenerator::Table(), nRounds);
    Report("mixed 1 MB", CDocumentGenerator::Mixed(1024 * kKilobyte), nRounds);
    Report("100 nested tables", CDocumentGenerator::Nested(100), nRounds);
    return 0;
}
