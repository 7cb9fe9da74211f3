// A dialog of the bare system for the driver's own tests: an edit, OK (enabled from four characters
// on), Cancel, a button that opens a message box, and a panel with controls of its own.
#pragma once

#include <windows.h>

#include <string>

#include "support/dialog_template.h"

namespace mvp::test {

inline constexpr int kEdit = 1001;
inline constexpr int kAsk = 1002;
inline constexpr int kPanelCheck = 1003;
inline constexpr int kHidden = 1004;

struct PlainDialog {
    std::string strTitle = "Plain";
    bool bStubborn = false;  // knows no way to be closed from outside
    std::string strTyped;    // what the edit held at OK
    INT_PTR nAnswer = 0;     // of the message box
    HWND hWnd = nullptr;

    INT_PTR DoModal() {
        DialogTemplate form(strTitle, {0, 0, 180, 90});
        form.Add("EDIT", kEdit, "", {7, 7, 120, 14}, WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL)
            .Add("BUTTON", kAsk, "&Ask", {130, 7, 40, 14}, WS_TABSTOP)
            .Add("BUTTON", kHidden, "Hidden", {130, 25, 40, 14}, WS_TABSTOP, false)
            .Add("BUTTON", IDOK, "OK", {7, 70, 50, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP)
            .Add("BUTTON", IDCANCEL, "Cancel", {67, 70, 50, 14}, WS_TABSTOP);
        return DialogBoxIndirectParamA(GetModuleHandleA(nullptr), form.Get(), nullptr, Proc,
                                       reinterpret_cast<LPARAM>(this));
    }

private:
    static INT_PTR CALLBACK PanelProc(HWND, UINT nMessage, WPARAM, LPARAM) {
        return nMessage == WM_INITDIALOG ? TRUE : FALSE;
    }

    void OnInit(HWND hDialog) {
        hWnd = hDialog;
        DialogTemplate panel("", {7, 30, 100, 30}, DialogTemplate::kChild, WS_EX_CONTROLPARENT);
        panel.Add("BUTTON", kPanelCheck, "&Remember", {2, 2, 80, 12}, BS_AUTOCHECKBOX | WS_TABSTOP);
        CreateDialogIndirectParamA(GetModuleHandleA(nullptr), panel.Get(), hDialog, PanelProc, 0);
        EnableWindow(GetDlgItem(hDialog, IDOK), FALSE);
    }

    void OnCommand(HWND hDialog, WORD wId, WORD wCode) {
        char text[64] = {};
        GetDlgItemTextA(hDialog, kEdit, text, sizeof text);
        if (wId == kEdit && wCode == EN_CHANGE)
            EnableWindow(GetDlgItem(hDialog, IDOK), strlen(text) >= 4);
        else if (wId == kAsk)
            nAnswer = MessageBoxA(hDialog, "Sure?", "Question", MB_YESNO);
        else if ((wId == IDOK || wId == IDCANCEL) && !bStubborn) {
            strTyped = text;
            EndDialog(hDialog, wId);
        }
    }

    static INT_PTR CALLBACK Proc(HWND hDialog, UINT nMessage, WPARAM wParam, LPARAM lParam) {
        if (nMessage == WM_INITDIALOG) {
            SetWindowLongPtrA(hDialog, DWLP_USER, lParam);
            reinterpret_cast<PlainDialog*>(lParam)->OnInit(hDialog);
            return TRUE;
        }
        auto* pThis = reinterpret_cast<PlainDialog*>(GetWindowLongPtrA(hDialog, DWLP_USER));
        if (pThis == nullptr || nMessage != WM_COMMAND)
            return FALSE;
        pThis->OnCommand(hDialog, LOWORD(wParam), HIWORD(wParam));
        return TRUE;
    }
};

}  // namespace mvp::test
