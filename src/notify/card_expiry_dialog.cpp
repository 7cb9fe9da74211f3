#include "notify/card_expiry_dialog.h"

#include <algorithm>

#include <dlgfw/data_exchange.h>
#include <dlgfw/dc.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/optional_control.h"
#include "notify/card_expiry_help.h"
#include "platform/window_dpi.h"
#include "resources/resource_numbers.h"
#include "services/format_text.h"
#include "services/help_topic.h"
#include "services/log.h"
#include "services/registry_readers.h"
#include "services/resource_module.h"
#include "settings/settings.h"

namespace {

constexpr mvp::TextSetting kSentence = mvp::settings::kValiditySentence;
constexpr char kDateFormat[] = "%m/%d/%y";
constexpr int kHelpTopic = 1012;

constexpr int kIconSize = 16;
constexpr int kNameWidth = 192;
constexpr int kDateWidth = 150;
// Columns of the list.
constexpr int kNameColumn = 0;
constexpr int kDateColumn = 1;

}  // namespace

BEGIN_MESSAGE_MAP(CCardExpiryNotifyDlg, CBaseDialog)
    ON_BN_CLICKED(IDC_CARD_EXPIRY_REMIND, &CCardExpiryNotifyDlg::OnClickedRemind)
    ON_WM_HELPINFO()
    ON_WM_DESTROY()
END_MESSAGE_MAP()

CCardExpiryNotifyDlg::CCardExpiryNotifyDlg(CWnd* pParent, const CString& strReader,
                                           const VKExpiryNotificationInfo& info)
    : CBaseDialog(IDD_CARD_EXPIRY, 0, nullptr, pParent), m_info(info) {
    const mvp::LogScope scope("CCardExpiryNotifyDlg::CCardExpiryNotifyDlg");
    vklogLog(g_szLogTag, kLogInfo, "CCardExpiryNotifyDlg: pParent = %x, Reader = %s",
             mvp::LowBits(pParent), strReader.GetString());
    m_strDelay.Format("%d", info.GetNbDaysForNotificationDelay());
}

CCardExpiryNotifyDlg::~CCardExpiryNotifyDlg() {
    const mvp::LogScope scope("CCardExpiryNotifyDlg::~CCardExpiryNotifyDlg");
}

CTime CCardExpiryNotifyDlg::Now() const {
    return CTime::GetCurrentTime();
}

void CCardExpiryNotifyDlg::DoDataExchange(CDataExchange* pDX) {
    const mvp::LogScope scope("CCardExpiryNotifyDlg::DoDataExchange");
    CBaseDialog::DoDataExchange(pDX);
    mvp::BindIfThere(pDX, IDC_CARD_EXPIRY_LIST, m_list);
    mvp::BindIfThere(pDX, IDC_CARD_EXPIRY_SPIN, m_spin);
    if (GetDlgItem(IDC_CARD_EXPIRY_DAYS) != nullptr) {
        DDX_Text(pDX, IDC_CARD_EXPIRY_DAYS, m_strDelay);
    }
}

BOOL CCardExpiryNotifyDlg::OnInitDialog() {
    const mvp::LogScope scope("CCardExpiryNotifyDlg::OnInitDialog");
    if (!CBaseDialog::OnInitDialog()) {
        return FALSE;
    }
    m_cancelWatch.Start(m_hWnd, m_info.GetCancelEvent());
    SetUpReminder();
    const CTime now = Now();
    const bool hasCardExpired = ShowCard(now);
    ShowSentence();
    const bool hasCertificateExpired = ShowCertificates(now);
    if (CWnd* heading = GetDlgItem(IDC_CARD_EXPIRY_HEADING)) {
        heading->SetFont(TextFont());
    }
    if (!hasCardExpired && !hasCertificateExpired) {
        return TRUE;
    }
    ShowExpired();
    return FALSE;
}

void CCardExpiryNotifyDlg::SetUpReminder() {
    m_spin.SetRange32(0, m_info.GetNbDaysForNotificationDelay());
    m_spin.SetBuddy(GetDlgItem(IDC_CARD_EXPIRY_DAYS));
    CheckDlgButton(IDC_CARD_EXPIRY_REMIND, BST_CHECKED);
}

