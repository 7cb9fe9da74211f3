#include "dialogs/base/dialog_looks.h"

#include "platform/window_dpi.h"
#include "services/resource_module.h"

namespace mvp {
namespace {

constexpr int kSmallIconSize = 16;
constexpr int kIconSize = 32;

}  // namespace

void SetSmallIcon(CWnd& dialog, UINT nIcon) {
    if (HICON icon = LoadResourceIcon(nIcon, PixelsIn(dialog.m_hWnd, kSmallIconSize))) {
        dialog.SetIcon(icon, FALSE);
    }
}

void KeepFromMirroring(CWnd* pControl) {
    if (pControl != nullptr) {
        pControl->ModifyStyleEx(WS_EX_LAYOUTRTL | WS_EX_RTLREADING, 0);
    }
}

void ShowIcon(CWnd& dialog, int nControl, UINT nIcon) {
    // The shared icon, which nobody destroys.
    if (HICON icon = LoadResourceIcon(nIcon, PixelsIn(dialog.m_hWnd, kIconSize))) {
        dialog.SendDlgItemMessage(nControl, STM_SETICON, reinterpret_cast<WPARAM>(icon));
        KeepFromMirroring(dialog.GetDlgItem(nControl));
    }
}

Font MakeHeadingBold(CWnd& dialog, int nHeading) {
    auto* const fontHandle =
        reinterpret_cast<HFONT>(dialog.SendDlgItemMessage(nHeading, WM_GETFONT, 0, 0));
    LOGFONTA font{};
    if (fontHandle == nullptr || GetObjectA(fontHandle, sizeof font, &font) == 0) {
        return {};
    }
    font.lfWidth = 0;  // the bold letters' own
    font.lfWeight = FW_BOLD;
    Font bold(CreateFontIndirectA(&font));
    if (bold) {
        dialog.SendDlgItemMessage(nHeading, WM_SETFONT, reinterpret_cast<WPARAM>(bold.get()), TRUE);
    }
    return bold;
}

void BringToFront(CWnd& dialog) {
    dialog.SetForegroundWindow();
    dialog.SetWindowPos(&CWnd::wndTopMost, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
}

}  // namespace mvp
