// What a key stroke costs in a PIN edit alone, and in the change-PIN panel with every rule in
// force: the edit's own work, the check of all rules, and the lines brought up to date and painted.
//
// Baseline "bare edit": the same stroke in a password edit of the system that nobody listens to.
// Each measurement types a digit and takes it back, so the texts keep their length; the digit
// changes the state of two rules.
#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include <dlgfw/controls.h>

#include "bench.h"
#include "mvpingui/caps_lock_sensitive_edit.h"
#include "mvpingui/change_pin_dialog.h"
#include "resources/resource_numbers.h"

namespace {

constexpr int kPairs = 50;

// Types "8" behind the edit's text and deletes it.
void TypeAndDelete(HWND hEdit) {
    for (const WPARAM key : {WPARAM{'8'}, WPARAM{VK_BACK}}) {
        SendMessageA(hEdit, WM_CHAR, key, 1);
        UpdateWindow(hEdit);
    }
}

HWND BareEdit(HWND hHost) {
    const HWND edit = CreateWindowExA(WS_EX_CLIENTEDGE, "EDIT", "",
                                      WS_CHILD | WS_VISIBLE | ES_PASSWORD | ES_AUTOHSCROLL, 10, 300,
                                      230, 23, hHost, nullptr, GetModuleHandleA(nullptr), nullptr);
    SendMessageA(edit, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    return edit;
}

}  // namespace

int main() {
    CWnd host;
    if (!host.CreateEx(0, "STATIC", "host", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 500, 400,
                       nullptr, nullptr)) {
        return EXIT_FAILURE;
    }
    const PwdRuleArgs rules = {0, 1, 1, 1, 4, 8, 0};
    CButton ok;
    ok.CreateEx(0, "BUTTON", "OK", WS_CHILD | WS_VISIBLE, 400, 350, 80, 25, host.m_hWnd, nullptr);
    CChangePINDialog panel(0, 0, true, nullptr, &rules, &ok, &host, 15, 0, 6);
    if (panel.LocCreate(&host) == 0) {
        return EXIT_FAILURE;
    }
    panel.ShowWindow(SW_SHOW);

    const HWND edit = GetDlgItem(panel.m_hWnd, IDC_CHANGE_PIN_PANEL_NEW_EDIT);
    const HWND bare = BareEdit(host.m_hWnd);
    CCapsLockSensitiveEdit field;
    field.SubclassWindow(BareEdit(host.m_hWnd));
    for (const HWND h : {edit, field.m_hWnd, bare}) {
        SetWindowTextA(h, "583");
        SendMessageA(h, EM_SETSEL, 3, 3);
    }
    SetDlgItemTextA(panel.m_hWnd, IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT, "5838");
    const mvp::bench::Comparison alone = mvp::bench::Compare(
        kPairs, [&] { TypeAndDelete(field.m_hWnd); }, [bare] { TypeAndDelete(bare); });
    mvp::bench::Print("two key strokes in a PIN edit", "the same in a bare edit", alone);
    mvp::bench::Print(
        "two key strokes, all rules", "the same in a bare edit",
        mvp::bench::Compare(
            kPairs, [edit] { TypeAndDelete(edit); }, [bare] { TypeAndDelete(bare); }));
    constexpr double kAim = 1.5;
    if (alone.Ratio() > kAim) {
        std::fprintf(stderr,
                     "a key stroke in a PIN edit takes more than %.1f times the stock one\n", kAim);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
