#include "mvpingui/unlock_card_dialog.h"

#include <dlgfw/data_exchange.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "dialogs/card/code_groups.h"
#include "dialogs/card/grown_dialog.h"
#include "dialogs/card/help_desk.h"
#include "dialogs/card/static_mode.h"
#include "dialogs/card/unlock_code.h"
#include "mvpingui/policies_dialog.h"
#include "mvpingui/unlock_result_dialogs.h"
#include "platform/barrier.h"
#include "platform/window_dpi.h"
#include "resources/resource_numbers.h"
#include "services/card_removed_message.h"
#include "services/error_text.h"
#include "services/format_text.h"
#include "services/help_topic.h"
#include "services/log.h"
#include "services/notify_event.h"
#include "services/resource_module.h"
#include "services/text_view.h"

namespace {

constexpr UINT kDisplayPinPoliciesMessage = WM_USER + 1;
constexpr int kHelpTopic = 1013;
constexpr char kPasswordCharacter = '*';

constexpr mvp::RulePanel::Layout kRuleLayout{0, 10, 3, 6};

}  // namespace

BEGIN_MESSAGE_MAP(CUnlockCardDlg, CBaseDialog)
    ON_EN_CHANGE(IDC_UNLOCK_CARD_CONFIRM_EDIT, &CUnlockCardDlg::OnChangeEdit)
    ON_EN_CHANGE(IDC_UNLOCK_CARD_NEW_EDIT, &CUnlockCardDlg::OnChangeEdit)
    ON_EN_CHANGE(IDC_UNLOCK_CARD_CODE_EDIT, &CUnlockCardDlg::OnChangeEdit)
    ON_BN_CLICKED(IDC_UNLOCK_CARD_PIN_BOX, &CUnlockCardDlg::OnBnClickedStaticNp)
    ON_WM_DESTROY()
    ON_WM_MOVE()
    ON_WM_HELPINFO()
    ON_MESSAGE(kDisplayPinPoliciesMessage, &CUnlockCardDlg::OnDisplayPINPolicies)
    ON_REGISTERED_MESSAGE(mvp::g_nCardRemovedMessage, &CUnlockCardDlg::OnCardEvent)
END_MESSAGE_MAP()

CUnlockCardDlg::Entries::~Entries() {
    HidePinFromMemory(strNewPin);
    HidePinFromMemory(strConfirmPin);
    HidePinFromMemory(strUnlockCode);
}

CUnlockCardDlg::CUnlockCardDlg(CWnd* pParent, const PwdRuleArgs* pRules, void* pContext,
                               MvpUnlockCallback pfnUnlock, MvpChallengeCallback pfnGetChallenge,
                               const char* pszReader)
    : CBaseDialog(IDD_UNLOCK_CARD, 0, nullptr, pParent),
      m_pContext(pContext),
      m_strReader(pszReader),
      m_pfnUnlock(pfnUnlock),
      m_pfnGetChallenge(pfnGetChallenge) {
    const mvp::LogScope scope("CUnlockCardDlg::CUnlockCardDlg");
    if (pRules != nullptr) {
        m_rules.bPreventAlphaPIN = pRules->bPreventAlphaPIN;
        m_rules.bPreventWeakPIN = pRules->bPreventWeakPIN;
        m_rules.dwMinPINLen = pRules->dwMinPINLen;
        m_rules.dwMaxPINLen = pRules->dwMaxPINLen;
    }
    vklogLog(g_szLogTag, kLogInfo, "m_pStaticPolicies = NULL");
}

CUnlockCardDlg::~CUnlockCardDlg() {
    const mvp::LogScope scope("CUnlockCardDlg::~CUnlockCardDlg");
    m_removalWatch.Stop();
    vklogLog(g_szLogTag, kLogInfo, "Here 1 : m_pStaticPolicies = 0x%x",
             mvp::LowBits(m_rulePanel.Dialog()));
    vklogLog(g_szLogTag, kLogInfo, "m_pStaticPolicies = NULL");
    m_rulePanel.Destroy();
}

void CUnlockCardDlg::DoDataExchange(CDataExchange* pDX) {
    CBaseDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_UNLOCK_CARD_NEW_EDIT, m_editNewPin);
    DDX_Control(pDX, IDC_UNLOCK_CARD_CONFIRM_EDIT, m_editConfirmPin);
    DDX_Control(pDX, IDC_UNLOCK_CARD_CODE_EDIT, m_editUnlockCode);
}

BOOL CUnlockCardDlg::OnInitDialog() {
    const mvp::LogScope scope("CUnlockCardDlg::OnInitDialog");
    CBaseDialog::OnInitDialog();
    m_rulePanel.Destroy();  // of a former DoModal
    mvp::SetSmallIcon(*this, IDI_CARD_UNLOCK);
    m_boldFont.Attach(mvp::MakeHeadingBold(*this, IDC_UNLOCK_CARD_HEADING).release());
    ShowHelpDesk();
    ChooseMode();
    m_editNewPin.SetPasswordChar(kPasswordCharacter);
    m_editConfirmPin.SetPasswordChar(kPasswordCharacter);
    m_editUnlockCode.ShowText();
    mvp::KeepFromMirroring(GetDlgItem(IDC_UNLOCK_CARD_CHALLENGE));
    EnableOk(false);
    PostMessage(kDisplayPinPoliciesMessage);
    mvp::BringToFront(*this);
    SetActiveWindow();
    return TRUE;
}

