#include "common/thread_windows.h"

#include <array>

namespace mvp {
namespace {

BOOL CALLBACK CollectVisible(HWND hWnd, LPARAM lParam) {
    if (IsWindowVisible(hWnd)) {
        reinterpret_cast<std::vector<HWND>*>(lParam)->push_back(hWnd);
    }
    return TRUE;
}

}  // namespace

std::vector<HWND> VisibleWindows(DWORD dwThreadId) {
    std::vector<HWND> windows;
    EnumThreadWindows(dwThreadId, CollectVisible, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

HWND FindControl(HWND hWindow, int nId) {
    HWND found = GetDlgItem(hWindow, nId);
    for (HWND child = GetWindow(hWindow, GW_CHILD); found == nullptr && child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        found = FindControl(child, nId);
    }
    return found;
}

std::string ClassOf(HWND hWnd) {
    std::array<char, 256> name = {};
    GetClassNameA(hWnd, name.data(), static_cast<int>(name.size()));
    return name.data();
}

// InternalGetWindowText reads what the system keeps of the caption; GetWindowText would ask the
// window.
std::string TitleOf(HWND hWnd) {
    std::array<wchar_t, 512> wide = {};
    std::array<char, 1024> title = {};
    InternalGetWindowText(hWnd, wide.data(), static_cast<int>(wide.size()));
    WideCharToMultiByte(CP_ACP, 0, wide.data(), -1, title.data(), static_cast<int>(title.size()),
                        nullptr, nullptr);
    return title.data();
}

}  // namespace mvp
