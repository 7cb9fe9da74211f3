// Caps Lock as a test needs it, put back as it was afterwards.
#pragma once

namespace mvp::test {

class CapsLock {
public:
    // Presses the key if Caps Lock is not in the wanted state. The calling thread sees the new
    // state at once, other threads with their next input message. Throws std::runtime_error when
    // the system does not follow.
    explicit CapsLock(bool bOn);
    CapsLock(const CapsLock&) = delete;
    CapsLock& operator=(const CapsLock&) = delete;
    ~CapsLock();

    static bool IsOn();

private:
    bool m_bBefore = IsOn();
};

}  // namespace mvp::test
