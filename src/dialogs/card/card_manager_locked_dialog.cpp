#include "mvpingui/card_manager_locked_dialog.h"

#include <dlgfw/data_exchange.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "dialogs/card/notice_height.h"
#include "platform/handle.h"
#include "resources/resource_numbers.h"
#include "services/help_topic.h"
#include "services/log.h"
#include "services/registry_readers.h"
#include "services/resource_module.h"
#include "settings/settings.h"

namespace {

constexpr mvp::TextSetting kMessage = mvp::settings::kBlockedCardManagerMessage;
constexpr int kHelpTopic = 1014;

}  // namespace

BEGIN_MESSAGE_MAP(CCMLockedDlg, VKDetectCardRemovedDlg)
    ON_WM_HELPINFO()
END_MESSAGE_MAP()

CCMLockedDlg::CCMLockedDlg(CWnd* pParent, const char* pszReader)
    : VKDetectCardRemovedDlg(IDD_CARD_MANAGER_LOCKED, pParent, pszReader) {
    const mvp::LogScope scope("CCMLockedDlg::CCMLockedDlg");
    readStringFromRegistry_sz(kMessage.pszKey, kMessage.pszName, &m_strMessage);
    if (!m_strMessage.IsEmpty()) {
        return;
    }
    vklogLog(g_szLogTag, kLogInfo, "CCMLockedDlg::CCMLockedDlg: calling LoadString");
    if (!mvp::LoadResourceString(IDS_CARD_MANAGER_LOCKED, m_strMessage)) {
        vklogLog(g_szLogTag, kLogError,
                 "CCMLockedDlg::CCMLockedDlg: LoadString failed with error code 0x%x",
                 static_cast<unsigned>(GetLastError()));
    }
    vklogLog(g_szLogTag, kLogInfo, "CCMLockedDlg::CCMLockedDlg: LoadString called");
}

void CCMLockedDlg::DoDataExchange(CDataExchange* pDX) {
    VKDetectCardRemovedDlg::DoDataExchange(pDX);
    DDX_Text(pDX, IDC_CARD_MANAGER_LOCKED_TEXT, m_strMessage);
}

BOOL CCMLockedDlg::OnInitDialog() {
    const mvp::LogScope scope("CCMLockedDlg::OnInitDialog");
    VKDetectCardRemovedDlg::OnInitDialog();
    mvp::BringToFront(*this);
    AdjustWindow();
    return TRUE;
}

void CCMLockedDlg::AdjustWindow() {
    const mvp::LogScope scope("CCMLockedDlg::AdjustWindow");
    CWnd* text = GetDlgItem(IDC_CARD_MANAGER_LOCKED_TEXT);
    CWnd* button = GetDlgItem(IDOK);
    if (text == nullptr || button == nullptr) {
        return;
    }
    CRect window;
    CRect client;
    GetWindowRect(&window);
    GetClientRect(&client);
    const int frame = window.Height() - client.Height();
    const CRect buttonPlace = mvp::ClientRectOf(*this, *button);
    const CRect textPlace = mvp::ClientRectOf(*this, *text);
    const int textHeight = TextHeight(*text, textPlace.Width());
    const int textBottom = textPlace.top + textHeight;
    text->MoveWindow(textPlace.left, textPlace.top, textPlace.Width(), textHeight);
    button->MoveWindow(buttonPlace.left, textBottom, buttonPlace.Width(), buttonPlace.Height());
    MoveWindow(window.left, window.top, window.Width(),
               buttonPlace.Height() + textBottom + textPlace.top + frame);
}

int CCMLockedDlg::TextHeight(CWnd& text, int nWidth) const {
    const mvp::WindowDc dc(text.m_hWnd);
    if (dc.get() == nullptr) {
        return mvp::kNoticeHeightUnmeasured;
    }
    const mvp::DcSelection font(dc.get(), reinterpret_cast<HGDIOBJ>(text.SendMessage(WM_GETFONT)));
    SIZE size{};
    GetTextExtentPoint32A(dc.get(), m_strMessage, m_strMessage.GetLength(), &size);
    return mvp::NoticeTextHeight(size.cx, size.cy, nWidth);
}

void CCMLockedDlg::OnContextualHelp() {
    const mvp::LogScope scope("CCMLockedDlg::OnContextualHelp");
    DoDisplayTopic(kHelpTopic);
}

BOOL CCMLockedDlg::OnHelpInfo(HELPINFO* /*pHelpInfo*/) {
    OnContextualHelp();
    return TRUE;
}
