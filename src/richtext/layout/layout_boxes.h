// The third stage's result: everything paint and the mouse need, as boxes in pixels from the top
// left corner of the text. Paint only reads them:
//
// 1. aBlocks in their order: filling and border of each table and cell (outer before inner).
// 2. aLines in their order, and of each line its fragments in their order: an inline box (filling
//    and border) stands before the text inside it; a text fragment has its style's background.
//
// Text of a fragment is drawn with its style's font, its baseline at nY + the font's ascent, with
// nExtra pixels spread over the spaces in it.
#pragma once

#include <cstdint>
#include <vector>

#include "richtext/document/styled_document.h"
#include "richtext/style/style_table.h"

namespace mvp::richtext {

enum class FragmentKind : std::uint8_t {
    Text,   // nOffset, nLength: bytes of the document's strText
    Tab,    // empty room, with its style's background and decorations
    Image,  // nOffset: of the document's aImages
    Rule,   // a horizontal rule; nOffset: of the document's aRules
    Box     // border box of an inline element on this line; nOffset: kBoxEdge flags; nLength: place
            // in aFragments behind the last fragment inside
};

// Which edges of an inline element lie on this line: an element that runs over several lines is
// open at the ends in between.
constexpr std::uint32_t kBoxLeftEdge = 1;
constexpr std::uint32_t kBoxRightEdge = 2;

struct Fragment {
    std::int32_t nX = 0;
    std::int32_t nY = 0;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    std::uint32_t nOffset = 0;
    std::uint32_t nLength = 0;
    std::uint32_t nStyle = 0;
    std::uint32_t nLink = kNone;
    std::int32_t nExtra = 0;  // of a justified line, in nWidth already
    FragmentKind kind = FragmentKind::Text;
};

struct LineBox {
    std::int32_t nX = 0;
    std::int32_t nY = 0;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    std::int32_t nBaseline = 0;  // below nY
    std::uint32_t nFirstFragment = 0;
    std::uint32_t nFragments = 0;
    std::uint32_t nBlock = kNone;  // the cell it stands in, a place in aBlocks
};

// A table or a cell.
struct BlockBox {
    std::int32_t nX = 0;
    std::int32_t nY = 0;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    std::int32_t nContentY = 0;  // a cell's: where its lines begin
    std::uint32_t nDecoration = 0;
    std::uint32_t nIndex = 0;       // of the document's aTables or aCells
    std::uint32_t nParent = kNone;  // the block around it; always before it
    bool bCell = false;
};

struct LayoutBoxes {
    std::vector<BlockBox> aBlocks;
    std::vector<LineBox> aLines;
    std::vector<Fragment> aFragments;
    std::int32_t nWidth = 0;  // of everything, which may be more than was asked for
    std::int32_t nHeight = 0;
};

// No coordinate leaves this range, however large the markup asks things to be.
constexpr std::int32_t kMaxCoordinate = 1 << 30;

constexpr std::int32_t HeldCoordinate(std::int64_t n) {
    return n > kMaxCoordinate    ? kMaxCoordinate
           : n < -kMaxCoordinate ? -kMaxCoordinate
                                 : static_cast<std::int32_t>(n);
}

}  // namespace mvp::richtext
