#include "suite/vkevtsub/sent_message_wait.h"

#include <iterator>

namespace mvp {

bool WaitServingSentMessages(std::initializer_list<HANDLE> objects, DWORD nTimeoutMs) noexcept {
    const auto count = static_cast<DWORD>(objects.size());
    const ULONGLONG start = GetTickCount64();
    for (;;) {
        const ULONGLONG passed = GetTickCount64() - start;
        DWORD left = INFINITE;
        if (nTimeoutMs != INFINITE) {
            left = passed < nTimeoutMs ? nTimeoutMs - static_cast<DWORD>(passed) : 0;
        }
        const DWORD result = MsgWaitForMultipleObjectsEx(count, std::data(objects), left,
                                                         QS_SENDMESSAGE, MWMO_INPUTAVAILABLE);
        if (result != WAIT_OBJECT_0 + count) {
            return result < WAIT_OBJECT_0 + count;
        }
        MSG message;
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

void ReplyToSender() noexcept {
    const DWORD state = InSendMessageEx(nullptr);
    if ((state & (ISMEX_SEND | ISMEX_REPLIED)) == ISMEX_SEND) {
        ReplyMessage(0);
    }
}

}  // namespace mvp
