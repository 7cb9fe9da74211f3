// How a window fits a panel that is not as tall as the place its template keeps for it.
#pragma once

namespace mvp {

// By how many pixels a window grows, and what stands below and beside the panel moves away.
// Negative numbers: it shrinks, and they move nearer.
struct WindowFit {
    int nWidth = 0;
    int nHeight = 0;

    // The panel takes the placeholder's place; both bottoms in the same coordinates.
    static constexpr WindowFit ToPlaceholder(int nPlaceBottom, int nPanelBottom) {
        return {0, nPanelBottom - nPlaceBottom};
    }
    // The template keeps no room: all of the panel's height is new.
    static constexpr WindowFit ToWholePanel(int nPanelHeight) {
        return {0, nPanelHeight > 0 ? nPanelHeight : 0};
    }
};

}  // namespace mvp
