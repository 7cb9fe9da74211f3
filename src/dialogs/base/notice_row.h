// Where a line goes that comes into a dialog above its bottom row of buttons.
//
// All numbers are pixels.
#pragma once

#include <algorithm>
#include <span>

namespace mvp {

// A control in the client coordinates of its dialog.
struct ControlSpan {
    int nLeft = 0;
    int nTop = 0;
    int nRight = 0;
    int nBottom = 0;
    bool bVisible = true;
};

// The line's top, and how far it and the row keep apart. What begins at the top or below it moves
// down by the line's height and the gap.
struct NoticeRow {
    int nTop;
    int nGap;
};

// `button` is one of the row; `nWidth` the dialog's. A band across the dialog above the row belongs
// to it. The line keeps as far from the row as what stood there before did, within the gaps given.
constexpr NoticeRow FindNoticeRow(std::span<const ControlSpan> controls, const ControlSpan& button,
                                  int nWidth, int nSmallestGap, int nLargestGap) {
    int top = button.nTop;
    for (const ControlSpan& each : controls) {
        const bool band = each.nRight - each.nLeft >= nWidth &&
                          each.nBottom - each.nTop < button.nBottom - button.nTop;
        if (band && each.nBottom <= button.nTop) {
            top = std::min(top, each.nTop);
        }
    }
    int above = top - nLargestGap;
    for (const ControlSpan& each : controls) {
        if (each.bVisible && each.nTop < top) {
            above = std::max(above, each.nBottom);
        }
    }
    return {top, std::max(top - above, nSmallestGap)};
}

// The top of a window that keeps its place as far as it stays within the work area, whose top
// counts most.
constexpr int TopWithin(int nTop, int nHeight, int nWorkTop, int nWorkBottom) {
    return std::max(std::min(nTop, nWorkBottom - nHeight), nWorkTop);
}

}  // namespace mvp
