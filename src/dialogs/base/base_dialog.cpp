#include "mvpingui/base_dialog.h"

#include <dlgfw/dc.h>
#include <dlgfw/message_map.h>
#include <dlgfw/module_state.h>

#include "frame/log.h"
#include "frame/resource_module.h"

BEGIN_MESSAGE_MAP(CBaseDialog, CDialog)
    ON_WM_CTLCOLOR()
    ON_WM_SYSCOLORCHANGE()
END_MESSAGE_MAP()

CBaseDialog::CBaseDialog(UINT nTemplate, int nColorMode, const RECT* pPosition, CWnd* pParent)
    : CDialog(nTemplate, pParent),
      m_nLeft(pPosition != nullptr ? pPosition->left : 0),
      m_nTop(pPosition != nullptr ? pPosition->top : 0),
      m_nColorMode(nColorMode),
      m_nTemplate(nTemplate) {
    m_brBackground.CreateSolidBrush(GetSysColor(COLOR_WINDOW));
}

CBaseDialog::~CBaseDialog() = default;

INT_PTR CBaseDialog::DoModal() {
    // Without this a missing module would make the system search the host for the template.
    const HINSTANCE module = mvp::ModuleOfDialog(m_nTemplate);
    return module != nullptr ? RunModalFrom(module) : -1;
}

int CBaseDialog::CreateFromResourceModule(CWnd* pParent) {
    const HINSTANCE module = mvp::ModuleOfDialog(m_nTemplate);
    if (module == nullptr)
        return 0;
    const HINSTANCE previous = AfxGetResourceHandle();
    AfxSetResourceHandle(module);
    const int created = Create(m_nTemplate, pParent);
    AfxSetResourceHandle(previous);
    return created;
}

BOOL CBaseDialog::OnInitDialog() {
    const mvp::LogScope scope("CBaseDialog::OnInitDialog");
    const BOOL result = CDialog::OnInitDialog();
    SetWindowPos(nullptr, m_nLeft, m_nTop, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    return result;
}

HBRUSH CBaseDialog::OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor) {
    if (m_nColorMode == 0)
        return CDialog::OnCtlColor(pDC, pWnd, nCtlColor);
    pDC->SetBkColor(GetSysColor(COLOR_WINDOW));
    pDC->SetBkMode(TRANSPARENT);
    pDC->SetTextColor(GetSysColor(COLOR_WINDOWTEXT));
    return m_brBackground;
}

void CBaseDialog::OnSysColorChange() {
    CDialog::OnSysColorChange();
    m_brBackground.DeleteObject();
    m_brBackground.CreateSolidBrush(GetSysColor(COLOR_WINDOW));
}

void CBaseDialog::HidePinFromMemory(CString& strPin) {
    const mvp::LogScope scope("CBaseDialog::HidePinFromMemory");
    if (strPin.IsEmpty())
        return;
    const int length = strPin.GetLength();
    SecureZeroMemory(strPin.GetBuffer(length), static_cast<SIZE_T>(length));
    strPin.ReleaseBuffer();
}

void CBaseDialog::ResizeDlg(UINT nId, int nWidthDecrease, int nHeightDecrease) {
    const mvp::LogScope scope("CBaseDialog::ResizeDlg");
    CWnd* pWnd = nId == 0 ? this : GetDlgItem(static_cast<int>(nId));
    if (pWnd == nullptr)
        return;
    CRect rect;
    pWnd->GetWindowRect(&rect);
    pWnd->SetWindowPos(nullptr, 0, 0, rect.Width() - nWidthDecrease,
                       rect.Height() - nHeightDecrease, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    pWnd->RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
}
