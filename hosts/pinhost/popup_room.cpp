#include "pinhost/popup_room.h"

#include <utility>

#include "pinhost/command.h"
#include "pinhost/ending.h"
#include "platform/barrier.h"

namespace pinhost {
namespace {

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

void OwnConfiguration::Set(const mvp::NumberSetting& setting, DWORD dwValue) {
    Set(setting, REG_DWORD, {reinterpret_cast<const char*>(&dwValue), sizeof dwValue});
}

void OwnConfiguration::Set(const mvp::TextSetting& setting, const std::string& strValue) {
    Set(setting, REG_SZ, strValue + '\0');
}

void OwnConfiguration::Set(const mvp::SettingName& setting, DWORD dwType,
                           const std::string& strBytes) {
    const std::string name = setting.pszName;
    std::wstring text;
    const void* data = strBytes.data();
    std::size_t size = strBytes.size();
    if (dwType == REG_SZ || dwType == REG_EXPAND_SZ || dwType == REG_MULTI_SZ) {
        // The registry keeps texts as 16-bit characters, and takes along a terminator that it finds
        // behind the given ones: there must be none.
        text.resize(size);
        text.resize(static_cast<std::size_t>(
            MultiByteToWideChar(CP_ACP, 0, strBytes.data(), static_cast<int>(size), text.data(),
                                static_cast<int>(size))));
        size = text.size() * sizeof(wchar_t);
        text.push_back(L'#');
        data = text.data();
    }
    Check(RegSetValueExW(MakeKey(m_root.get(), setting.pszKey).get(),
                         std::wstring(name.begin(), name.end()).c_str(), 0, dwType,
                         static_cast<const BYTE*>(data), static_cast<DWORD>(size)),
          setting.pszName);
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
