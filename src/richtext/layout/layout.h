// The third stage: lays a styled document out in a width. Two walks over the items and one over
// the boxes, none of which recurses: the first (only where there are tables) measures cells from
// the inside out, the second fills lines and cells from the outside in, the third adds up
// positions.
#pragma once

#include "richtext/document/styled_document.h"
#include "richtext/layout/layout_boxes.h"
#include "richtext/style/text_measurer.h"

namespace mvp::richtext {

// nWidth: pixels, held between 0 and 100,000. The measurer must be the one the document was built
// with.
LayoutBoxes LayoutDocument(const StyledDocument& document, TextMeasurer& measurer,
                           std::int32_t nWidth);

}  // namespace mvp::richtext
