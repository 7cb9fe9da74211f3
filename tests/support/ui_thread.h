// A way into the thread that owns the dialogs: work done there, and proof that it has got round to
// what was posted to it.
//
// Constructed on the user-interface thread, used from the driver's. It answers whenever the
// user-interface thread takes messages, inside whatever modal loop that may be.
#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <functional>
#include <map>
#include <mutex>

namespace mvp::test {

class UiThread {
public:
    UiThread();
    UiThread(const UiThread&) = delete;
    UiThread& operator=(const UiThread&) = delete;
    ~UiThread();  // on the user-interface thread

    DWORD Id() const { return m_dwThreadId; }

    // Runs `work` on the user-interface thread and returns when it has run; what it throws comes
    // out here. Throws DriverFailure when the thread takes no message within `timeout`; the work is
    // then never run, unless it had begun.
    void Run(const std::function<void()>& work, std::chrono::milliseconds timeout);

    // Waits until the thread has handled every message posted to it so far, or until `orElse`
    // holds. Throws DriverFailure when neither happens within `timeout`.
    void Settle(std::chrono::milliseconds timeout, const std::function<bool()>& orElse);

private:
    struct Work {
        std::function<void()> function;
        std::exception_ptr error;
    };

    static LRESULT CALLBACK WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    LRESULT RunWork(WPARAM nTicket);

    DWORD m_dwThreadId;
    HWND m_hWnd = nullptr;
    std::mutex m_mutex;
    WPARAM m_nLastTicket = 0;
    std::map<WPARAM, Work*> m_waiting;
    std::atomic<WPARAM> m_nSettled = 0;
};

}  // namespace mvp::test
