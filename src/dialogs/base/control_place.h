// Where the controls of a dialog stand, and how they and the dialog make room.
#pragma once

#include <initializer_list>

#include <dlgfw/geometry.h>
#include <dlgfw/wnd.h>

#include "dialogs/base/window_fit.h"

namespace mvp {

// The control's rectangle in the client coordinates of `parent`.
CRect ClientRectOf(const CWnd& parent, const CWnd& control);

// The rectangle of control `nId` in the client coordinates of `dialog`; empty, at (0, 0), when the
// template lacks it.
CRect PlaceOf(const CWnd& dialog, int nId);

// Moves control `nId` by so many pixels; nothing else of it changes. A missing one is ignored.
void MoveControl(const CWnd& dialog, int nId, int dx, int dy);

// Moves the controls and redraws them, then makes the dialog as large as it must be.
void FitWindow(CWnd& dialog, const WindowFit& fit, std::initializer_list<int> controls);

// Puts a window that was made at run time behind another one of the dialog, in the order in which
// Tab goes through them and a screen reader reads them; before all others when that is null.
void ReadBehind(CWnd& window, const CWnd* pBefore);

// Shows a panel of the dialog behind its placeholder, and paints it. It comes before what takes the
// focus in the template: the system's choice of a first focus, made when the dialog's
// initialisation is over, is then the panel's as well.
void ShowPanel(CWnd& panel, const CWnd* pPlaceholder);

// Shows or hides the window. One that is there already is left alone: the system does all the work
// of showing it again.
void ShowIf(CWnd& window, bool bShow);
// Enables or disables it, in the same way.
void EnableIf(CWnd& window, bool bEnable);

}  // namespace mvp
