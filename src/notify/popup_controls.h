// What the popup's sources share about its controls.
#pragma once

#include <windows.h>

#include <dlgfw/geometry.h>
#include <mvpingui/skin_layout.h>

namespace mvp {

// The identifiers of texts and of links.
constexpr UINT kTextId = 789;
constexpr UINT kLinkId = 790;
constexpr SIZE kTextMargins{5, 5};
constexpr SIZE kLinkMargins{45, 0};

inline CRect RectOf(const SkinRect& rect) {
    return {rect.nLeft, rect.nTop, rect.nRight, rect.nBottom};
}

}  // namespace mvp
