#include "support/caps_lock.h"

#include <chrono>
#include <stdexcept>

#include "common/keyboard.h"
#include "support/waiting.h"

namespace mvp::test {

CapsLock::CapsLock(bool bOn) : m_bBefore(IsOn()) {
    Set(bOn);
}

CapsLock::~CapsLock() {
    if (IsOn() != m_bBefore)
        SendKey(VK_CAPITAL);
}

// GetKeyState is the calling thread's view, which follows its input messages alone.
bool CapsLock::IsOn() {
    MSG message = {};
    PeekMessageA(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_NOREMOVE);
    return (GetKeyState(VK_CAPITAL) & 1) != 0;
}

void CapsLock::Set(bool bOn) {
    if (IsOn() == bOn)
        return;
    SendKey(VK_CAPITAL);
    if (!WaitFor(std::chrono::seconds(5), [bOn] { return IsOn() == bOn; }))
        throw std::runtime_error("Caps Lock does not follow its key");
}

}  // namespace mvp::test