// Returns whether the card has expired.
bool CCardExpiryNotifyDlg::ShowCard(CTime now) {
    CTime expiry;
    if (m_info.MustDisplayCardExpiry(expiry) == 0) {
        return false;
    }
    const bool expired = mvp::HasCardExpired(expiry.GetTime(), now.GetTime());
    const mvp::LinePlace place = mvp::CardLinePlace(mvp::WindowDpi(m_hWnd));
    CRect client;
    GetClientRect(&client);
    // Between two resolutions the window may be narrower than the line in pixels.
    const int right = std::min<int>(place.nLeft + place.nWidth, client.right - place.nLeft);
    const CRect rect(place.nLeft, place.nTop, right, place.nTop + place.nHeight);
    if (m_cardLine.Create(CardLine(expired, expiry), WS_CHILD | WS_VISIBLE, rect, this)) {
        m_cardLine.SetFont(TextFont());
        mvp::ReadBehind(m_cardLine, GetDlgItem(IDC_CARD_EXPIRY_SENTENCE));
    }
    Take(mvp::WithCardLine(mvp::WindowDpi(m_hWnd)));
    return expired;
}

CString CCardExpiryNotifyDlg::CardLine(bool bExpired, CTime expiry) const {
    if (bExpired) {
        return mvp::ResourceString(IDS_CARD_EXPIRY_EXPIRED);
    }
    CString format;
    return mvp::LoadResourceString(IDS_CARD_EXPIRY_EXPIRES_FORMAT, format)
               ? mvp::FormatResourceText(IDS_CARD_EXPIRY_EXPIRES_FORMAT, expiry.Format(kDateFormat))
               : CString();
}

void CCardExpiryNotifyDlg::ShowSentence() {
    CString sentence;
    readStringFromRegistry_sz(kSentence.pszKey, kSentence.pszName, &sentence);
    if (!sentence.IsEmpty()) {
        SetDlgItemText(IDC_CARD_EXPIRY_SENTENCE, sentence);
    }
}

// Returns whether one has expired.
bool CCardExpiryNotifyDlg::ShowCertificates(CTime now) {
    const int count = m_info.GetNbCertExpiryNotificationInfo();
    if (count < 1) {
        const int height = mvp::PlaceOf(*this, IDC_CARD_EXPIRY_LIST).Height();
        Take(mvp::WithoutCertificates(height, mvp::WindowDpi(m_hWnd)));
        return false;
    }
    MakeColumns();
    bool expired = false;
    for (int row = 0; row < count; ++row) {
        expired = AddRow(row, now) || expired;
    }
    FitColumns();
    // Whoever comes to the list by the keyboard sees where he is.
    LVITEMA first{};
    first.state = LVIS_FOCUSED;
    first.stateMask = LVIS_FOCUSED;
    m_list.SendMessage(LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&first));
    return expired;
}

void CCardExpiryNotifyDlg::MakeColumns() {
    const int size = mvp::PixelsIn(m_hWnd, kIconSize);
    m_images.Create(size, size, ILC_COLOR24 | ILC_MASK, 2, 1);
    m_nValidImage = AddImage(IDI_CERTIFICATE_VALID);
    m_nExpiredImage = AddImage(IDI_CERTIFICATE_EXPIRED);
    m_list.SetImageList(&m_images, LVSIL_SMALL);
    m_list.InsertColumn(kNameColumn, mvp::ResourceString(IDS_CARD_EXPIRY_NAME_COLUMN), LVCFMT_LEFT,
                        mvp::PixelsIn(m_hWnd, kNameWidth));
    m_list.InsertColumn(kDateColumn, mvp::ResourceString(IDS_CARD_EXPIRY_DATE_COLUMN), LVCFMT_LEFT,
                        mvp::PixelsIn(m_hWnd, kDateWidth));
    // A name that is cut shows whole in a tip.
    m_list.SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_LABELTIP | LVS_EX_FULLROWSELECT);
}

// Between two resolutions the list grows less than a number of pixels does: the second column then
// gives way, rather than be reached by scrolling. What the rows leave is known when they are there.
void CCardExpiryNotifyDlg::FitColumns() {
    CRect client;
    m_list.GetClientRect(&client);
    const int left = client.Width() - mvp::PixelsIn(m_hWnd, kNameWidth);
    m_list.SendMessage(LVM_SETCOLUMNWIDTH, kDateColumn,
                       std::min(left, mvp::PixelsIn(m_hWnd, kDateWidth)));
}

// Returns the image's index. A missing icon leaves its rows without one, and not with the next.
int CCardExpiryNotifyDlg::AddImage(UINT nIcon) {
    const int image = m_images.Add(mvp::LoadResourceIcon(nIcon, mvp::PixelsIn(m_hWnd, kIconSize)));
    return image >= 0 ? image : I_IMAGENONE;
}

