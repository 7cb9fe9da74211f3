#include "suite/vkerrmes/vkerrmes.h"

#include <windows.h>

#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <thread>

#include "real_module.h"

namespace {

// A message box as it stands on the screen.
struct Box {
    std::string caption;
    std::string text;
    HICON hIcon = nullptr;
    std::set<int> buttons;
    int nDefaultButton = 0;
    HWND hOwner = nullptr;
    bool bForeground = false;
};

std::string TextOf(HWND hWnd) {
    std::string text(8192, '\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextA(hWnd, text.data(), static_cast<int>(text.size()))));
    return text;
}

BOOL CALLBACK ReadChild(HWND hChild, LPARAM param) {
    Box& box = *reinterpret_cast<Box*>(param);
    char name[32] = {};
    GetClassNameA(hChild, name, sizeof(name));
    const LONG_PTR nStyle = GetWindowLongPtrA(hChild, GWL_STYLE);
    if (lstrcmpiA(name, "Button") == 0)
        box.buttons.insert(GetDlgCtrlID(hChild));
    else if ((nStyle & SS_TYPEMASK) == SS_ICON)
        box.hIcon = reinterpret_cast<HICON>(SendMessageA(hChild, STM_GETICON, 0, 0));
    else
        box.text = TextOf(hChild);
    return TRUE;
}

BOOL CALLBACK FindBox(HWND hWnd, LPARAM param) {
    char name[32] = {};
    GetClassNameA(hWnd, name, sizeof(name));
    if (lstrcmpA(name, "#32770") != 0 || !IsWindowVisible(hWnd))
        return TRUE;
    *reinterpret_cast<HWND*>(param) = hWnd;
    return FALSE;
}

constexpr int kEnterKey = -1;

// Waits for the box of `nThread`, reads it, and presses `nButton` (or the Enter key).
Box AnswerBox(DWORD nThread, int nButton) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    HWND hBox = nullptr;
    while (hBox == nullptr && std::chrono::steady_clock::now() < deadline) {
        EnumThreadWindows(nThread, FindBox, reinterpret_cast<LPARAM>(&hBox));
        Sleep(5);
    }
    if (hBox == nullptr) {
        ADD_FAILURE() << "no message box";
        return {};
    }
    SendMessageA(hBox, WM_NULL, 0, 0);  // back when its initialisation is over
    Box box;
    box.caption = TextOf(hBox);
    EnumChildWindows(hBox, ReadChild, reinterpret_cast<LPARAM>(&box));
    box.hOwner = GetWindow(hBox, GW_OWNER);
    box.bForeground = GetForegroundWindow() == hBox;
    GUITHREADINFO thread = {};
    thread.cbSize = sizeof(thread);
    GetGUIThreadInfo(nThread, &thread);
    box.nDefaultButton = GetDlgCtrlID(thread.hwndFocus);
    if (nButton == kEnterKey)
        PostMessageA(thread.hwndFocus, WM_KEYDOWN, VK_RETURN, 0);
    else
        PostMessageA(hBox, WM_COMMAND, static_cast<WPARAM>(nButton), 0);
    return box;
}

class VkErrMes : public testing::Test {
protected:
    // What `show`, which opens a box, returned when `nButton` was pressed in it.
    int Run(const std::function<int()>& show, int nButton) {
        const DWORD nThread = GetCurrentThreadId();
        std::thread user([&] { m_box = AnswerBox(nThread, nButton); });
        const int nResult = show();
        user.join();
        return nResult;
    }

