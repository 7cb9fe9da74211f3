#include "pinhost/popup_room.h"

#include <utility>

#include "pinhost/command.h"
#include "pinhost/ending.h"
#include "platform/barrier.h"

namespace pinhost {
namespace {

constexpr char kSuiteKey[] = R"(SOFTWARE\Quillon\Veskara\)";
constexpr int kBarThickness = 40;
constexpr COLORREF kBarColour = RGB(0x3A, 0x42, 0x4A);

void Check(LSTATUS nStatus, const char* pszWhat) {
    if (nStatus != ERROR_SUCCESS) {
        throw EnvironmentError(std::string(pszWhat) + " failed, error " + std::to_string(nStatus));
    }
}

mvp::RegistryKey MakeKey(HKEY hParent, const std::string& strPath) {
    mvp::RegistryKey key;
    Check(RegCreateKeyExA(hParent, strPath.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                          nullptr, key.put(), nullptr),
          "making a configuration");
    return key;
}

RECT WorkArea() {
    RECT work{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    return work;
}

// The programs that are open learn of it.
bool SetWorkArea(RECT work) {
    return SystemParametersInfoA(SPI_SETWORKAREA, 0, &work, SPIF_SENDCHANGE) != FALSE;
}

}  // namespace

OwnConfiguration::OwnConfiguration()
    : m_strRoot(m_pOuter != nullptr ? m_pOuter->m_strRoot + "Within"
                                    : "Software\\PinHost" + std::to_string(GetCurrentProcessId())) {
    // What a crashed run with this process number may have left.
    RegDeleteTreeA(HKEY_CURRENT_USER, m_strRoot.c_str());
    m_root = MakeKey(HKEY_CURRENT_USER, m_strRoot);
    Check(RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_root.get()), "using a configuration");
    s_pInnermost = this;
}

OwnConfiguration::~OwnConfiguration() {
    s_pInnermost = m_pOuter;
    RegOverridePredefKey(HKEY_LOCAL_MACHINE,
                         m_pOuter != nullptr ? m_pOuter->m_root.get() : nullptr);
    m_root.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, m_strRoot.c_str());
}

mvp::RegistryKey OwnConfiguration::Open(const std::string& strKey) {
    return MakeKey(m_root.get(), kSuiteKey + strKey);
}

void OwnConfiguration::Set(const std::string& strKey, const char* pszName, DWORD dwValue) {
    Check(RegSetValueExA(Open(strKey).get(), pszName, 0, REG_DWORD,
                         reinterpret_cast<const BYTE*>(&dwValue), sizeof dwValue),
          pszName);
}

void OwnConfiguration::Set(const std::string& strKey, const char* pszName,
                           const std::string& strValue) {
    Check(RegSetValueExA(Open(strKey).get(), pszName, 0, REG_SZ,
                         reinterpret_cast<const BYTE*>(strValue.c_str()),
                         static_cast<DWORD>(strValue.size() + 1)),
          pszName);
}

Taskbar::Taskbar(const std::string& strSide) : m_before(WorkArea()) {
    RECT work{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    RECT bar = work;
    if (strSide == "top") {
        work.top = bar.bottom = kBarThickness;
    } else if (strSide == "left") {
        work.left = bar.right = kBarThickness;
    } else if (strSide == "right") {
        work.right = bar.left = bar.right - kBarThickness;
    } else {
        work.bottom = bar.top = bar.bottom - kBarThickness;
    }
    const HINSTANCE instance = GetModuleHandleA(nullptr);
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hInstance = instance;
    // The class's from here on.
    windowClass.hbrBackground = CreateSolidBrush(kBarColour);
    windowClass.lpszClassName = "pinhost taskbar";
    RegisterClassA(&windowClass);
    m_hBar = CreateWindowExA(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE,
                             windowClass.lpszClassName, "", WS_POPUP, bar.left, bar.top,
                             bar.right - bar.left, bar.bottom - bar.top, nullptr, nullptr, instance,
                             nullptr);
    if (m_hBar == nullptr || !SetWorkArea(work)) {
        DestroyWindow(m_hBar);
        throw EnvironmentError("no taskbar, error " + std::to_string(GetLastError()));
    }
    ShowWindow(m_hBar, SW_SHOWNOACTIVATE);
    UpdateWindow(m_hBar);
}

Taskbar::~Taskbar() {
    DestroyWindow(m_hBar);
    SetWorkArea(m_before);
}

Listener::Listener(const char* pszTitle, Heard heard) : m_heard(std::move(heard)) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = &Listener::Procedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "pinhost listener";
    RegisterClassA(&windowClass);
    m_hWnd = CreateWindowExA(0, windowClass.lpszClassName, pszTitle, WS_POPUP, 0, 0, 0, 0, nullptr,
                             nullptr, windowClass.hInstance, nullptr);
    if (m_hWnd == nullptr) {
        throw EnvironmentError("no window could be opened");
    }
    SetWindowLongPtrA(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

LRESULT CALLBACK Listener::Procedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    auto* listener = reinterpret_cast<Listener*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
    if (listener != nullptr && nMessage >= WM_USER) {
        mvp::Guarded([&] { listener->m_heard(nMessage, wParam); },
                     [] { EndNow("what the notice told was lost"); });
        return 0;
    }
    return DefWindowProcA(hWnd, nMessage, wParam, lParam);
}

}  // namespace pinhost
