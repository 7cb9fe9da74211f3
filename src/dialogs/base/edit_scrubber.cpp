#include "dialogs/base/edit_scrubber.h"

#include <algorithm>
#include <array>

#include <dlgfw/string.h>

#include "platform/barrier.h"
#include "services/log.h"

namespace mvp {

namespace {

// Longer than any PIN or unlock code that a card takes. A longer text is overwritten too, but what
// the control left behind when it grew, and copies when it replaces the rest, is out of reach.
constexpr int kRoom = 512;

// As long as that, so that overwriting a PIN asks for no memory.
constexpr auto kFiller = [] {
    std::array<char, kRoom + 1> filler{};
    for (int i = 0; i < kRoom; ++i) {
        filler[static_cast<std::size_t>(i)] = '#';
    }
    return filler;
}();

void ReplaceAll(HWND hEdit, BOOL bCanUndo, const char* pszText) {
    SendMessageA(hEdit, EM_SETSEL, 0, -1);
    SendMessageA(hEdit, EM_REPLACESEL, static_cast<WPARAM>(bCanUndo),
                 reinterpret_cast<LPARAM>(pszText));
}

// Writes over the text from nFrom to nTo, one character after the other: what the control is told
// to replace it first copies to a block that it then forgets.
void OverwriteEach(HWND hEdit, int nFrom, int nTo) {
    for (int i = nFrom; i < nTo; ++i) {
        SendMessageA(hEdit, EM_SETSEL, static_cast<WPARAM>(i), i + 1);
        SendMessageA(hEdit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>("#"));
    }
}

// Writes over the text block, then deletes that text so that it lands in the undo block.
void OverwriteBoth(HWND hEdit, const char* pszFiller) {
    // The limit holds for replaced text as it does for typed text.
    const LRESULT limit = SendMessageA(hEdit, EM_GETLIMITTEXT, 0, 0);
    SendMessageA(hEdit, EM_SETLIMITTEXT, 0, 0);
    ReplaceAll(hEdit, FALSE, pszFiller);
    ReplaceAll(hEdit, TRUE, "");
    SendMessageA(hEdit, EM_EMPTYUNDOBUFFER, 0, 0);
    SendMessageA(hEdit, EM_SETLIMITTEXT, static_cast<WPARAM>(limit), 0);
}

}  // namespace

void PrepareEditForSecret(HWND hEdit) noexcept {
    OverwriteBoth(hEdit, kFiller.data());
}

void ScrubEdit(HWND hEdit) noexcept {
    const int length = GetWindowTextLengthA(hEdit);
    OverwriteEach(hEdit, 0, std::min(kRoom, length));
    const auto scrubLong = [=] { OverwriteBoth(hEdit, CString('#', length)); };
    if (length <= kRoom || !Guarded(scrubLong, LogException("ScrubEdit"))) {
        OverwriteBoth(hEdit, kFiller.data());
    }
}

bool ScrubSelection(HWND hEdit) {
    DWORD from = 0;
    DWORD to = 0;
    SendMessageA(hEdit, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
    // A single character tells nothing.
    if (to - from < 2) {
        return false;
    }
    OverwriteEach(hEdit, static_cast<int>(from),
                  static_cast<int>(std::min<DWORD>(to, from + kRoom)));
    SendMessageA(hEdit, EM_SETSEL, from, static_cast<LPARAM>(to));
    return true;
}

}  // namespace mvp