    CRealModule m_module{"vkerrmes"};
    decltype(VKErrMesDisplayEx)* m_pDisplay =
        m_module.Get<decltype(VKErrMesDisplayEx)>("VKErrMesDisplayEx");
    decltype(VKErrMesDisplayExWithParentParamAndReader)* m_pDisplayWithParent =
        m_module.Get<decltype(VKErrMesDisplayExWithParentParamAndReader)>(
            "VKErrMesDisplayExWithParentParamAndReader");
    Box m_box;
};

using Buttons = std::set<int>;

TEST_F(VkErrMes, TheNoticeHasAWarningIconAndOkAlone) {
    EXPECT_EQ(Run([&] { return m_pDisplay(-1, "The code is wrong", 0, 0, 0); }, kEnterKey), 1);
    EXPECT_EQ(m_box.caption, "Veskara");
    EXPECT_EQ(m_box.text, "The code is wrong");
    EXPECT_EQ(m_box.hIcon, LoadIconA(nullptr, IDI_WARNING));
    EXPECT_EQ(m_box.buttons.size(), 1U);
    EXPECT_EQ(m_box.hOwner, nullptr);
    EXPECT_TRUE(m_box.bForeground);
}

TEST_F(VkErrMes, TheWarningCanBeDeclined) {
    const auto warn = [&] {
        return m_pDisplayWithParent(nullptr, -1, "Last try", 0, 0, 0, nullptr, "Reader A");
    };
    EXPECT_EQ(Run(warn, IDOK), 1);
    EXPECT_EQ(Run(warn, IDCANCEL), 0);
    EXPECT_EQ(Run(warn, kEnterKey), 0) << "Enter must not accept it";
    EXPECT_EQ(m_box.caption, "Veskara - Reader A");
    EXPECT_EQ(m_box.text, "Last try");
    EXPECT_EQ(m_box.hIcon, LoadIconA(nullptr, IDI_WARNING));
    EXPECT_EQ(m_box.buttons, (Buttons{IDOK, IDCANCEL}));
    EXPECT_EQ(m_box.nDefaultButton, IDCANCEL);
    EXPECT_TRUE(m_box.bForeground);
}

TEST_F(VkErrMes, ButtonsIconAndFlagsCanBeChosen) {
    const struct {
        UINT nButtons, nIcon, nFlags;
        Buttons buttons;
        LPCSTR pszIcon;
        int nDefault, nPress, nResult;
    } cases[] = {
        {MB_YESNO, MB_ICONQUESTION, 0, {IDYES, IDNO}, IDI_QUESTION, IDYES, IDYES, 1},
        {MB_YESNO, MB_ICONERROR, MB_DEFBUTTON2, {IDYES, IDNO}, IDI_ERROR, IDNO, IDNO, 0},
        {MB_OKCANCEL, MB_ICONINFORMATION, 0, {IDOK, IDCANCEL}, IDI_INFORMATION, IDOK, IDOK, 1},
        {MB_RETRYCANCEL, 0, 0, {IDRETRY, IDCANCEL}, IDI_WARNING, IDRETRY, IDRETRY, 0},
        // Values that are none: the defaults.
        {77, 0x70, MB_SERVICE_NOTIFICATION, {IDOK, IDCANCEL}, IDI_WARNING, IDCANCEL, IDOK, 1},
    };
    for (const auto& each : cases) {
        const int nResult = Run(
            [&] {
                return m_pDisplayWithParent(nullptr, 5, "text", each.nButtons, each.nIcon,
                                            each.nFlags, nullptr, "");
            },
            each.nPress);
        EXPECT_EQ(nResult, each.nResult);
        EXPECT_EQ(m_box.buttons, each.buttons);
        EXPECT_EQ(m_box.hIcon, LoadIconA(nullptr, each.pszIcon));
        EXPECT_EQ(m_box.nDefaultButton, each.nDefault);
        EXPECT_EQ(m_box.caption, "Veskara");
    }
}

TEST_F(VkErrMes, StandsOverItsParentAndOutlivesAMissingOne) {
    const HWND hParent = CreateWindowA("STATIC", "parent", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200,
                                       nullptr, nullptr, nullptr, nullptr);
    const auto warn = [&] {
        return m_pDisplayWithParent(hParent, -1, "text", 0, 0, 0, nullptr, nullptr);
    };
    EXPECT_EQ(Run(warn, IDOK), 1);
    EXPECT_EQ(m_box.hOwner, hParent);
    EXPECT_TRUE(IsWindowEnabled(hParent));

    DestroyWindow(hParent);
    EXPECT_EQ(Run(warn, IDOK), 1);
    EXPECT_EQ(m_box.hOwner, nullptr);
}

TEST_F(VkErrMes, TextsAreBoundedAndMayBeNull) {
    const std::string huge(100000, 'w');
    Run(
        [&] {
            return m_pDisplayWithParent(nullptr, -1, huge.c_str(), 0, 0, 0, nullptr, huge.c_str());
        },
        IDCANCEL);
    EXPECT_EQ(m_box.text, huge.substr(0, VKERRMES_TEXT_MAX));
    EXPECT_LT(m_box.caption.size(), 300U);
    EXPECT_EQ(Run([&] { return m_pDisplay(-1, nullptr, 0, 0, 0); }, IDOK), 1);
    EXPECT_EQ(m_box.text, "");
}

}  // namespace
