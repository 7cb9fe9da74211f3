#include "suite/vkevtsub/sent_message_wait.h"

#include <iterator>

namespace mvp {

bool WaitServingSentMessages(std::initializer_list<HANDLE> objects, DWORD nTimeoutMs) noexcept {
    const auto nObjects = static_cast<DWORD>(objects.size());
    const ULONGLONG nStart = GetTickCount64();
    for (;;) {
        const ULONGLONG nPassed = GetTickCount64() - nStart;
        DWORD nLeft = INFINITE;
        if (nTimeoutMs != INFINITE)
            nLeft = nPassed < nTimeoutMs ? nTimeoutMs - static_cast<DWORD>(nPassed) : 0;
        const DWORD nResult = MsgWaitForMultipleObjectsEx(nObjects, std::data(objects), nLeft,
                                                          QS_SENDMESSAGE, MWMO_INPUTAVAILABLE);
        if (nResult != WAIT_OBJECT_0 + nObjects)
            return nResult < WAIT_OBJECT_0 + nObjects;
        MSG message;
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

void ReplyToSender() noexcept {
    const DWORD nState = InSendMessageEx(nullptr);
    if ((nState & (ISMEX_SEND | ISMEX_REPLIED)) == ISMEX_SEND)
        ReplyMessage(0);
}

}  // namespace mvp
