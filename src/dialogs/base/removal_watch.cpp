#include "mvpingui/removal_watch.h"

#include <utility>

#include "platform/barrier.h"
#include "services/card_removed_message.h"
#include "services/card_removed_subscriber.h"
#include "services/log.h"

namespace mvp {

void RemovalWatch::Start(CWnd& dialog, const CString& strReader) {
    Guarded(
        [&] {
            m_pCardRemoved =
                new VKDelegateSubscriberCardRemoved(&dialog, g_nCardRemovedMessage, strReader);
        },
        LogException("VKDelegateSubscriberCardRemoved Constructor"));
}

void RemovalWatch::Stop() {
    delete std::exchange(m_pCardRemoved, nullptr);
}

}  // namespace mvp
