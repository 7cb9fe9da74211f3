// Keeps a PIN from staying behind in the system's own edit control.
//
// The control keeps its text in a heap block of its own and the text deleted last in another, and
// overwrites neither: it just forgets them. When a block grows it may move, and the old one is
// forgotten too. So the blocks are made large before anything is typed, and are overwritten through
// the control's own messages before the window goes.
//
// Both functions change the text, so the edit sends its notifications; the caller keeps them from
// the parent.
#pragma once

#include <windows.h>

namespace mvp {

// Makes room for any PIN of a sane length. The edit must be empty.
void PrepareEditForSecret(HWND hEdit) noexcept;

// Overwrites the text and what the control remembers for undoing, and leaves the edit empty.
void ScrubEdit(HWND hEdit) noexcept;

}  // namespace mvp
