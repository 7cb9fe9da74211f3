// Runs a peer and our engine on the same documents, in turn, and prints how much longer the peer
// takes. Both read their markup and the rules of the built-in style sheet, and lay out in the same
// width; the documents are made beforehand.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace mvp::bench {

constexpr std::int32_t kPeerWidth = 360;  // pixels
constexpr std::int32_t kPeerFontSize = 13;

struct Peer {
    std::string strName;  // and version
    std::function<std::string(const std::string&)> translate;
    // Returns the height in pixels, which shows that every line has been laid out.
    std::function<std::int32_t(const std::string&)> layOut;
    bool bTables = true;  // without, the documents with tables are left out
};

void ComparePeer(const Peer& peer);

}  // namespace mvp::bench
