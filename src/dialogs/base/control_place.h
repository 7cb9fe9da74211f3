// Where a control of a dialog stands.
#pragma once

#include <dlgfw/geometry.h>
#include <dlgfw/wnd.h>

namespace mvp {

// The control's rectangle in the client coordinates of `parent`.
inline CRect ClientRectOf(const CWnd& parent, const CWnd& control) {
    CRect rect;
    control.GetWindowRect(&rect);
    parent.ScreenToClient(&rect);
    return rect;
}

}  // namespace mvp
