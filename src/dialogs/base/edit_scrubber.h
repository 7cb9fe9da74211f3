// Keeps a PIN from staying behind in the system's own edit control.
//
// The control keeps its text in a heap block of its own and the text deleted last in another, and
// overwrites neither: it just forgets them. When a block grows it may move, and the old one is
// forgotten too. So the blocks are made large before the first character is typed, and are
// overwritten through the control's own messages before the window goes. What the control replaces
// or deletes it copies first, to a block that it frees as it is; so a PIN is overwritten by single
// characters before.
//
// All functions change the text, so the edit sends its notifications; the caller keeps them from
// the parent.
#pragma once

#include <windows.h>

namespace mvp {

// Makes room for any PIN of a sane length. The edit must be empty.
void PrepareEditForSecret(HWND hEdit) noexcept;

// Overwrites the text and what the control remembers for undoing, and leaves the edit empty.
void ScrubEdit(HWND hEdit) noexcept;

// Overwrites what is selected, for before the control deletes it; the filler is selected then.
// False when there was nothing worth it. Undoing the deletion would bring the filler back.
bool ScrubSelection(HWND hEdit);

}  // namespace mvp
