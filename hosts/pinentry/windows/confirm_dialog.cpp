#include "pinentry/windows/confirm_dialog.h"

#include <algorithm>
#include <vector>

#include "pinentry/core/words.h"
#include "pinentry/windows/code_page.h"
#include "pinentry/windows/confirm_resources.h"
#include "pinentry/windows/window_layout.h"
#include "platform/barrier.h"

namespace pinentry {
namespace {

struct Question {
    HWND hParent;
    const Confirmation& confirmation;
};

void SetText(HWND hWnd, const std::string& strText) {
    SetWindowTextW(hWnd, WideFromUtf8(strText).c_str());
}

const std::string& FirstSet(const std::string& str, const std::string& strElse) {
    return str.empty() ? strElse : str;
}

void SetTexts(HWND hDialog, const Confirmation& confirmation) {
    const Words& words = WordsOf(confirmation.strLanguage);
    SetText(hDialog, FirstSet(confirmation.strTitle, words.pszTitle));
    SetText(GetDlgItem(hDialog, IDC_CONFIRM_TEXT), confirmation.strText);
    SetText(GetDlgItem(hDialog, IDOK), FirstSet(confirmation.strOk, words.pszOk));
    SetText(GetDlgItem(hDialog, IDNO), confirmation.strNotOk);
    SetText(GetDlgItem(hDialog, IDCANCEL), FirstSet(confirmation.strCancel, words.pszCancel));
}

void Widen(HWND hWnd, int nBy) {
    RECT place{};
    GetWindowRect(hWnd, &place);
    SetWindowPos(hWnd, nullptr, 0, 0, place.right - place.left + nBy, place.bottom - place.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// Of three buttons those that are asked for; the others go, as a Cancel button that is disabled
// would keep Esc and the close button from working.
void ShowButtons(HWND hDialog, const Confirmation& confirmation) {
    std::vector<int> shown{IDOK};
    if (!confirmation.strNotOk.empty()) {
        shown.push_back(IDNO);
    }
    if (!confirmation.bOneButton) {
        shown.push_back(IDCANCEL);
    }
    for (const int id : {IDNO, IDCANCEL}) {
        if (std::find(shown.begin(), shown.end(), id) == shown.end()) {
            DestroyWindow(GetDlgItem(hDialog, id));
        }
    }
    const int lacking = ArrangeButtons(hDialog, shown);
    if (lacking > 0) {
        Widen(hDialog, lacking);
        Widen(GetDlgItem(hDialog, IDC_CONFIRM_TEXT), lacking);
        ArrangeButtons(hDialog, shown);
    }
}

// A text that is lower than the icon stands beside the icon's middle.
void FitText(HWND hDialog) {
    const HWND control = GetDlgItem(hDialog, IDC_CONFIRM_TEXT);
    RECT place{};
    GetWindowRect(control, &place);
    const int width = place.right - place.left;
    const int height = static_cast<int>(MeasureText(control, TextOf(control), width, false).cy);
    const int above = (place.bottom - place.top - height) / 2;
    if (above <= 0) {
        FitToText(hDialog, control);
        return;
    }
    MapWindowPoints(nullptr, hDialog, reinterpret_cast<POINT*>(&place), 2);
    SetWindowPos(control, nullptr, place.left, place.top + above, width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void OnInitDialog(HWND hDialog, const Question& question) {
    const Confirmation& confirmation = question.confirmation;
    auto* const icon = LoadImageA(
        nullptr, confirmation.bOneButton ? MAKEINTRESOURCEA(32516) : MAKEINTRESOURCEA(32514),
        IMAGE_ICON, 0, 0, LR_SHARED | LR_DEFAULTSIZE);
    SendDlgItemMessageW(hDialog, IDC_CONFIRM_ICON, STM_SETIMAGE, IMAGE_ICON,
                        reinterpret_cast<LPARAM>(icon));
    SetTexts(hDialog, confirmation);
    ShowButtons(hDialog, confirmation);
    FitText(hDialog);
    PlaceOver(hDialog, question.hParent);
    SetWindowPos(hDialog, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    SetForegroundWindow(hDialog);
}

// Esc and the close button mean IDCANCEL, whether there is such a button or not.
INT_PTR OnCommand(HWND hDialog, WORD nId) {
    if (nId != IDOK && nId != IDNO && nId != IDCANCEL) {
        return FALSE;
    }
    EndDialog(hDialog, nId);
    return TRUE;
}

INT_PTR CALLBACK DialogProc(HWND hDialog, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == WM_INITDIALOG) {
        const auto& question = *reinterpret_cast<const Question*>(lParam);
        mvp::Guarded([&] { OnInitDialog(hDialog, question); }, [&] { EndDialog(hDialog, -1); });
        return TRUE;
    }
    return nMessage == WM_COMMAND ? OnCommand(hDialog, LOWORD(wParam)) : FALSE;
}

}  // namespace

int RunConfirmDialog(HWND hParent, const Confirmation& confirmation) {
    Question question{hParent, confirmation};
    return static_cast<int>(DialogBoxParamW(GetModuleHandleW(nullptr),
                                            MAKEINTRESOURCEW(IDD_CONFIRM), hParent, DialogProc,
                                            reinterpret_cast<LPARAM>(&question)));
}

}  // namespace pinentry
