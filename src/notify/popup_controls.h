// What the popup's sources share about its controls.
#pragma once

#include <windows.h>

#include <dlgfw/geometry.h>
#include <mvpingui/skin_layout.h>

namespace mvp {

// The identifiers of texts and of links.
constexpr UINT kTextId = 789;
constexpr UINT kLinkId = 790;
// In pixels of 96 dpi.
constexpr SIZE kTextMargins{5, 5};
constexpr SIZE kLinkMargins{45, 0};

// On a plate of its own, which high contrast does without.
constexpr COLORREF kPasswordColour = RGB(0xFF, 0xFF, 0xFF);

inline CRect RectOf(const SkinRect& rect) {
    return {rect.nLeft, rect.nTop, rect.nRight, rect.nBottom};
}

}  // namespace mvp
