// A process that owns popups, beside the test's own: the test sees them as the rest of the desktop
// does, and the process answers while the test waits.
//
// Constructed and used on one thread, which need not run messages.
#pragma once

#include <windows.h>

#include "mvpingui/popup_alert.h"
#include "support/waiting.h"
#include "ui/support/child_process.h"

namespace mvp::test {

// Takes a popup of whatever process to where it stays, without waiting for its timers.
bool BringIn(HWND hPopup);

class PopupOwner {
public:
    enum Request : UINT { AskShow = WM_APP + 1, AskPassword, AskSeries };
    // Steps of a series: a popup has come to stand, and leaves.
    static constexpr int kArrived = 200;
    static constexpr int kLeaving = 400;
    static constexpr int kOrdinary = -1;

    PopupOwner();
    PopupOwner(const PopupOwner&) = delete;
    PopupOwner& operator=(const PopupOwner&) = delete;
    ~PopupOwner();

    // Makes a popup of the type and shows it; it goes at its own pace. They are numbered: "Notice
    // 1" is the first. For kOrdinary a window that activates itself.
    HWND Show(int nType) const { return reinterpret_cast<HWND>(Ask(AskShow, nType)); }
    void BringPassword() const { Ask(AskPassword, 0); }
    // One popup after the other until the end, each taken through its life as fast as it can be: a
    // short one for most, one in twenty slides in, stays and goes.
    void RunSeries() const { Ask(AskSeries, 0); }

    // What has happened there so far: "shown", "closed", "steps" of a series
    // that the popup has made.
    int Number(const char* pszName) const {
        return static_cast<int>(reinterpret_cast<INT_PTR>(GetPropA(m_hWnd, pszName)));
    }

private:
    LRESULT Ask(UINT message, int nParameter) const;

    DisabledTest m_process;
    HWND m_hWnd = nullptr;
};

}  // namespace mvp::test
