// Uses the exported classes from C++: a dialog of the host's own on the library's base, one of each
// of the card dialogs, with callbacks of a module that has a runtime of its own, a popup, and the
// notice of what expires. Raises a card's removal by hand.
#include <cstdio>

#include <dlgfw/dlgfw.h>
#include <mvpingui/about_dialog.h>
#include <mvpingui/base_dialog.h>
#include <mvpingui/card_expiry.h>
#include <mvpingui/card_manager_locked_dialog.h>
#include <mvpingui/display_unlock_code.h>
#include <mvpingui/initialize_pin_dialog.h>
#include <mvpingui/mvpingui.h>
#include <mvpingui/popup_alert.h>
#include <mvpingui/reset_card_dialog.h>
#include <mvpingui/unlock_card_dialog.h>
#include <mvpingui/unlock_result_dialogs.h>
#include <vkevtsub/vkevtsub.h>

namespace {

class HostDialog : public CBaseDialog {
public:
    // No such template: the modal loop answers -1.
    HostDialog() : CBaseDialog(1, 1, nullptr, nullptr) {}
};

CWnd* g_unlockDialog = nullptr;

int GetChallenge(void* pContext, CString& strChallenge) {
    // Longer than the text that came, so its storage changes hands.
    strChallenge = CString('A', 1000);
    *static_cast<int*>(pContext) += 1;
    g_unlockDialog->PostMessage(WM_COMMAND, IDCANCEL);
    return MVPINGUI_CARD_OK;
}

int Unlock(void* /*pContext*/, CString /*strUnlockCode*/, CString /*strNewPin*/) {
    return MVPINGUI_CARD_WRONG_UNLOCK_CODE;
}

int Initialize(void* /*pContext*/, CString /*strNewPin*/, int, int, int, int, int, int) {
    return MVPINGUI_CARD_FAILED;
}

int GetUnlockCode(void* /*pContext*/, CString& strCode) {
    strCode = "0123456789ABCDEF";
    return MVPINGUI_CARD_OK;
}

// The challenge is fetched, shown, and the dialog cancelled.
bool RunsUnlockDialog() {
    int calls = 0;
    CUnlockCardDlg dialog(nullptr, nullptr, &calls, &Unlock, &GetChallenge, "Reader A");
    g_unlockDialog = &dialog;
    return dialog.DoModal() == IDCANCEL && calls == 1;
}

// The code is fetched, shown, and closed by a timer.
bool DisplaysUnlockCode() {
    const UINT_PTR timer = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) {
        PostMessageA(GetActiveWindow(), WM_COMMAND, IDCANCEL, 0);
    });
    const bool right =
        DisplayUnlockCode(nullptr, nullptr, &GetUnlockCode, nullptr, "Reader A") == 0;
    KillTimer(nullptr, timer);
    return right;
}

bool MakesOneOfEach() {
    const CUnlockFailedDlg failed(nullptr, "It failed", 0);
    const CUnlockSuccessDlg success(nullptr);
    const CUnlockInitToolDlg tool(nullptr, "Reader A", 0);
    const CInitializePinDlg initialize(nullptr, nullptr, nullptr, &Initialize, nullptr,
                                       &GetUnlockCode, "Reader A");
    CResetCardDialogMain reset(0, nullptr, 0, 0, 0, "Reader A");
    const CDisplayUnlockCodeDlg code(nullptr, "0123", "Reader A", 0);
    const CCMLockedDlg locked(nullptr, "Reader A");
    const CAboutDlg about(1, nullptr, "Consumer");
    return initialize.m_bUnlockCodePending == 0 && reset.GetPin().IsEmpty() &&
           reset.Panel() == nullptr;
}

DWORD WINAPI FetchPassword(void* pWindow) {
    char* text = NewPopupText("740 291");
    if (!PostMessageA(static_cast<HWND>(pWindow), WM_POPUP_OTP_READY, 0,
                      reinterpret_cast<LPARAM>(text))) {
        HeapFree(GetProcessHeap(), 0, text);
    }
    return 0;
}

// Slides in with its bar, and is closed by its removed card once it shows the password.
bool RunsPopup() {
    struct Popup : CPopupAlert {
        LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
            const LRESULT result = CPopupAlert::WindowProc(message, wParam, lParam);
            if (message == WM_TIMER && ::FindWindowExA(m_hWnd, nullptr, nullptr, "740 291")) {
                VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
            }
            return result;
        }
    } popup;
    popup.SetMessage("Wait.");
    popup.SetReader("Reader A");
    if (popup.Create(nullptr) == 0 || !popup.InitWindow(nullptr, DIALOG_POPUP_CARD_OTP, 0)) {
        return false;
    }
    popup.SetThreadRoutine(&FetchPassword);
    popup.Show();
    MSG msg{};
    while (GetMessageA(&msg, nullptr, 0, 0) > 0 && msg.message != WM_POPUP_CLOSED) {
        DispatchMessageA(&msg);
    }
    return msg.message == WM_POPUP_CLOSED;
}

// The notice is called off as soon as it opens.
bool TellsWhatExpires() {
    const HANDLE event = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    bool right = false;
    {
        VKExpiryNotificationInfo info("Reader A", event);
        info.SetNbDaysForNotificationDelay(14);
        info.AddCertificateExpiryNotificationInfo("later", 4000000000);
        info.AddCertificateExpiryNotificationInfo("sooner", 3000000000);
        const VKCertificateExpiryNotificationInfo first =
            *info.GetCertificateExpiryNotificationInfo(0);
        right = first.GetFriendlyName() == "sooner" &&
                first.GetCertificateExpiryDate() == CTime(3000000000) &&
                DisplayCardExpiryNotification(nullptr, &info) == -1;
    }
    CloseHandle(event);
    return right;
}

}  // namespace

int main() {
    InitGUIDll();
    CString secret("1234");
    CBaseDialog::HidePinFromMemory(secret);
    HostDialog dialog;
    const bool right = secret.IsEmpty() && dialog.DoModal() == -1 && RunsUnlockDialog() &&
                       DisplaysUnlockCode() && RunsPopup() && MakesOneOfEach() &&
                       TellsWhatExpires() &&
                       VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A") == VKEVTSUB_OK;
    std::puts(right ? "ok" : "wrong");
    return right ? 0 : 1;
}
