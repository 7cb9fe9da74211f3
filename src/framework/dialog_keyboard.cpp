// CDialog: keyboard input, through every nesting of panels.
//
// The system's IsDialogMessage works for one dialog. Asked for a panel it would keep Tab inside the
// panel and send Enter and Esc to the panel itself; so it is asked for the outermost dialog only,
// which finds its way into the panels by their WS_EX_CONTROLPARENT style.
#include <windows.h>

#include <dlgfw/dialog.h>

namespace {

bool IsDialog(HWND hWnd) {
    constexpr ULONG_PTR dialogAtom = 32770;
    return ::GetClassLongPtrA(hWnd, GCW_ATOM) == dialogAtom ||
           dynamic_cast<CDialog*>(CWnd::FromHandlePermanent(hWnd)) != nullptr;
}

bool IsInput(UINT n) {
    return (n >= WM_KEYFIRST && n <= WM_KEYLAST) || (n >= WM_MOUSEFIRST && n <= WM_MOUSELAST);
}

// The last dialog on the way from the window to its top-level window.
HWND OutermostDialog(HWND hWnd) {
    HWND outermost = hWnd;
    while ((::GetWindowLongPtrA(hWnd, GWL_STYLE) & WS_CHILD) != 0) {
        hWnd = ::GetAncestor(hWnd, GA_PARENT);
        if (hWnd == nullptr) {
            break;
        }
        if (IsDialog(hWnd)) {
            outermost = hWnd;
        }
    }
    return outermost;
}

// Enter on a push button inside a panel. The system would send the button's command to the
// outermost dialog, which does not know the button.
bool PressesPanelButton(HWND hDialog, MSG* pMsg) {
    if (pMsg->message != WM_KEYDOWN || (pMsg->wParam != VK_RETURN && pMsg->wParam != VK_EXECUTE)) {
        return false;
    }
    HWND focus = ::GetFocus();
    HWND parent = ::GetAncestor(focus, GA_PARENT);
    if (focus != pMsg->hwnd || parent == hDialog || !::IsChild(hDialog, focus)) {
        return false;
    }
    const LRESULT code =
        ::SendMessageA(focus, WM_GETDLGCODE, pMsg->wParam, reinterpret_cast<LPARAM>(pMsg));
    if ((code & DLGC_WANTALLKEYS) != 0 ||
        (code & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) == 0) {
        return false;
    }
    ::SendMessageA(parent, WM_COMMAND, MAKEWPARAM(::GetDlgCtrlID(focus), BN_CLICKED),
                   reinterpret_cast<LPARAM>(focus));
    return true;
}

}  // namespace

BOOL CDialog::PreTranslateMessage(MSG* pMsg) {
    if (CWnd::PreTranslateMessage(pMsg)) {
        return TRUE;
    }
    HWND outermost = OutermostDialog(m_hWnd);
    // One with an object is asked in its turn, on the way up.
    if (outermost != m_hWnd && FromHandlePermanent(outermost) != nullptr) {
        return FALSE;
    }
    return PressesPanelButton(outermost, pMsg) ||
           (IsInput(pMsg->message) && ::IsDialogMessageA(outermost, pMsg));
}
