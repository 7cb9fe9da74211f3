#include "frame/parent_window.h"
#include "mvpingui/mvpingui.h"
#include "notify/card_expiry_dialog.h"
#include "notify/card_expiry_rules.h"
#include "platform/barrier.h"
#include "services/log.h"

namespace {

int Notify(HWND hParent, const VKExpiryNotificationInfo* pInfo) {
    if (pInfo == nullptr) {
        vklogLog(g_szLogTag, kLogError, "DisplayCardExpiryNotification: pInfo == NULL");
        return mvp::kDelayUnchanged;
    }
    CTime cardExpiry;
    const bool isCardTold = pInfo->MustDisplayCardExpiry(cardExpiry) != 0;
    if (!mvp::IsSomethingToTell(isCardTold, pInfo->GetNbCertExpiryNotificationInfo())) {
        return mvp::kDelayUnchanged;
    }
    const mvp::ParentWindow parent(hParent);
    CCardExpiryNotifyDlg dialog(parent.get(), pInfo->GetReaderName(), *pInfo);
    if (dialog.DoModal() != IDOK) {
        return mvp::kDelayUnchanged;
    }
    return mvp::NewDelay(pInfo->GetNbDaysForNotificationDelay(), dialog.DelayText());
}

}  // namespace

extern "C" int32_t DisplayCardExpiryNotification(HWND hParent, VKExpiryNotificationInfo* pInfo) {
    vklogLog(g_szLogTag, kLogEntry, "DisplayCardExpiryNotification");
    const int result = mvp::Guarded(
        mvp::kDelayUnchanged, [=] { return Notify(hParent, pInfo); },
        mvp::LogException("DisplayCardExpiryNotification"));
    vklogLog(g_szLogTag, kLogExit, "DisplayCardExpiryNotification (%d)", result);
    return result;
}
