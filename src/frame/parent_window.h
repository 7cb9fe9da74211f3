// A host's window as an object, for the time of a request.
#pragma once

#include <dlgfw/wnd.h>

namespace mvp {

// The framework's own temporary objects live until its next idle moment, which a host without its
// message loop does not have.
class ParentWindow {
public:
    explicit ParentWindow(HWND hWnd) noexcept { m_window.m_hWnd = hWnd; }
    ParentWindow(const ParentWindow&) = delete;
    ParentWindow& operator=(const ParentWindow&) = delete;
    ~ParentWindow() { m_window.m_hWnd = nullptr; }  // the window is the host's

    CWnd* get() const noexcept { return m_window.m_hWnd != nullptr ? &m_window : nullptr; }

private:
    mutable CWnd m_window;
};

}  // namespace mvp
