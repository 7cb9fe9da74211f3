#include "dialogs/base/edit_scrubber.h"

#include <algorithm>

#include <dlgfw/string.h>

namespace mvp {

namespace {

// Longer than any PIN or unlock code that a card takes. A longer text is overwritten too, but what
// the control left behind when it grew is out of reach.
constexpr int kRoom = 512;

void ReplaceAll(HWND hEdit, BOOL bCanUndo, const char* pszText) {
    SendMessageA(hEdit, EM_SETSEL, 0, -1);
    SendMessageA(hEdit, EM_REPLACESEL, static_cast<WPARAM>(bCanUndo),
                 reinterpret_cast<LPARAM>(pszText));
}

// Writes over the text block, then deletes that text so that it lands in the undo block.
void OverwriteBoth(HWND hEdit, int nLength) {
    const CString filler('#', nLength);
    // The limit holds for replaced text as it does for typed text.
    const LRESULT limit = SendMessageA(hEdit, EM_GETLIMITTEXT, 0, 0);
    SendMessageA(hEdit, EM_SETLIMITTEXT, 0, 0);
    ReplaceAll(hEdit, FALSE, filler);
    ReplaceAll(hEdit, TRUE, "");
    SendMessageA(hEdit, EM_EMPTYUNDOBUFFER, 0, 0);
    SendMessageA(hEdit, EM_SETLIMITTEXT, static_cast<WPARAM>(limit), 0);
}

}  // namespace

void PrepareEditForSecret(HWND hEdit) {
    OverwriteBoth(hEdit, kRoom);
}

void ScrubEdit(HWND hEdit) {
    OverwriteBoth(hEdit, std::max(kRoom, GetWindowTextLengthA(hEdit)));
}

}  // namespace mvp
