#include "mvpingui/base_dialog.h"

#include <dlgfw/dc.h>
#include <dlgfw/message_map.h>
#include <dlgfw/module_state.h>

#include "dialogs/base/resource_dialog.h"
#include "platform/barrier.h"
#include "services/log.h"
#include "services/resource_module.h"
#include "services/wipe.h"

BEGIN_MESSAGE_MAP(CBaseDialog, CDialog)
    ON_WM_CTLCOLOR()
    ON_WM_SYSCOLORCHANGE()
END_MESSAGE_MAP()

namespace {

// Makes a module the one that templates are taken from, as long as it lives.
class ResourceScope {
public:
    explicit ResourceScope(HINSTANCE hModule) : m_hPrevious(AfxGetResourceHandle()) {
        AfxSetResourceHandle(hModule);
    }
    ResourceScope(const ResourceScope&) = delete;
    ResourceScope& operator=(const ResourceScope&) = delete;
    ~ResourceScope() { AfxSetResourceHandle(m_hPrevious); }

private:
    HINSTANCE m_hPrevious;
};

}  // namespace

CBaseDialog::CBaseDialog(UINT nTemplate, int nColorMode, const RECT* pPosition, CWnd* pParent)
    : CDialog(nTemplate, pParent),
      m_nLeft(pPosition != nullptr ? pPosition->left : 0),
      m_nTop(pPosition != nullptr ? pPosition->top : 0),
      m_nColorMode(nColorMode),
      m_nTemplate(nTemplate),
      m_bPlaced(pPosition != nullptr) {
    m_brBackground.CreateSolidBrush(GetSysColor(COLOR_WINDOW));
}

CBaseDialog::~CBaseDialog() = default;

INT_PTR CBaseDialog::DoModal() {
    return mvp::RunFromResourceModule(m_nTemplate, "CBaseDialog::DoModal",
                                      [this](HINSTANCE hModule) { return RunModalFrom(hModule); });
}

int CBaseDialog::CreateFromResourceModule(CWnd* pParent) {
    const HINSTANCE module = mvp::ModuleOfDialog(m_nTemplate);
    if (module == nullptr) {
        return 0;
    }
    return mvp::Guarded(
        0,
        [=, this] {
            const ResourceScope scope(module);
            return Create(m_nTemplate, pParent);
        },
        mvp::LogException("CBaseDialog::CreateFromResourceModule"));
}

BOOL CBaseDialog::OnInitDialog() {
    const mvp::LogScope scope("CBaseDialog::OnInitDialog");
    const BOOL result = CDialog::OnInitDialog();
    if (!result) {
        vklogLog(g_szLogTag, kLogError, "Dialog template %u lacks a control", m_nTemplate);
    }
    // A dialog that was given no place is left to the framework.
    if (m_bPlaced || (GetStyle() & WS_CHILD) != 0) {
        SetWindowPos(nullptr, m_nLeft, m_nTop, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    return result;
}

HBRUSH CBaseDialog::OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor) {
    if (m_nColorMode == 0) {
        return mvp::Guarded(
            HBRUSH{nullptr}, [=, this] { return CDialog::OnCtlColor(pDC, pWnd, nCtlColor); },
            mvp::LogException("CBaseDialog::OnCtlColor"));
    }
    pDC->SetBkColor(GetSysColor(COLOR_WINDOW));
    pDC->SetBkMode(TRANSPARENT);
    pDC->SetTextColor(GetSysColor(COLOR_WINDOWTEXT));
    return m_brBackground;
}

void CBaseDialog::OnSysColorChange() {
    mvp::Guarded(
        [this] {
            CDialog::OnSysColorChange();
            m_brBackground.DeleteObject();
            m_brBackground.CreateSolidBrush(GetSysColor(COLOR_WINDOW));
        },
        mvp::LogException("CBaseDialog::OnSysColorChange"));
}

void CBaseDialog::HidePinFromMemory(CString& strPin) {
    const mvp::LogScope scope("CBaseDialog::HidePinFromMemory");
    mvp::Wipe(strPin);
}

void CBaseDialog::ResizeDlg(UINT nId, int nWidthDecrease, int nHeightDecrease) {
    const mvp::LogScope scope("CBaseDialog::ResizeDlg");
    const HWND window = nId == 0 ? m_hWnd : ::GetDlgItem(m_hWnd, static_cast<int>(nId));
    if (window == nullptr) {
        return;
    }
    CRect rect;
    ::GetWindowRect(window, &rect);
    ::SetWindowPos(window, nullptr, 0, 0, rect.Width() - nWidthDecrease,
                   rect.Height() - nHeightDecrease, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
}
