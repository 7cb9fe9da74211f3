// A way into the thread that owns the dialogs: work done there, and proof that it has got round to
// what was posted to it.
//
// Constructed on the user-interface thread, used from one other. It answers whenever the
// user-interface thread takes messages, inside whatever modal loop that may be.
#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <functional>

namespace mvp::test {

class UiThread {
public:
    UiThread();
    UiThread(const UiThread&) = delete;
    UiThread& operator=(const UiThread&) = delete;
    ~UiThread() { DestroyWindow(m_hWnd); }  // on the user-interface thread

    DWORD Id() const { return m_dwThreadId; }

    // Runs `work` on the user-interface thread and returns when it has run; what it throws comes
    // out here. The test process ends when that takes longer than `timeout`.
    void Run(const std::function<void()>& work, std::chrono::milliseconds timeout);

    // Posts a mark behind every message posted to the thread so far. The function returned tells
    // whether the thread has come to it.
    std::function<bool()> PostMark();

private:
    DWORD m_dwThreadId = GetCurrentThreadId();
    HWND m_hWnd;
    WPARAM m_nPosted = 0;
    std::atomic<WPARAM> m_nReached = 0;
};

}  // namespace mvp::test
