#include "pinhost/owner_window.h"

#include "pinhost/command.h"

namespace pinhost {

OwnerWindow::OwnerWindow() {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
    windowClass.lpszClassName = "pinhost owner";
    RegisterClassA(&windowClass);
    m_hWnd = CreateWindowExA(0, windowClass.lpszClassName, "pinhost",
                             WS_OVERLAPPEDWINDOW | WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT, 640,
                             480, nullptr, nullptr, windowClass.hInstance, nullptr);
    if (m_hWnd == nullptr) {
        throw EnvironmentError("no window could be opened");
    }
}

}  // namespace pinhost
