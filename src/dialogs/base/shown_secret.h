// Shows what a password edit holds.
//
// What the system draws, it copies to the heap and frees as it is. A password edit draws mask
// characters alone. Over each of them the secret's own character is drawn by itself, so that no
// copy holds two of them in a row.
#pragma once

#include <windows.h>

#include <string_view>

namespace mvp {

enum class CellColours { Plain, Grey, Selected };

// What decides how the cell of a character looks. The selection ends before nSelectionEnd.
struct CellState {
    bool bEnabled = true;
    bool bFocused = false;
    int nSelectionBegin = 0;
    int nSelectionEnd = 0;
};

constexpr CellColours ColoursOf(const CellState& state, int nCell) {
    if (!state.bEnabled) {
        return CellColours::Grey;
    }
    return state.bFocused && nCell >= state.nSelectionBegin && nCell < state.nSelectionEnd
               ? CellColours::Selected
               : CellColours::Plain;
}

// The widest hexadecimal digit in the edit's font: as a mask it leaves room for each of them.
char MaskForDigits(HWND hEdit);

// Draws `secret` over the masks that the edit, whose mask is `chMask`, has drawn.
void DrawShownSecret(HWND hEdit, char chMask, std::wstring_view secret);

}  // namespace mvp
