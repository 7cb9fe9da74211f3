#include "pinhost/flows/expiry_flow.h"

#include <span>

#include <mvpingui/card_expiry.h>
#include <mvpingui/mvpingui.h>

namespace pinhost {

bool TellExpiry(PinHostExpiry& expiry) {
    constexpr int kUnchanged = -1;
    VKExpiryNotificationInfo info(expiry.pszReader, expiry.hCancel);
    info.SetNbDaysForNotificationDelay(expiry.nDays);
    info.SetMustDisplayCardExpiry(expiry.bCard ? 1 : 0, expiry.nCardExpiry);
    for (const PinHostCertificate& certificate :
         std::span(expiry.pCertificates, expiry.nCertificates)) {
        info.AddCertificateExpiryNotificationInfo(certificate.pszName, certificate.nExpiry);
    }
    expiry.nNewDays = DisplayCardExpiryNotification(nullptr, &info);
    return expiry.nNewDays != kUnchanged;
}

}  // namespace pinhost
