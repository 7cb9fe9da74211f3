#include "support/caps_lock.h"

#include <chrono>
#include <stdexcept>

#include "common/keyboard.h"
#include "support/waiting.h"

namespace mvp::test {

CapsLock::CapsLock(bool bOn) {
    if (m_bBefore != bOn)
        SendKey(VK_CAPITAL);
    if (!WaitFor(std::chrono::seconds(5), [=] { return IsOn() == bOn; }))
        throw std::runtime_error("Caps Lock does not follow its key");
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

}  // namespace mvp::test
