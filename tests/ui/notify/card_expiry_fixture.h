// The expiry notice on a made clock, for its tests.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "mvpingui/card_expiry.h"
#include "mvpingui/mvpingui.h"
#include "notify/card_expiry_dialog.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {

// 2031-05-17 12:00 UTC.
inline constexpr __time64_t kNow = 1'936'785'600;
inline constexpr __time64_t kDay = 86'400;

// A notice that opens at kNow, on a clock that runs fast.
class NoticeAtNow : public CCardExpiryNotifyDlg {
public:
    explicit NoticeAtNow(const VKExpiryNotificationInfo& info)
        : CCardExpiryNotifyDlg(nullptr, info.GetReaderName(), info) {}

protected:
    CTime Now() const override { return kNow + 1000 * kDay * m_nAsked++; }

private:
    mutable int m_nAsked = 0;
};

struct Certificate {
    const char* pszName;
    __time64_t expiry;
};

// What a notice is to tell.
struct Told {
    __time64_t card = 0;  // 0: nothing of the card
    std::vector<Certificate> certificates = {};
    int nDays = 14;
    HANDLE hCancel = nullptr;

    void FillIn(VKExpiryNotificationInfo& info) const {
        info.SetNbDaysForNotificationDelay(nDays);
        info.SetMustDisplayCardExpiry(card != 0 ? -1 : 0, card);
        for (const auto& [name, expiry] : certificates) {
            info.AddCertificateExpiryNotificationInfo(name, expiry);
        }
    }
    // How the notice ended at kNow.
    INT_PTR ShowAtNow(std::vector<Script> scripts) const {
        VKExpiryNotificationInfo info("Reader A", hCancel);
        FillIn(info);
        NoticeAtNow notice(info);
        const DialogDriver driver(std::chrono::seconds(10), std::move(scripts));
        return notice.DoModal();
    }
    // The function's result, on the system's clock.
    int Display(std::vector<Script> scripts, HWND hParent = nullptr) const {
        VKExpiryNotificationInfo info("Reader A", hCancel);
        FillIn(info);
        const DialogDriver driver(std::chrono::seconds(10), std::move(scripts));
        return DisplayCardExpiryNotification(hParent, &info);
    }
};

// The texts of a cell, as many bytes as are told.
inline std::string CellOf(Dialog& d, int nRow, int nColumn) {
    std::string text(2048, '\0');
    d.Run([&] {
        LVITEMA item{};
        item.iSubItem = nColumn;
        item.pszText = text.data();
        item.cchTextMax = static_cast<int>(text.size());
        text.resize(static_cast<std::size_t>(
            SendMessageA(d.Control(IDC_CARD_EXPIRY_LIST), LVM_GETITEMTEXTA,
                         static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(&item))));
    });
    return text;
}

}  // namespace mvp::test
