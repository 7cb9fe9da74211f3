// Where the one-time password of a notice comes from, after a while: the routine that the library
// starts on a thread of its own. One at a time.
#pragma once

#include <windows.h>

#include <chrono>
#include <string>

#include "platform/handle.h"

namespace pinhost {

class PasswordSource {
public:
    // A rich text in the ANSI code page.
    PasswordSource(std::string strPassword, std::chrono::milliseconds delay);
    PasswordSource(const PasswordSource&) = delete;
    PasswordSource& operator=(const PasswordSource&) = delete;
    // Waits for a routine that runs, which does not wait any longer.
    ~PasswordSource();

    // To be handed to a notice that is shown, or to none.
    LPTHREAD_START_ROUTINE Routine() const { return &PasswordSource::Fetch; }
    // The notice was shown, so the routine runs.
    void Started() { m_bStarted = true; }

private:
    static DWORD WINAPI Fetch(void* pPopup);
    void Deliver(HWND hPopup) const;

    static PasswordSource* s_pSource;

    std::string m_strPassword;
    std::chrono::milliseconds m_delay;
    bool m_bStarted = false;
    mvp::KernelHandle m_stop;
    mvp::KernelHandle m_done;
};

}  // namespace pinhost
