// What a notice finds around it, for as long as one runs: a configuration, a taskbar, and windows
// that it tells things to. All of it is gone afterwards, also when something has failed.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "platform/handle.h"
#include "settings/setting.h"

namespace pinhost {

// A machine-wide configuration of the process's own, empty at first. Nothing of the real one is
// seen while it lives, and nothing of it is changed. One within another hides that one. Throws
// EnvironmentError.
class OwnConfiguration {
public:
    OwnConfiguration();
    OwnConfiguration(const OwnConfiguration&) = delete;
    OwnConfiguration& operator=(const OwnConfiguration&) = delete;
    ~OwnConfiguration();

    // Texts are ANSI.
    void Set(const mvp::NumberSetting& setting, DWORD dwValue);
    void Set(const mvp::TextSetting& setting, const std::string& strValue);
    // Of any of the registry's types and any bytes; a text need not end with its terminator.
    void Set(const mvp::SettingName& setting, DWORD dwType, const std::string& strBytes);

private:
    static inline OwnConfiguration* s_pInnermost = nullptr;

    OwnConfiguration* m_pOuter = s_pInnermost;
    std::string m_strRoot;  // below HKEY_CURRENT_USER
    mvp::RegistryKey m_root;
};

// A taskbar at one side of the screen: the work area ends there, and a plain bar stands in its
// place. Throws EnvironmentError.
class Taskbar {
public:
    explicit Taskbar(const std::string& strSide);  // top, left, right or bottom
    Taskbar(const Taskbar&) = delete;
    Taskbar& operator=(const Taskbar&) = delete;
    ~Taskbar();

private:
    RECT m_before{};
    HWND m_hBar = nullptr;
};

// An invisible top-level window that hears what is posted to it.
class Listener {
public:
    using Heard = std::function<void(UINT nMessage, WPARAM wParam)>;

    // Throws EnvironmentError. `heard` is called on the thread that makes the listener.
    Listener(const char* pszTitle, Heard heard);
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() { DestroyWindow(m_hWnd); }

    HWND Handle() const { return m_hWnd; }

private:
    static LRESULT CALLBACK Procedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

    Heard m_heard;
    HWND m_hWnd = nullptr;
};

}  // namespace pinhost
