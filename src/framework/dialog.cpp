// CDialog: life from template to result.
#include <windows.h>

#include <utility>

#include <dlgfw/dialog.h>
#include <dlgfw/message_map.h>
#include <dlgfw/module_state.h>

#include "framework/dialog_template.h"
#include "framework/wnd_access.h"

BEGIN_MESSAGE_MAP(CDialog, CWnd)
    ON_COMMAND(IDOK, &CDialog::OnOK)
    ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
    ON_MESSAGE(WM_INITDIALOG, &CDialog::HandleInitDialog)
END_MESSAGE_MAP()

CDialog::CDialog() = default;

CDialog::CDialog(UINT nIDTemplate, CWnd* pParentWnd)
    : m_lpszTemplateName(MAKEINTRESOURCEA(nIDTemplate)), m_pParentWnd(pParentWnd) {}

CDialog::~CDialog() {
    if (m_hWnd != nullptr) {
        CDialog::DestroyWindow();
    }
}

BOOL CDialog::InitModalIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd) {
    m_lpDialogTemplate = lpDialogTemplate;
    m_pParentWnd = pParentWnd;
    return lpDialogTemplate != nullptr;
}

INT_PTR CDialog::DoModal() {
    return RunModalFrom(m_lpszTemplateName == nullptr
                            ? AfxGetResourceHandle()
                            : AfxFindResourceHandle(m_lpszTemplateName, RT_DIALOG));
}

INT_PTR CDialog::RunModalFrom(HINSTANCE hInst) {
    if (m_lpszTemplateName != nullptr) {
        return RunModal(dlgfw::LockDialogResource(hInst, m_lpszTemplateName), hInst);
    }
    return RunModal(m_lpDialogTemplate, hInst);
}

namespace {

// Whether the window was enabled and is not any more. The desktop stays as it is.
BOOL Disable(HWND hWnd) {
    if (hWnd == nullptr || hWnd == ::GetDesktopWindow() || !::IsWindowEnabled(hWnd)) {
        return FALSE;
    }
    ::EnableWindow(hWnd, FALSE);
    return TRUE;
}

// Out of sight without giving the activation to some other window: the parent, which is to have it,
// is still disabled.
void Hide(HWND hWnd) {
    if (::IsWindowVisible(hWnd)) {
        ::SetWindowPos(hWnd, nullptr, 0, 0, 0, 0,
                       SWP_HIDEWINDOW | SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE | SWP_NOZORDER);
    }
}

}  // namespace

INT_PTR CDialog::RunModal(LPCDLGTEMPLATE lpDialogTemplate, HINSTANCE hInst) {
    if (lpDialogTemplate == nullptr) {
        return -1;
    }
    const WndGuard guard(this);
    m_nModalResult = -1;
    ModalParent parent = {PreModal(), FALSE};
    parent.bReenable = Disable(parent.hWnd);
    HWND top = m_hWndTop;
    HWND dialog = nullptr;

    try {
        if (CreateModalWindow(lpDialogTemplate, parent, hInst) &&
            (m_nFlags & WF_CONTINUEMODAL) != 0) {
            dialog = m_hWnd;
            const bool noIdleMessages = (GetStyle() & DS_NOIDLEMSG) != 0;
            RunModalLoop(MLF_SHOWONIDLE | (noIdleMessages ? MLF_NOIDLEMSG : 0));
        }
    } catch (...) {
        dlgfw::ReportException(0);
        if (guard.IsAlive()) {
            m_nModalResult = -1;
        }
    }

    if (guard.IsAlive() && m_hWnd != nullptr) {
        Hide(m_hWnd);
    }
    if (parent.bReenable) {
        ::EnableWindow(parent.hWnd, TRUE);
    }
    if (guard.IsAlive()) {
        if (parent.hWnd != nullptr && ::GetActiveWindow() == m_hWnd) {
            ::SetActiveWindow(parent.hWnd);
        }
        DestroyWindow();
    }
    // Whoever sent it WM_NCDESTROY has parted it from its object.
    if (dialog != nullptr && ::IsWindow(dialog)) {
        ::DestroyWindow(dialog);
    }
    if (guard.IsAlive()) {
        PostModal();
        return m_nModalResult;
    }
    // A handler deleted the dialog; what PreModal did is undone without it.
    if (top != nullptr) {
        ::EnableWindow(top, TRUE);
    }
    return -1;
}

