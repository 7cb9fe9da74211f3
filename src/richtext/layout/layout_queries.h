// Questions to a finished layout: what lies under the mouse, where a link stands.
#pragma once

#include <cstdint>
#include <vector>

#include "richtext/layout/layout_boxes.h"

namespace mvp::richtext {

struct HitResult {
    std::uint32_t nLine = kNone;      // the line whose height the point lies in
    std::uint32_t nFragment = kNone;  // the innermost fragment under the point
    std::uint32_t nLink = kNone;      // its link
};

// A point from the text's top left corner. The whole height of the line counts as its fragment, so
// that a link is as easy to hit as its line is high.
HitResult HitTest(const LayoutBoxes& boxes, std::int32_t nX, std::int32_t nY);

struct LinkBox {
    std::int32_t nX = 0;
    std::int32_t nY = 0;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
};

// The rectangles a link covers, one for each of its fragments: what to repaint when the mouse comes
// and goes, and where to draw the focus.
std::vector<LinkBox> LinkBoxes(const LayoutBoxes& boxes, std::uint32_t nLink);

}  // namespace mvp::richtext
