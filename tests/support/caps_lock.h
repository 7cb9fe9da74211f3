// Caps Lock as a test needs it, put back as it was afterwards.
#pragma once

#include <windows.h>

#include <chrono>
#include <stdexcept>

#include "common/keyboard.h"
#include "support/waiting.h"

namespace mvp::test {

class CapsLock {
public:
    // Presses the key if Caps Lock is not in the wanted state. The calling thread sees the new
    // state at once, other threads with their next input message. Throws std::runtime_error when
    // the system does not follow.
    explicit CapsLock(bool bOn) {
        if (m_bBefore != bOn) {
            SendKey(VK_CAPITAL);
        }
        if (!WaitFor(std::chrono::seconds(5), [=] { return IsOn() == bOn; })) {
            throw std::runtime_error("Caps Lock does not follow its key");
        }
    }
    CapsLock(const CapsLock&) = delete;
    CapsLock& operator=(const CapsLock&) = delete;
    ~CapsLock() {
        if (IsOn() != m_bBefore) {
            SendKey(VK_CAPITAL);
        }
    }

    // GetKeyState is the calling thread's view, which follows its input messages alone.
    static bool IsOn() {
        MSG message = {};
        PeekMessageA(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_NOREMOVE);
        return (GetKeyState(VK_CAPITAL) & 1) != 0;
    }

private:
    bool m_bBefore = IsOn();
};

}  // namespace mvp::test
