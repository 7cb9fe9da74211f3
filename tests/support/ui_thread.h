// A way into the thread that owns the dialogs: work done there, and proof that it has got round to
// what was posted to it.
//
// Constructed and destroyed on the user-interface thread, used from one other. It answers whenever
// the user-interface thread takes messages, inside whatever modal loop that may be.
#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

#include "platform/handle.h"

namespace mvp::test {

// For when a test cannot even be failed in good order: reports the reason as a failure of the test
// that is running and ends the process with exit code 3.
[[noreturn]] void EndTestProcess(const std::string& strReason);

class UiThread {
public:
    UiThread();

    DWORD Id() const { return m_dwThreadId; }

    // Runs `work` on the user-interface thread and returns when it has run; what it throws comes
    // out here. The test process ends when that takes longer than `timeout`. By a posted message:
    // within one that was sent, edits with a PIN do not tell the text. bSent: by such a one.
    void Run(const std::function<void()>& work, std::chrono::milliseconds timeout,
             bool bSent = false);

    // Posts a mark behind every message posted to the thread so far. The function returned tells
    // whether the thread has come to it.
    std::function<bool()> PostMark();

private:
    struct WindowTraits {
        using Handle = HWND;
        static Handle None() noexcept { return nullptr; }
        static void Close(Handle handle) noexcept { DestroyWindow(handle); }
    };

    DWORD m_dwThreadId = GetCurrentThreadId();
    UniqueHandle<WindowTraits> m_window;
    WPARAM m_nPosted = 0;
    std::atomic<WPARAM> m_nReached = 0;
};

}  // namespace mvp::test
