// A plain window for the library's dialogs to stand over.
#pragma once

#include <windows.h>

namespace pinhost {

class OwnerWindow {
public:
    OwnerWindow();  // throws EnvironmentError
    OwnerWindow(const OwnerWindow&) = delete;
    OwnerWindow& operator=(const OwnerWindow&) = delete;
    ~OwnerWindow() { DestroyWindow(m_hWnd); }

    HWND Handle() const { return m_hWnd; }

private:
    HWND m_hWnd = nullptr;
};

}  // namespace pinhost
