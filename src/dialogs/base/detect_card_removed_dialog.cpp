#include "mvpingui/detect_card_removed_dialog.h"

#include <dlgfw/message_map.h>

#include "services/card_removed_message.h"
#include "services/log.h"

BEGIN_MESSAGE_MAP(VKDetectCardRemovedDlg, CBaseDialog)
    ON_WM_DESTROY()
    ON_REGISTERED_MESSAGE(mvp::g_nCardRemovedMessage, &VKDetectCardRemovedDlg::OnCardEvent)
END_MESSAGE_MAP()

VKDetectCardRemovedDlg::VKDetectCardRemovedDlg(UINT nTemplate, CWnd* pParent, const char* pszReader)
    : CBaseDialog(nTemplate, 0, nullptr, pParent), m_strReader(pszReader) {
    const mvp::LogScope scope("VKDetectCardRemovedDlg");
    vklogLog(g_szLogTag, kLogInfo, "VKDetectCardRemovedDlg: pParent = %x, Reader = %s",
             mvp::LowBits(pParent), static_cast<LPCSTR>(m_strReader));
}

VKDetectCardRemovedDlg::~VKDetectCardRemovedDlg() {
    const mvp::LogScope scope("~VKDetectCardRemovedDlg");
}

BOOL VKDetectCardRemovedDlg::OnInitDialog() {
    const mvp::LogScope scope("VKDetectCardRemovedDlg::OnInitDialog");
    const BOOL result = CBaseDialog::OnInitDialog();
    m_removalWatch.Start(*this, m_strReader);
    return result;
}

LRESULT VKDetectCardRemovedDlg::OnCardEvent(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    const mvp::LogScope scope("VKDetectCardRemovedDlg::OnCardEvent");
    // A message that was posted before the watch ended may still come after it.
    if (m_removalWatch) {
        EndDialog(IDCANCEL);
    }
    return 0;
}

void VKDetectCardRemovedDlg::OnDestroy() {
    const mvp::LogScope scope("VKDetectCardRemovedDlg::OnDestroy");
    CBaseDialog::OnDestroy();
    StopDetectingRemoveEvent();
}

void VKDetectCardRemovedDlg::StopDetectingRemoveEvent() {
    const mvp::LogScope scope("VKDetectCardRemovedDlg::StopDetectingRemoveEvent");
    if (!m_removalWatch) {
        return;
    }
    vklogLog(g_szLogTag, kLogInfo,
             "VKDetectCardRemovedDlg::StopDetectingRemoveEvent: Card removed");
    m_removalWatch.Stop();
}