void CUnlockCardDlg::ShowHelpDesk() {
    const CString number = mvp::HelpDeskNumber();
    SetDlgItemText(IDC_UNLOCK_CARD_HELP_DESK,
                   number.IsEmpty() ? mvp::ResourceString(IDS_UNLOCK_HELP_DESK)
                                    : mvp::FormatResourceText(IDS_UNLOCK_HELP_DESK_FORMAT, number));
}

void CUnlockCardDlg::ChooseMode() {
    CString challenge;
    const int result = mvp::Guarded(
        MVPINGUI_CARD_FAILED,
        [&] {
            return m_pfnGetChallenge != nullptr ? m_pfnGetChallenge(m_pContext, challenge)
                                                : MVPINGUI_CARD_FAILED;
        },
        mvp::LogException("CUnlockCardDlg: the challenge callback"));
    if (result != MVPINGUI_CARD_OK) {
        vklogLog(g_szLogTag, kLogDetail, "Unlock static");
        m_removalWatch.Start(*this, m_strReader);
        ShowStaticMode();
    } else {
        vklogLog(g_szLogTag, kLogDetail, "Unlock challenge response");
        ShowChallenge(challenge);
        m_removalWatch.Start(*this, m_strReader);
    }
}

void CUnlockCardDlg::ShowStaticMode() {
    for (const int id : mvp::kChallengePart) {
        if (CWnd* control = GetDlgItem(id)) {
            control->ShowWindow(SW_HIDE);
        }
    }
    const int height = mvp::PixelsIn(m_hWnd, mvp::kChallengePartHeight);
    for (const int id : mvp::kBelowChallengePart) {
        MoveUpWindow(id, height);
    }
    CRect rect;
    GetWindowRect(&rect);
    vklogLog(g_szLogTag, kLogInfo, "WindowRect (left=%d,top=%d,right=%d,bottom=%d)",
             static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
             static_cast<int>(rect.bottom));
    if (SetWindowPos(nullptr, 0, 0, rect.Width(), rect.Height() - height,
                     SWP_NOMOVE | SWP_NOZORDER)) {
        vklogLog(g_szLogTag, kLogInfo, "SetWindowPos succeeded");
    } else {
        vklogLog(g_szLogTag, kLogInfo, "SetWindowPos failed (GetLastError=%ld)",
                 static_cast<long>(GetLastError()));
    }
}

void CUnlockCardDlg::ShowChallenge(const CString& strChallenge) {
    SetDlgItemText(IDC_UNLOCK_CARD_CHALLENGE, mvp::GroupByFour<CString>(mvp::View(strChallenge)));
}

void CUnlockCardDlg::MoveUpWindow(int nId, int dy) {
    const mvp::LogScope scope("CUnlockCardDlg::MoveUpWindow");
    mvp::MoveControl(*this, nId, 0, -dy);
}

// With the line that has always come before this question.
bool CUnlockCardDlg::HasPanel() const {
    vklogLog(g_szLogTag, kLogInfo, "Test m_pStaticPolicies");
    return m_rulePanel.Dialog() != nullptr;
}

LRESULT CUnlockCardDlg::OnDisplayPINPolicies(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    const mvp::LogScope scope("CUnlockCardDlg::OnDisplayPINPolicies");
    if (!HasPanel()) {
        vklogLog(g_szLogTag, kLogInfo, "m_pStaticPolicies == NULL");
        if (GetDlgItem(IDC_UNLOCK_CARD_POLICIES_PLACE) == nullptr) {
            return 0;
        }
        CreatePanel();
        // The challenge comes before it in the tab order, but nothing is typed there.
        m_editUnlockCode.SetFocus();
    }
    if (HasPanel()) {
        vklogLog(g_szLogTag, kLogInfo, "m_pStaticPolicies != NULL");
        m_rulePanel.Check({}, {}, {}, {});
        m_rulePanel.Show();
    }
    UpdateWindow();
    return 0;
}

void CUnlockCardDlg::CreatePanel() {
    vklogLog(g_szLogTag, kLogInfo, "new m_pStaticPolicies");
    if (!m_rulePanel.Create(*this, IDC_UNLOCK_CARD_POLICIES_PLACE, m_rules, kRuleLayout)) {
        return;
    }
    if (const CWnd* box = GetDlgItem(IDC_UNLOCK_CARD_PIN_BOX)) {
        m_rulePanel.SetWidth(mvp::ClientRectOf(*this, *box).Width());
    }
    mvp::GrowForPanel(*this, m_rulePanel.ListHeight());
}

bool CUnlockCardDlg::ReadEntries(Entries& entries) const {
    return m_editNewPin.ReadSecret(entries.strNewPin) &&
           m_editConfirmPin.ReadSecret(entries.strConfirmPin) &&
           m_editUnlockCode.ReadSecret(entries.strUnlockCode);
}

