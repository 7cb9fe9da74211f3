#include "compare_peer.h"

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "processor_time.h"
#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"
#include "richtext_documents.h"

namespace mvp::bench {
namespace {

constexpr int kRounds = 7;
constexpr std::size_t kKilobyte = 1024;

std::int32_t LayOutOurs(const std::string& strText) {
    richtext::FixedMeasurer measurer;
    richtext::RichText text(measurer);
    text.SetStyleSheet(std::nullopt);
    text.SetText(strText);
    if (!text.Layout(kPeerWidth)) {
        std::fputs("layout failed\n", stderr);
        std::exit(1);
    }
    return text.Boxes().nHeight;
}

void CompareDocument(const Peer& peer, const char* pszDocument, const std::string& strOurs) {
    const std::string theirs = peer.translate(strOurs);
    std::int32_t ourHeight = 0;
    std::int32_t theirHeight = 0;
    const Times times = BestOf(
        kRounds, [&] { ourHeight = LayOutOurs(strOurs); },
        [&] { theirHeight = peer.layOut(theirs); });
    std::printf("%-22s %9zu %9d %9d %12.1f %12.1f %8.1f\n", pszDocument, strOurs.size(), ourHeight,
                theirHeight, times.baseline / 1000, times.value / 1000,
                times.value / times.baseline);
    std::fflush(stdout);
}

}  // namespace

void ComparePeer(const Peer& peer) {
    std::printf("%s\n%-22s %9s %9s %9s %12s %12s %8s\n", peer.strName.c_str(), "document", "bytes",
                "height", "its", "us", "its", "ratio");
    CompareDocument(peer, "notification 200 B", DocumentGenerator::Notification());
    if (peer.bTables) {
        CompareDocument(peer, "notification 2 KB", DocumentGenerator::Report());
    }
    CompareDocument(peer, "mixed 50 KB", DocumentGenerator::Mixed(50 * kKilobyte));
    if (peer.bTables) {
        CompareDocument(peer, "table 50 x 20", DocumentGenerator::Table());
    }
    CompareDocument(peer, "mixed 1 MB", DocumentGenerator::Mixed(1024 * kKilobyte));
}

}  // namespace mvp::bench
