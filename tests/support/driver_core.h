// What a driver and the dialogs it hands out share: the thread they drive, the deadline, the
// windows in hand. Internal to the support library.
#pragma once

#include <windows.h>

#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "support/dialog.h"
#include "support/ui_thread.h"

namespace mvp::test {

class DriverCore {
public:
    explicit DriverCore(std::chrono::milliseconds deadline) : m_deadline(deadline) {}

    UiThread& Ui() { return m_ui; }
    std::chrono::milliseconds Deadline() const { return m_deadline; }

    // Sends within the deadline; throws DriverFailure when there is no answer.
    LRESULT Send(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) const;

    // Waits for a matching dialog that is not yet in hand, initialised and ready for input.
    Dialog WaitForDialog(const DialogMatch& match);
    void WaitGone(HWND hWnd);
    void LeaveOpen(HWND hWnd) { m_leftOpen.insert(hWnd); }
    bool IsLeftOpen(HWND hWnd) const { return m_leftOpen.contains(hWnd); }

    // The dialogs that are open and were not left so on purpose.
    std::vector<HWND> OpenDialogs() const;
    // Every visible top-level window of the thread, for failure texts.
    std::string DescribeWindows() const;

private:
    HWND FindDialog(const DialogMatch& match) const;

    UiThread m_ui;
    std::chrono::milliseconds m_deadline;
    std::set<HWND> m_inHand;
    std::set<HWND> m_leftOpen;
};

}  // namespace mvp::test
