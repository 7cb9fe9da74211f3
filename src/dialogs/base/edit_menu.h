// The context menu of an edit whose text is not to be copied: the system's own would offer to undo,
// and gives the clipboard's text to the control by itself.
#pragma once

#include <windows.h>

namespace mvp {

enum class EditAction { None, Paste, Delete, SelectAll };

// What there is to choose from; the rest is greyed.
struct EditMenuState {
    bool bEditable;
    bool bSelected;     // some characters are selected
    bool bSelectsMore;  // not all of them are
};

// Shows the menu where WM_CONTEXTMENU says and waits for the choice.
EditAction ChooseFromEditMenu(HWND hEdit, LPARAM lWhere, const EditMenuState& state);

}  // namespace mvp
