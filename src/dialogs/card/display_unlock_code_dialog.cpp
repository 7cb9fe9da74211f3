#include <utility>

#include <dlgfw/data_exchange.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "dialogs/base/optional_control.h"
#include "mvpingui/display_unlock_code.h"
#include "platform/barrier.h"
#include "resources/resource_numbers.h"
#include "services/log.h"
#include "services/resource_module.h"
#include "services/wipe.h"

namespace {

constexpr char kWindowProperty[] = "DisplayUCodeWnd";

}  // namespace

CDisplayUCChild::CDisplayUCChild(int nMode, const RECT* pPosition, const char* pszCode,
                                 CWnd* pParent)
    : CBaseDialog(IDD_UNLOCK_CODE_PANEL, nMode, pPosition, pParent), m_strCode(pszCode) {
    const mvp::LogScope scope("CDisplayUCChild::CDisplayUCChild");
}

CDisplayUCChild::~CDisplayUCChild() {
    const mvp::LogScope scope("CDisplayUCChild::~CDisplayUCChild");
    HidePinFromMemory(m_strCode);
}

int CDisplayUCChild::LocCreate(CWnd* pParent) {
    const mvp::LogScope scope("CDisplayUCChild::LocCreate");
    return CreateFromResourceModule(pParent);
}

void CDisplayUCChild::TakeBack(CString& strCode) const {
    m_editCode.ReadSecret(strCode);
}

int CDisplayUCChild::IsNeverDisplayChecked() const {
    const mvp::LogScope scope("CDisplayUCChild::IsNeverDisplayChecked");
    const HWND box = ::GetDlgItem(m_hWnd, IDC_UNLOCK_CODE_NEVER_AGAIN);
    return box == nullptr || ::SendMessageA(box, BM_GETCHECK, 0, 0) == BST_CHECKED ? 1 : 0;
}

void CDisplayUCChild::DoDataExchange(CDataExchange* pDX) {
    CBaseDialog::DoDataExchange(pDX);
    mvp::BindIfThere(pDX, IDC_UNLOCK_CODE_CODE, m_editCode);
    if (!pDX->m_bSaveAndValidate) {
        m_editCode.ShowText();
    }
    // The code is moved to the edit, where alone it stands while it is shown.
    if (!pDX->m_bSaveAndValidate && !m_strCode.IsEmpty()) {
        m_editCode.WriteSecret(m_strCode);
        mvp::Wipe(m_strCode);
    }
}

BEGIN_MESSAGE_MAP(CDisplayUnlockCodeDlg, VKDetectCardRemovedDlg)
    ON_WM_DESTROY()
END_MESSAGE_MAP()

CDisplayUnlockCodeDlg::CDisplayUnlockCodeDlg(CWnd* pParent, const char* pszCode,
                                             const char* pszReader, int nChildMode)
    : VKDetectCardRemovedDlg(IDD_UNLOCK_CODE, pParent, pszReader),
      m_nChildMode(nChildMode),
      m_strCode(pszCode) {
    const mvp::LogScope scope("CDisplayUnlockCodeDlg::CDisplayUnlockCodeDlg");
}

CDisplayUnlockCodeDlg::~CDisplayUnlockCodeDlg() {
    const mvp::LogScope scope("CDisplayUnlockCodeDlg::~CDisplayUnlockCodeDlg");
    delete m_pDisplayUCChild;
    HidePinFromMemory(m_strCode);
}

BOOL CDisplayUnlockCodeDlg::OnInitDialog() {
    const mvp::LogScope scope("CDisplayUnlockCodeDlg::OnInitDialog");
    VKDetectCardRemovedDlg::OnInitDialog();
    if (mvp::ResourceModule() != nullptr) {
        mvp::SetSmallIcon(*this, IDI_CARD_UNLOCK);
    } else {
        vklogLog(g_szLogTag, kLogError, "g_hResInstance is NULL");
    }
    m_hPropertyWnd = ::GetParent(m_hWnd);
    if (m_hPropertyWnd != nullptr) {
        m_hPreviousWnd = static_cast<HWND>(GetPropA(m_hPropertyWnd, kWindowProperty));
        SetPropA(m_hPropertyWnd, kWindowProperty, m_hWnd);
    }
    CreatePanel();
    mvp::BringToFront(*this);
    return TRUE;
}

void CDisplayUnlockCodeDlg::CreatePanel() {
    delete std::exchange(m_pDisplayUCChild, nullptr);  // of a former DoModal
    const CRect place = mvp::PlaceOf(*this, IDC_UNLOCK_CODE_PANEL_PLACE);
    m_pDisplayUCChild = mvp::Guarded<CDisplayUCChild*>(
        nullptr, [&] { return new CDisplayUCChild(m_nChildMode, &place, m_strCode, this); },
        mvp::LogException("CDisplayUCChild::CDisplayUCChild"));
    if (m_pDisplayUCChild == nullptr) {
        vklogLog(g_szLogTag, kLogError, "m_pDisplayUCChild NULL");
        return;
    }
    if (m_pDisplayUCChild->LocCreate(this) == 0) {
        vklogLog(g_szLogTag, kLogError, "LocCreate Failed");
        delete std::exchange(m_pDisplayUCChild, nullptr);
        return;
    }
    mvp::Wipe(m_strCode);
    mvp::ShowPanel(*m_pDisplayUCChild, GetDlgItem(IDC_UNLOCK_CODE_PANEL_PLACE));
}

void CDisplayUnlockCodeDlg::OnOK() {
    const mvp::LogScope scope("CDisplayUnlockCodeDlg::OnOK");
    if ((m_nFlags & WF_CONTINUEMODAL) == 0) {
        return;
    }
    if (m_pDisplayUCChild != nullptr && m_pDisplayUCChild->IsNeverDisplayChecked() == 0) {
        EndDialog(IDCANCEL);
    } else {
        VKDetectCardRemovedDlg::OnOK();
    }
}

void CDisplayUnlockCodeDlg::OnDestroy() {
    const mvp::LogScope scope("CDisplayUnlockCodeDlg::OnDestroy");
    // For another DoModal.
    if (m_pDisplayUCChild != nullptr) {
        m_pDisplayUCChild->TakeBack(m_strCode);
    }
    // A dialog that was opened later over the same parent may have put its own there; when that one
    // goes, it brings back what it found.
    if (m_hPropertyWnd != nullptr && GetPropA(m_hPropertyWnd, kWindowProperty) == m_hWnd) {
        if (::IsWindow(m_hPreviousWnd)) {
            SetPropA(m_hPropertyWnd, kWindowProperty, m_hPreviousWnd);
        } else {
            RemovePropA(m_hPropertyWnd, kWindowProperty);
        }
    }
    VKDetectCardRemovedDlg::OnDestroy();
}
