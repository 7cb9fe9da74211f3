// The library as a host has it after loading, in a white-box test program, and what most tests of
// its dialogs stand on.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "common/patched_imports.h"
#include "frame/module.h"
#include "resources/resource_numbers.h"
#include "services/format_text.h"
#include "services/help_topic.h"
#include "services/resource_module.h"
#include "support/dialog_driver.h"
#include "support/log_recorder.h"
#include "support/message_box_recorder.h"
#include "support/registry_hive.h"

namespace mvp::test {

class AttachedLibrary {
public:
    // Speaks a language of the build, such as "fr", or the one beside the tests. The library looks
    // below the current directory, which is the tests' own at first.
    explicit AttachedLibrary(const std::string& strLanguage = {}) {
        if (!strLanguage.empty()) {
            std::filesystem::current_path(m_folder / ".." / "bin" / strLanguage);
        }
        EXPECT_TRUE(AttachLibrary(GetModuleHandleA(nullptr)));
    }
    ~AttachedLibrary() {
        DetachLibrary();
        std::error_code ignored;
        std::filesystem::current_path(m_folder, ignored);
    }

private:
    std::filesystem::path m_folder = std::filesystem::current_path();
};

// Whether the system mirrors the control, in a dialog of the language whose dialogs are mirrored.
inline bool IsMirrored(const Dialog& dialog, int nId) {
    return (GetWindowLongA(dialog.Control(nId), GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0;
}

class LibraryTest : public testing::Test {
protected:
    ~LibraryTest() override { SetHelpViewer(nullptr); }
    // From now on help is not shown; the last file and topic asked for are kept: "v.chm1013".
    void RecordHelp() {
        m_hive.SetString(R"(SOFTWARE\Quillon\Veskara\GlobalConfig)", "VeskaraHelpPath", "v.chm");
        SetHelpViewer(&KeepHelp);
    }
    static HWND WINAPI KeepHelp(HWND, LPCSTR pszFile, UINT, DWORD_PTR nTopic) {
        s_strHelp = pszFile + std::to_string(nTopic);
        return nullptr;
    }

    // The log as one text: "Name{", what it did, "} " for a scope that was left under its name;
    // "level text; " for any other line.
    std::string LogShape() const {
        std::string shape;
        std::vector<std::string> open;
        for (const auto& [tag, level, text] : m_log.Lines()) {
            if (level == 8) {
                open.push_back(text);
                shape += text + "{";
            } else if (level == 16 && !open.empty() && open.back() == text) {
                open.pop_back();
                shape += "} ";
            } else {
                shape += std::to_string(level) + " " + text + "; ";
            }
        }
        return shape;
    }

    static inline std::string s_strHelp;
    AttachedLibrary m_library;
    RegistryHive m_hive;
    LogRecorder m_log;
    MessageBoxRecorder m_boxes;
};

// Opens the dialog once for each script, or once to see that it does not open; the last result.
inline INT_PTR Open(CDialog& dialog, const std::vector<Script>& scripts) {
    const DialogDriver driver(std::chrono::seconds(10), scripts);
    INT_PTR result = dialog.DoModal();
    for (std::size_t i = 1; i < scripts.size(); ++i) {
        result = dialog.DoModal();
    }
    return result;
}

class HostWindow : public CWnd {
public:
    HostWindow() {
        CreateEx(WS_EX_CONTROLPARENT, "STATIC", "host", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 30,
                 40, 900, 500, nullptr, nullptr);
        m_ok.CreateEx(0, "BUTTON", "OK", WS_CHILD | WS_VISIBLE, 5, 5, 90, 30, m_hWnd, nullptr);
    }
    ~HostWindow() override {
        if (m_hWnd != nullptr) {
            DestroyWindow();
        }
    }

    CButton m_ok;
};

// Hands over a window of another thread, which takes messages meanwhile.
inline void WithForeignWindow(const std::function<void(HWND)>& use) {
    std::promise<HWND> made;
    const std::jthread thread([&] {
        const HostWindow window;
        made.set_value(window.m_hWnd);
        for (MSG message; GetMessageA(&message, nullptr, 0, 0) > 0;) {
            DispatchMessageA(&message);
        }
    });
    const HWND window = made.get_future().get();
    const DWORD threadId = GetWindowThreadProcessId(window, nullptr);
    use(window);
    PostThreadMessageA(threadId, WM_QUIT, 0, 0);
}

// The card leaves, and whoever watches has been told.
inline void RemoveCard(const char* pszReader = "Reader A") {
    EXPECT_EQ(VKRaiseEvent(VKEVENT_CARD_REMOVED, pszReader), VKEVTSUB_OK);
    EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
}

// Takes the suite's notices, each of which the log tells of.
class TrayWindow : public CWnd {
public:
    TrayWindow() {
        WNDCLASSA info{};
        info.lpfnWndProc = &::DefWindowProcA;
        info.lpszClassName = "VkTrayHandlerClass";
        RegisterClassA(&info);  // kept; a repetition is refused
        CreateEx(0, info.lpszClassName, "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr);
    }
    ~TrayWindow() override { DestroyWindow(); }
};

// The program has no memory for another `Object` while one of these lives.
template <class Object>
class NoMemoryFor {
    static void* Malloc(std::size_t cb) {
        return cb != sizeof(Object) ? std::calloc(1, cb) : nullptr;
    }
    const PatchedImports m_heap{nullptr, {{"malloc", Address(&Malloc)}}};
};

// In the place of the system's function: keeps what it was told, "64Title!Text" with an owner.
inline std::string g_strBox;
inline int WINAPI TakeBox(HWND hOwner, LPCSTR pszText, LPCSTR pszCaption, UINT nType) {
    g_strBox = std::to_string(nType) + pszCaption + (hOwner != nullptr ? "!" : "?") + pszText;
    return IDOK;
}

// A dialog over a template that lacks a control; 0: whose resource module goes while it opens.
template <class Base>
class Incomplete : public Base {
public:
    template <class... Args>
    explicit Incomplete(int nMissing, Args... args) : Base(args...), m_nMissing(nMissing) {}

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        ::DestroyWindow(::GetDlgItem(this->m_hWnd, m_nMissing));
        if (m_nMissing == 0) {
            FreeResourceModule();
        }
        Base::DoDataExchange(pDX);
    }

private:
    int m_nMissing;
};

inline std::string TextOf(UINT nString) {
    return ResourceString(nString).GetString();
}

inline std::string Filled(UINT nFormat, const char* pszText) {
    return FormatResourceText(nFormat, pszText).GetString();
}

inline CRect RectIn(HWND hParent, HWND hWnd) {
    CRect rect;
    GetWindowRect(hWnd, &rect);
    MapWindowPoints(nullptr, hParent, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

// The calling thread's view of the keyboard: nothing but Caps Lock.
inline void SetCapsLock(bool bToggled, bool bHeld = false) {
    BYTE keys[256] = {};
    keys[VK_CAPITAL] = static_cast<BYTE>((bToggled ? 0x01 : 0) | (bHeld ? 0x80 : 0));
    SetKeyboardState(keys);
}

// The system whose edits do not warn of Caps Lock, in the place of GetVersionExA.
inline BOOL WINAPI TellOldSystem(OSVERSIONINFOA* pVersion) {
    pVersion->dwPlatformId = VER_PLATFORM_WIN32_NT;
    pVersion->dwMajorVersion = 5;
    pVersion->dwMinorVersion = 0;
    return TRUE;
}

// On that system: the balloon by which the edit that has the focus warns of Caps Lock.
inline HWND WarnOfCapsLock(Dialog& d) {
    d.Run([&] {
        SetCapsLock(true);
        d.Send(d.FocusedId(), WM_KEYUP, VK_CAPITAL);
    });
    HWND balloon = nullptr;
    d.WaitUntil("the warning shows", [&] {
        do {
            balloon = FindWindowExA(nullptr, balloon, TOOLTIPS_CLASSA, nullptr);
        } while (balloon != nullptr && IsWindowVisible(balloon) == FALSE);
        return balloon != nullptr;
    });
    return balloon;
}

inline HICON IconOf(HWND hControl) {
    return reinterpret_cast<HICON>(SendMessageA(hControl, STM_GETICON, 0, 0));
}

inline HICON SmallIconOf(HWND hWnd) {
    return reinterpret_cast<HICON>(SendMessageA(hWnd, WM_GETICON, ICON_SMALL, 0));
}

inline bool IsTopMost(HWND hWnd) {
    return (GetWindowLongA(hWnd, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0;
}

inline LOGFONTA FontOf(HWND hWnd) {
    LOGFONTA font{};
    GetObjectA(reinterpret_cast<HFONT>(SendMessageA(hWnd, WM_GETFONT, 0, 0)), sizeof font, &font);
    return font;
}

// Whether the text is in its dialog's own font in bold.
inline bool IsBold(HWND hControl) {
    const LOGFONTA own = FontOf(GetParent(hControl));
    const LOGFONTA bold = FontOf(hControl);
    return bold.lfWeight == FW_BOLD && bold.lfHeight == own.lfHeight && bold.lfHeight != 0 &&
           std::string(bold.lfFaceName) == own.lfFaceName;
}

}  // namespace mvp::test
