// Lets a window that was laid out for other texts fit these. All on the window's own thread;
// positions in pixels.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace pinentry {

// The control's font measures the text, broken into lines at `nWidth` (0: one line a paragraph).
SIZE MeasureText(HWND hControl, const std::wstring& strText, int nWidth, bool bAccessKeys);

// Makes a control of `hDialog`, or of a panel within it, as tall as its text needs: what stands
// below moves, and the dialog grows, as far as the screen has room, or shrinks. What is hidden
// below gives its room up.
void FitToText(HWND hDialog, HWND hControl);

// Puts the buttons into a row that ends at the dialog's right margin, as wide as the widest of them
// needs; where the row has no room for that, each as wide as it needs itself. Returns by how much
// the dialog is too narrow for that as well, as far as the screen has room; 0: it is not.
int ArrangeButtons(HWND hDialog, const std::vector<int>& ids);

// Over the middle of the owner, or of the work area; whole in the work area.
void PlaceOver(HWND hDialog, HWND hOwner);

std::wstring TextOf(HWND hWnd);

}  // namespace pinentry
