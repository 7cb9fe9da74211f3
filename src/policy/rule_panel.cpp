#include "mvpingui/rule_panel.h"

#include <utility>

#include "dialogs/base/control_place.h"
#include "mvpingui/policies_dialog.h"
#include "platform/barrier.h"
#include "resources/resource_numbers.h"
#include "services/log.h"

namespace mvp {
namespace {

int HeightOf(HWND hWnd) {
    CRect rect;
    return ::GetWindowRect(hWnd, &rect) ? rect.Height() : 0;
}

void SetWidthOf(HWND hWnd, int nWidth) {
    ::SetWindowPos(hWnd, nullptr, 0, 0, nWidth, HeightOf(hWnd),
                   SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

bool RulePanel::Create(CWnd& dialog, int nPlaceholder, const PwdRuleArgs& rules,
                       const Layout& layout) {
    const CRect place = PlaceOf(dialog, nPlaceholder);
    m_pPoliciesDlg = Guarded<VKPoliciesDlg*>(
        nullptr,
        [&] {
            return new VKPoliciesDlg(&rules, layout.bUseWindowColor, &place, &dialog,
                                     layout.nTopMargin, layout.nLeftIndent, layout.nLineSpacing);
        },
        LogException("VKPoliciesDlg::VKPoliciesDlg"));
    if (m_pPoliciesDlg != nullptr && m_pPoliciesDlg->LocCreate(&dialog) != 0) {
        ReadBehind(*m_pPoliciesDlg, dialog.GetDlgItem(nPlaceholder));
        return true;
    }
    vklogLog(g_szLogTag, kLogError, "The rule panel could not be created");
    return false;
}

void RulePanel::Show() {
    m_pPoliciesDlg->ShowWindow(SW_SHOW);
    m_pPoliciesDlg->UpdateWindow();
}

void RulePanel::Update() {
    if (m_pPoliciesDlg != nullptr) {
        m_pPoliciesDlg->UpdateWindow();
    }
}

void RulePanel::SetWidth(int nWidth) {
    SetWidthOf(m_pPoliciesDlg->m_hWnd, nWidth);
    SetWidthOf(::GetDlgItem(m_pPoliciesDlg->m_hWnd, IDC_POLICIES_BOX), nWidth);
}

int RulePanel::Height() const {
    return HeightOf(m_pPoliciesDlg->m_hWnd);
}

int RulePanel::ListHeight() const {
    const HWND list = ::GetDlgItem(m_pPoliciesDlg->m_hWnd, IDC_POLICIES_BOX);
    return list != nullptr ? HeightOf(list) : Height();
}

WindowFit RulePanel::FitToPlaceholder(const CWnd& dialog, int nPlaceholder) const {
    return WindowFit::ToPlaceholder(PlaceOf(dialog, nPlaceholder).bottom,
                                    ClientRectOf(dialog, *m_pPoliciesDlg).bottom);
}

bool RulePanel::Check(const CString& strOld, const CString& strValue, const CString& strNew,
                      const CString& strConfirmation) {
    return m_pPoliciesDlg == nullptr ||
           m_pPoliciesDlg->VerifyAndUpdatePolicies(strOld, strValue, strNew, strConfirmation);
}

void RulePanel::Destroy() {
    if (m_pPoliciesDlg == nullptr) {
        return;
    }
    m_pPoliciesDlg->DestroyWindow();
    delete std::exchange(m_pPoliciesDlg, nullptr);
}

}  // namespace mvp
