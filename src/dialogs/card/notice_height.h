// How tall a notice is made for its text.
#pragma once

#include <algorithm>

namespace mvp {

// The height without a device context to measure in, in pixels.
inline constexpr int kNoticeHeightUnmeasured = 64;

// For a text that takes `nTextWidth` by `nLineHeight` pixels on one line, in a control `nWidth`
// wide: as many lines as that gives, and one more, which words that are not broken need. Line
// breaks of the text's own are not counted.
constexpr int NoticeTextHeight(int nTextWidth, int nLineHeight, int nWidth) {
    return (1 + nTextWidth / std::max(1, nWidth)) * nLineHeight;
}

}  // namespace mvp