// Whether OK may be obeyed; brings the rule lines up to date.
bool CUnlockCardDlg::IsAllowed(const Entries& entries) {
    return m_rulePanel.Dialog() != nullptr &&
           m_rulePanel.Check({}, entries.strNewPin, entries.strNewPin, entries.strConfirmPin) &&
           mvp::IsUnlockCode(mvp::View(entries.strUnlockCode));
}

void CUnlockCardDlg::EnableOk(bool bEnable) {
    if (CWnd* ok = GetDlgItem(IDOK)) {
        mvp::EnableIf(*ok, bEnable);
    }
}

void CUnlockCardDlg::OnChangeEdit() {
    const mvp::LogScope scope("CUnlockCardDlg::OnChangeEdit");
    Entries entries;
    EnableOk(ReadEntries(entries) && IsAllowed(entries));
    m_rulePanel.Update();
    UpdateWindow();
}

void CUnlockCardDlg::OnBnClickedStaticNp() {}

void CUnlockCardDlg::OnOK() {
    // Both lines have always been of the level of entries; log readers pair them.
    const mvp::LogScope scope("CUnlockCardDlg::OnOK", "CUnlockCardDlg::OnOK", kLogEntry);
    // What has ended the dialog before stands, and a callback that serves messages is not called
    // again meanwhile.
    if ((m_nFlags & WF_CONTINUEMODAL) == 0 || m_bUnlocking) {
        return;
    }
    m_bUnlocking = true;
    mvp::Guarded([this] { TryToUnlock(); }, mvp::LogException("CUnlockCardDlg::OnOK"));
    m_bUnlocking = false;
}

void CUnlockCardDlg::TryToUnlock() {
    Entries entries;
    if (!ReadEntries(entries)) {
        return;
    }
    if (entries.strNewPin != entries.strConfirmPin) {
        MessageBox(mvp::ResourceString(IDS_UNLOCK_PINS_DIFFER), "Veskara", MB_ICONINFORMATION);
        return;
    }
    // The command comes from anywhere, also while the button is disabled.
    if (!IsAllowed(entries)) {
        return;
    }
    entries.strUnlockCode.Remove('-');
    const int result = Unlock(entries);
    if (result == MVPINGUI_CARD_OK) {
        OnUnlocked();
    } else {
        TellFailure(result);
    }
}

int CUnlockCardDlg::Unlock(const Entries& entries) {
    const CWaitCursor wait;
    return mvp::Guarded(
        MVPINGUI_CARD_FAILED,
        [&] {
            return m_pfnUnlock != nullptr
                       ? m_pfnUnlock(m_pContext, entries.strUnlockCode, entries.strNewPin)
                       : MVPINGUI_CARD_FAILED;
        },
        mvp::LogException("CUnlockCardDlg: the unlock callback"));
}

void CUnlockCardDlg::OnUnlocked() {
    // From here on a card that is pulled changes nothing: it is unlocked.
    m_removalWatch.Stop();
    CUnlockSuccessDlg(this).DoModal();
    NotifyEvent(kEventCardUnlocked, m_strReader, m_hWnd);
    EndDialog(IDOK);
}

void CUnlockCardDlg::TellFailure(int nCode) {
    const CString text =
        nCode == MVPINGUI_CARD_WRONG_UNLOCK_CODE
            ? mvp::ResourceString(IDS_UNLOCK_WRONG_CODE)
            : mvp::FormatResourceText(IDS_UNLOCK_FAILED_FORMAT, mvp::ErrorText(nCode));
    CUnlockFailedDlg(this, text, 0).DoModal();
}

void CUnlockCardDlg::OnCancel() {
    const mvp::LogScope scope("CUnlockCardDlg::OnCancel");
    EndDialog(IDCANCEL);
}

LRESULT CUnlockCardDlg::OnCardEvent(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    const mvp::LogScope scope("CUnlockCardDlg::OnCardEvent()");
    // A message that was posted before the watch ended may still come after it.
    if (m_removalWatch) {
        OnCancel();
    }
    return 0;
}

void CUnlockCardDlg::OnContextualHelp() {
    const mvp::LogScope scope("CUnlockCardDlg::OnContextualHelp");
    DoDisplayTopic(kHelpTopic);
}

BOOL CUnlockCardDlg::OnHelpInfo(HELPINFO* /*pHelpInfo*/) {
    OnContextualHelp();
    return TRUE;
}

void CUnlockCardDlg::OnMove(int x, int y) {
    const mvp::LogScope scope("CUnlockCardDlg::OnMove");
    CBaseDialog::OnMove(x, y);
    m_editNewPin.ResetToolTip();
    m_editConfirmPin.ResetToolTip();
    m_editUnlockCode.ResetToolTip();
}

void CUnlockCardDlg::OnDestroy() {
    const mvp::LogScope scope("CUnlockCardDlg::OnDestroy");
    CBaseDialog::OnDestroy();
    m_removalWatch.Stop();
    m_boldFont.DeleteObject();
}