BOOL CDialog::CreateModalWindow(LPCDLGTEMPLATE lpDialogTemplate, ModalParent& parent,
                                HINSTANCE hInst) {
    return CreateFromTemplate(lpDialogTemplate, FromHandle(parent.hWnd), hInst);
}

BOOL CDialog::CreateFromTemplate(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd,
                                 HINSTANCE hInst) {
    if (lpDialogTemplate == nullptr) {
        return FALSE;
    }
    m_bCenter = dlgfw::LeavesPlaceOpen(lpDialogTemplate);
    return CreateDlgIndirect(lpDialogTemplate, pParentWnd, hInst);
}

HWND CDialog::PreModal() {
    // A child window cannot own a dialog: the system would take its top-level window anyway.
    HWND window = m_pParentWnd == nullptr ? nullptr : m_pParentWnd->m_hWnd;
    while (window != nullptr && (::GetWindowLongPtrA(window, GWL_STYLE) & WS_CHILD) != 0) {
        window = ::GetParent(window);
    }
    // Whatever that window belongs to must not take input either.
    HWND top = window;
    for (HWND next = window; next != nullptr; next = ::GetWindow(next, GW_OWNER)) {
        top = next;
    }
    m_hWndTop = top != window && Disable(top) ? top : nullptr;
    return window;
}

void CDialog::PostModal() {
    if (HWND top = std::exchange(m_hWndTop, nullptr)) {
        ::EnableWindow(top, TRUE);
    }
}

BOOL CDialog::Create(UINT nIDTemplate, CWnd* pParentWnd) {
    m_lpszTemplateName = MAKEINTRESOURCEA(nIDTemplate);
    m_pParentWnd = pParentWnd;
    HINSTANCE instance = AfxFindResourceHandle(m_lpszTemplateName, RT_DIALOG);
    return CreateFromTemplate(dlgfw::LockDialogResource(instance, m_lpszTemplateName), pParentWnd,
                              instance);
}

BOOL CDialog::CreateIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd, HINSTANCE hInst) {
    m_pParentWnd = pParentWnd;
    return CreateFromTemplate(lpDialogTemplate, pParentWnd,
                              hInst != nullptr ? hInst : AfxGetInstanceHandle());
}

// The window procedure's barrier stands right above this, so that an exception out of OnInitDialog
// does not travel through the system's own dialog procedure.
LRESULT CDialog::HandleInitDialog(WPARAM, LPARAM) {
    // Without this the keyboard does not find its way into a panel that lacks DS_CONTROL.
    if ((GetStyle() & WS_CHILD) != 0) {
        ModifyStyleEx(0, WS_EX_CONTROLPARENT);
    }

    // Before OnInitDialog: whatever place that one gives the dialog is where it stays.
    if (IsCentered()) {
        CenterWindow();
    }
    CRect rect;
    GetWindowRect(rect);
    const POINT before = rect.TopLeft();
    const WndGuard guard(this);
    const BOOL setFocus = OnInitDialog();
    if (!guard.IsAlive() || m_hWnd == nullptr) {
        return setFocus;
    }
    GetWindowRect(rect);
    // One that has only changed its size goes back to the middle.
    if (IsCentered() && rect.TopLeft() == before) {
        CenterWindow();
    }
    return setFocus;
}

// A modal dialog that is not seen yet stands over its owner, if nobody gives it another place.
bool CDialog::IsCentered() const {
    HWND owner = ::GetWindow(m_hWnd, GW_OWNER);
    const bool modal = owner == nullptr || !::IsWindowEnabled(owner);
    return m_bCenter && modal && (GetStyle() & (WS_VISIBLE | WS_CHILD)) == 0;
}

BOOL CDialog::OnInitDialog() {
    if (!UpdateData(FALSE)) {
        EndDialog(-1);
        return FALSE;
    }
    return TRUE;
}

void CDialog::EndDialog(int nResult) {
    const bool inLoop = (m_nFlags & WF_MODALLOOP) != 0;
    if (inLoop || (m_nFlags & WF_CONTINUEMODAL) != 0) {
        EndModalLoop(nResult);
    }
    if (inLoop) {
        Hide(m_hWnd);
    } else {
        ::EndDialog(m_hWnd, nResult);
    }
}

void CDialog::OnOK() {
    if (UpdateData(TRUE)) {
        EndDialog(IDOK);
    }
}

void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}
