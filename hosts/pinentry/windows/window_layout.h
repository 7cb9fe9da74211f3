// Lets a window that was laid out for other texts fit these. All on the window's own thread;
// positions in pixels.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <string>

namespace pinentry {

// The control's font measures the text, broken into lines at `nWidth` (0: one line a paragraph).
SIZE MeasureText(HWND hControl, const std::wstring& strText, int nWidth, bool bAccessKeys);

// Makes a control of `hDialog`, or of a panel within it, as tall as its text needs: what stands
// below moves down and the dialog grows, as far as the screen has room. What is hidden there gives
// its room up.
void GrowToText(HWND hDialog, HWND hControl);

// Gives the buttons, which stand in a row from left to right, the width that the longest needs; the
// last one keeps its right edge. No more than the row has room for.
void WidenButtons(HWND hDialog, std::initializer_list<int> ids);

// Over the middle of the owner, or of the work area; whole in the work area.
void PlaceOver(HWND hDialog, HWND hOwner);

std::wstring TextOf(HWND hWnd);

}  // namespace pinentry
