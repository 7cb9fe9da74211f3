#include "dialogs/base/control_place.h"

namespace mvp {

CRect ClientRectOf(const CWnd& parent, const CWnd& control) {
    CRect rect;
    control.GetWindowRect(&rect);
    parent.ScreenToClient(&rect);
    return rect;
}

CRect PlaceOf(const CWnd& dialog, int nId) {
    const CWnd* control = dialog.GetDlgItem(nId);
    return control != nullptr ? ClientRectOf(dialog, *control) : CRect(0, 0, 0, 0);
}

void MoveControl(const CWnd& dialog, int nId, int dx, int dy) {
    CWnd* control = dialog.GetDlgItem(nId);
    if (control == nullptr) {
        return;
    }
    const CRect rect = ClientRectOf(dialog, *control);
    control->SetWindowPos(nullptr, rect.left + dx, rect.top + dy, 0, 0,
                          SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void FitWindow(CWnd& dialog, const WindowFit& fit, std::initializer_list<int> controls) {
    for (const int id : controls) {
        MoveControl(dialog, id, fit.nWidth, fit.nHeight);
        if (CWnd* control = dialog.GetDlgItem(id)) {
            control->RedrawWindow();
        }
    }
    dialog.UpdateWindow();
    CRect rect;
    dialog.GetWindowRect(&rect);
    dialog.SetWindowPos(nullptr, 0, 0, rect.Width() + fit.nWidth, rect.Height() + fit.nHeight,
                        SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    dialog.UpdateWindow();
}

void ReadBehind(CWnd& window, const CWnd* pBefore) {
    window.SetWindowPos(pBefore != nullptr ? pBefore : &CWnd::wndTop, 0, 0, 0, 0,
                        SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void ShowPanel(CWnd& panel, const CWnd* pPlaceholder) {
    ReadBehind(panel, pPlaceholder);
    panel.ShowWindow(SW_SHOW);
    panel.UpdateWindow();
}

void ShowIf(CWnd& window, bool bShow) {
    if (window.m_hWnd != nullptr && ((window.GetStyle() & WS_VISIBLE) != 0) != bShow) {
        window.ShowWindow(bShow ? SW_SHOW : SW_HIDE);
    }
}

void EnableIf(CWnd& window, bool bEnable) {
    if (window.m_hWnd != nullptr && (window.IsWindowEnabled() != FALSE) != bEnable) {
        window.EnableWindow(bEnable);
    }
}

}  // namespace mvp