// Returns whether the certificate has expired.
bool CCardExpiryNotifyDlg::AddRow(int nRow, CTime now) {
    const VKCertificateExpiryNotificationInfo* certificate =
        m_info.GetCertificateExpiryNotificationInfo(nRow);
    const CTime expiry = certificate->GetCertificateExpiryDate();
    const bool expired = mvp::HasCertificateExpired(expiry.GetTime(), now.GetTime());
    CString date = expiry.Format(kDateFormat);
    if (expired) {
        date += mvp::ResourceString(IDS_CARD_EXPIRY_DATE_EXPIRED);
    }
    m_list.InsertItem(nRow, certificate->GetFriendlyName(),
                      expired ? m_nExpiredImage : m_nValidImage);
    m_list.SetItemText(nRow, kDateColumn, date);
    return expired;
}

// Nothing is left to be reminded of: what remains is to close the notice.
void CCardExpiryNotifyDlg::ShowExpired() {
    const bool measurable = GetDlgItem(IDC_CARD_EXPIRY_DAYS) != nullptr &&
                            GetDlgItem(IDC_CARD_EXPIRY_NEVER_AGAIN) != nullptr;
    const CRect days = mvp::PlaceOf(*this, IDC_CARD_EXPIRY_DAYS);
    const CRect never = mvp::PlaceOf(*this, IDC_CARD_EXPIRY_NEVER_AGAIN);
    Take(measurable ? mvp::WithoutReminder(days.top, never.bottom) : mvp::WithoutReminder(0, 0));
    CString close;
    if (mvp::LoadResourceString(IDS_CARD_EXPIRY_CLOSE, close)) {
        SetDlgItemText(IDCANCEL, close);
    }
    // Enter presses it from wherever the focus is: the hidden OK is the default no more.
    SendMessage(DM_SETDEFID, IDCANCEL);
    SendMessage(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(::GetDlgItem(m_hWnd, IDCANCEL)), TRUE);
}

void CCardExpiryNotifyDlg::Take(const mvp::FormStep& step) {
    for (const int id : step.hidden) {
        if (CWnd* control = GetDlgItem(id)) {
            control->ShowWindow(SW_HIDE);
        }
    }
    for (const int id : step.moved) {
        mvp::MoveControl(*this, id, 0, step.dy);
    }
    ResizeDlg(0, 0, -step.dy);
}

// The font of the heading, which is what the dialog's texts are written in.
CFont* CCardExpiryNotifyDlg::TextFont() const {
    const CWnd* heading = GetDlgItem(IDC_CARD_EXPIRY_HEADING);
    return heading != nullptr ? heading->GetFont() : nullptr;
}

void CCardExpiryNotifyDlg::OnClickedRemind() {
    const mvp::LogScope scope("CCardExpiryNotifyDlg::OnClickedRemind");
    const bool remind = IsDlgButtonChecked(IDC_CARD_EXPIRY_REMIND) == BST_CHECKED;
    for (const int id : {IDC_CARD_EXPIRY_DAYS, IDC_CARD_EXPIRY_SPIN}) {
        if (CWnd* control = GetDlgItem(id)) {
            mvp::EnableIf(*control, remind);
        }
    }
}

void CCardExpiryNotifyDlg::OnOK() {
    const mvp::LogScope scope("CCardExpiryNotifyDlg::OnOK");
    // What has ended the dialog before stands.
    if ((m_nFlags & WF_CONTINUEMODAL) == 0) {
        return;
    }
    const CWnd* never = GetDlgItem(IDC_CARD_EXPIRY_NEVER_AGAIN);
    if (never != nullptr && never->IsWindowVisible() &&
        IsDlgButtonChecked(IDC_CARD_EXPIRY_NEVER_AGAIN) == BST_CHECKED) {
        m_strDelay = "0";
        UpdateData(FALSE);
    }
    CBaseDialog::OnOK();
}

void CCardExpiryNotifyDlg::OnContextualHelp() {
    const mvp::LogScope scope("CCardExpiryNotifyDlg::OnContextualHelp");
    if (!mvp::OpenValidityHelp()) {
        DoDisplayTopic(kHelpTopic);
    }
}

BOOL CCardExpiryNotifyDlg::OnHelpInfo(HELPINFO* /*pHelpInfo*/) {
    OnContextualHelp();
    return TRUE;
}

void CCardExpiryNotifyDlg::OnDestroy() {
    const mvp::LogScope scope("CCardExpiryNotifyDlg::OnDestroy");
    m_cancelWatch.Stop();
    CBaseDialog::OnDestroy();
}
