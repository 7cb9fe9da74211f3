#include "richtext/layout/layout_queries.h"

namespace mvp::richtext {
namespace {

bool Within(std::int64_t nPoint, std::int64_t nStart, std::int64_t nLength) {
    return nPoint >= nStart && nPoint < nStart + nLength;
}

}  // namespace

HitResult HitTest(const LayoutBoxes& boxes, std::int32_t nX, std::int32_t nY) {
    HitResult result;
    for (std::size_t i = 0; i < boxes.aLines.size(); ++i) {
        const LineBox& line = boxes.aLines[i];
        if (!Within(nY, line.nY, line.nHeight) || !Within(nX, line.nX, line.nWidth)) {
            continue;
        }
        result.nLine = static_cast<std::uint32_t>(i);
        for (std::uint32_t j = 0; j < line.nFragments; ++j) {
            const Fragment& fragment = boxes.aFragments[line.nFirstFragment + j];
            if (Within(nX, fragment.nX, fragment.nWidth)) {
                result.nFragment = line.nFirstFragment + j;
                result.nLink = fragment.nLink;
            }
        }
        // Lines do not overlap, save in tables too narrow for their words: the first one counts.
        if (result.nFragment != kNone) {
            break;
        }
    }
    return result;
}

std::vector<LinkBox> LinkBoxes(const LayoutBoxes& boxes, std::uint32_t nLink) {
    std::vector<LinkBox> found;
    for (const Fragment& fragment : boxes.aFragments) {
        if (nLink != kNone && fragment.nLink == nLink) {
            found.push_back({fragment.nX, fragment.nY, fragment.nWidth, fragment.nHeight});
        }
    }
    return found;
}

}  // namespace mvp::richtext
