#include "pinentry/windows/repeat_words.h"

#include <commctrl.h>

#include "resources/resource_numbers.h"

namespace pinentry {

void RepeatWords::Watch(HWND hDialog, HWND hRules) {
    m_hLine = GetDlgItem(hRules, IDC_POLICIES_CONFIRM_TEXT);
    char text[256] = {};
    GetWindowTextA(m_hLine, text, sizeof text);
    m_strOwn = text;
    SetWindowLongA(m_hLine, GWL_STYLE, GetWindowLongA(m_hLine, GWL_STYLE) | SS_ENDELLIPSIS);
    SetWindowSubclass(GetDlgItem(hDialog, IDOK), OnButton, 0, reinterpret_cast<DWORD_PTR>(this));
}

LRESULT CALLBACK RepeatWords::OnButton(HWND hOk, UINT nMessage, WPARAM wParam, LPARAM lParam,
                                       UINT_PTR nId, DWORD_PTR pWords) {
    if (nMessage == WM_ENABLE) {
        reinterpret_cast<const RepeatWords*>(pWords)->Say(wParam != FALSE);
    } else if (nMessage == WM_NCDESTROY) {
        RemoveWindowSubclass(hOk, OnButton, nId);
    }
    return DefSubclassProc(hOk, nMessage, wParam, lParam);
}

void RepeatWords::Say(bool bSame) const {
    const std::string& words = bSame ? m_question.strRepeatOk : m_question.strRepeatError;
    SetWindowTextA(m_hLine, (words.empty() ? m_strOwn : words).c_str());
}

}  // namespace pinentry
