// CDialog: keyboard input, through every nesting of panels.
//
// The system's IsDialogMessage works for one dialog. Asked for a panel it would keep Tab inside the
// panel and send Enter and Esc to the panel itself; so it is asked for the outermost dialog only,
// which finds its way into the panels by their WS_EX_CONTROLPARENT style.
#include <windows.h>

#include <dlgfw/dialog.h>

namespace {

bool IsDialog(HWND hWnd) {
    constexpr ULONG_PTR nDialogAtom = 32770;
    return ::GetClassLongPtrA(hWnd, GCW_ATOM) == nDialogAtom ||
           dynamic_cast<CDialog*>(CWnd::FromHandlePermanent(hWnd)) != nullptr;
}

bool IsInput(UINT n) {
    return (n >= WM_KEYFIRST && n <= WM_KEYLAST) || (n >= WM_MOUSEFIRST && n <= WM_MOUSELAST);
}

// The last dialog on the way from the window to its top-level window.
HWND OutermostDialog(HWND hWnd) {
    HWND hWndOutermost = hWnd;
    while ((::GetWindowLongPtrA(hWnd, GWL_STYLE) & WS_CHILD) != 0) {
        hWnd = ::GetAncestor(hWnd, GA_PARENT);
        if (hWnd == nullptr)
            break;
        if (IsDialog(hWnd))
            hWndOutermost = hWnd;
    }
    return hWndOutermost;
}

// Enter on a push button inside a panel. The system would send the button's command to the
// outermost dialog, which does not know the button.
bool PressesPanelButton(HWND hWndOutermost, MSG* pMsg) {
    if (pMsg->message != WM_KEYDOWN || (pMsg->wParam != VK_RETURN && pMsg->wParam != VK_EXECUTE))
        return false;
    HWND hWndFocus = ::GetFocus();
    HWND hWndParent = ::GetAncestor(hWndFocus, GA_PARENT);
    if (hWndFocus != pMsg->hwnd || hWndParent == hWndOutermost ||
        !::IsChild(hWndOutermost, hWndFocus))
        return false;
    const LRESULT lCode =
        ::SendMessageA(hWndFocus, WM_GETDLGCODE, pMsg->wParam, reinterpret_cast<LPARAM>(pMsg));
    if ((lCode & DLGC_WANTALLKEYS) != 0 ||
        (lCode & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) == 0)
        return false;
    ::SendMessageA(hWndParent, WM_COMMAND, MAKEWPARAM(::GetDlgCtrlID(hWndFocus), BN_CLICKED),
                   reinterpret_cast<LPARAM>(hWndFocus));
    return true;
}

}  // namespace

BOOL CDialog::PreTranslateMessage(MSG* pMsg) {
    if (CWnd::PreTranslateMessage(pMsg))
        return TRUE;
    HWND hWndOutermost = OutermostDialog(m_hWnd);
    // One with an object is asked in its turn, on the way up.
    if (hWndOutermost != m_hWnd && FromHandlePermanent(hWndOutermost) != nullptr)
        return FALSE;
    return PressesPanelButton(hWndOutermost, pMsg) ||
           (IsInput(pMsg->message) && ::IsDialogMessageA(hWndOutermost, pMsg));
}
