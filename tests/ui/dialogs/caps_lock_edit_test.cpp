// The Caps-Lock warning in both its forms: the edit's own balloon, and the library's words in the
// system's.
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>

#include "dialogs/base/edit_scrubber.h"
#include "mvpingui/caps_lock_sensitive_edit.h"
#include "resources/resource_numbers.h"
#include "services/resource_module.h"
#include "support/waiting.h"
#include "ui/dialogs/attached_library.h"

namespace mvp::test {
namespace {

// The calling thread's view of the Caps-Lock key, put back at the end.
class CapsLock {
public:
    CapsLock() { GetKeyboardState(m_old.data()); }
    CapsLock(const CapsLock&) = delete;
    CapsLock& operator=(const CapsLock&) = delete;
    ~CapsLock() { SetKeyboardState(m_old.data()); }

    void Set(bool bToggled, bool bHeld = false) {
        std::array<BYTE, 256> state = m_old;
        state[VK_CAPITAL] = static_cast<BYTE>((bToggled ? 0x01 : 0) | (bHeld ? 0x80 : 0));
        SetKeyboardState(state.data());
    }

private:
    std::array<BYTE, 256> m_old{};
};

class CTestEdit : public CCapsLockSensitiveEdit {
public:
    explicit CTestEdit(bool bOldSystem) { m_bOldSystem = bOldSystem; }
};

// A window with the edit and another control to give the focus to.
class EditWindow {
public:
    explicit EditWindow(bool bOldSystem, POINT place = {400, 400}) : m_edit(bOldSystem) {
        m_parent.CreateEx(0, "STATIC", "host", WS_POPUP | WS_VISIBLE, place.x, place.y, 200, 100,
                          nullptr, nullptr);
        m_other.Create("EDIT", "", WS_CHILD | WS_VISIBLE, CRect(0, 40, 100, 60), &m_parent, 2);
        const HWND hEdit = CreateWindowExA(0, "EDIT", "", WS_CHILD | WS_VISIBLE | ES_PASSWORD, 0, 0,
                                           100, 20, m_parent.m_hWnd, nullptr, nullptr, nullptr);
        m_edit.SubclassWindow(hEdit);
        m_parent.SetForegroundWindow();
        m_other.SetFocus();
    }
    EditWindow(const EditWindow&) = delete;
    EditWindow& operator=(const EditWindow&) = delete;
    ~EditWindow() { m_parent.DestroyWindow(); }

    CTestEdit& Edit() { return m_edit; }
    CWnd& Other() { return m_other; }
    void Release(UINT nKey) { m_edit.SendMessage(WM_KEYUP, nKey, 0); }
    HWND Balloon() const {
        HWND hFound = nullptr;
        for (HWND h = nullptr;
             (h = FindWindowExA(nullptr, h, TOOLTIPS_CLASSA, nullptr)) != nullptr;)
            if (GetWindow(h, GW_OWNER) == m_edit.m_hWnd ||
                GetWindow(h, GW_OWNER) == m_parent.m_hWnd)
                hFound = h;
        return hFound;
    }
    bool IsBalloonUp() const { return Balloon() != nullptr && IsWindowVisible(Balloon()); }
    // The balloon pops up by a timer: runs this thread's messages until it has.
    bool ComesUp() const {
        return WaitFor(std::chrono::seconds(10), [this] {
            MSG message;
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageA(&message);
            return IsBalloonUp();
        });
    }

private:
    CWnd m_parent;
    CWnd m_other;
    CTestEdit m_edit;
};

std::string Narrow(const wchar_t* pszText) {
    std::array<char, 1040> narrow{};
    WideCharToMultiByte(CP_ACP, 0, pszText, -1, narrow.data(), static_cast<int>(narrow.size()),
                        nullptr, nullptr);
    return narrow.data();
}

// What the balloon says, as its owner tells it.
std::string TextOf(HWND hBalloon, HWND hEdit, UINT_PTR uId) {
    // The 8-bit request gives the first 80 characters only.
    std::array<wchar_t, 1040> text{};
    TOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.hwnd = hEdit;
    tool.uId = uId;
    tool.lpszText = text.data();
    SendMessageW(hBalloon, TTM_GETTEXTW, text.size(), reinterpret_cast<LPARAM>(&tool));
    return Narrow(text.data());
}

// Sees the titles that this thread gives to balloons; they cannot be asked for everywhere.
class TitleWatch {
public:
    TitleWatch()
        : m_hHook(SetWindowsHookExA(WH_CALLWNDPROC, &TitleWatch::OnCall, nullptr,
                                    GetCurrentThreadId())) {}
    TitleWatch(const TitleWatch&) = delete;
    TitleWatch& operator=(const TitleWatch&) = delete;
    ~TitleWatch() { UnhookWindowsHookEx(m_hHook); }

    static inline std::string strTitle;
    static inline WPARAM nIcon = 0;

private:
    static LRESULT CALLBACK OnCall(int nCode, WPARAM wParam, LPARAM lParam) {
        const auto& call = *reinterpret_cast<const CWPSTRUCT*>(lParam);
        if (nCode == HC_ACTION && call.message == TTM_SETTITLEW) {
            strTitle = Narrow(reinterpret_cast<const wchar_t*>(call.lParam));
            nIcon = call.wParam;
        }
        return CallNextHookEx(nullptr, nCode, wParam, lParam);
    }
    HHOOK m_hHook;
};

std::string Resource(UINT nId) {
    return {ResourceString(nId)};
}

class OwnBalloon : public testing::Test {
protected:
    AttachedLibrary m_library;
    CapsLock m_capsLock;
};

TEST_F(OwnBalloon, FollowsFocusAndKey) {
    EditWindow window(true);
    m_capsLock.Set(false);
    window.Edit().SetFocus();
    EXPECT_EQ(window.Balloon(), nullptr);
    m_capsLock.Set(true, true);
    window.Release(VK_CAPITAL);
    EXPECT_FALSE(window.IsBalloonUp()) << "the key is still held down";
    m_capsLock.Set(true);
    window.Release(VK_CAPITAL);
    EXPECT_TRUE(window.ComesUp());
    window.Other().SetFocus();
    EXPECT_FALSE(window.IsBalloonUp());
    window.Edit().SetFocus();
    EXPECT_TRUE(window.ComesUp()) << "on when the edit gains the focus";
    m_capsLock.Set(false);
    window.Release(VK_CAPITAL);
    EXPECT_FALSE(window.IsBalloonUp());
}

TEST_F(OwnBalloon, OnlyTypingTakesItDown) {
    EditWindow window(true);
    m_capsLock.Set(true);
    window.Edit().SetFocus();
    for (const UINT key : {UINT{VK_SHIFT}, UINT{VK_TAB}, UINT{VK_BACK}}) {
        window.Release(key);
        EXPECT_TRUE(window.ComesUp()) << key;
    }
    window.Release('A');
    EXPECT_FALSE(window.IsBalloonUp());
    window.Release(VK_CAPITAL);
    EXPECT_TRUE(window.ComesUp());
    window.Edit().ResetToolTip();
    EXPECT_FALSE(window.IsBalloonUp());
}

// The words of the edit's own balloon are these, under a title with the warning icon.
void ExpectWords(bool bPin, const std::string& strTitle, const std::string& strText) {
    const TitleWatch titles;
    EditWindow window(true);
    window.Edit().SetMode(bPin);
    window.Edit().SetFocus();
    ASSERT_TRUE(window.ComesUp());
    EXPECT_EQ(TextOf(window.Balloon(), window.Edit().m_hWnd, 0), strText);
    EXPECT_EQ(TitleWatch::strTitle, strTitle);
    EXPECT_EQ(TitleWatch::nIcon, WPARAM{2});
}

TEST_F(OwnBalloon, SpeaksOfPinOrPassword) {
    m_capsLock.Set(true);
    for (const bool pin : {true, false})
        ExpectWords(pin, Resource(IDS_CAPS_LOCK_TITLE),
                    Resource(pin ? IDS_CAPS_LOCK_PIN : IDS_CAPS_LOCK_PASSWORD));
}

TEST_F(OwnBalloon, StandsByTheEditAndOnTheScreen) {
    const int width = GetSystemMetrics(SM_CXSCREEN);
    struct Case {
        POINT place;
        bool bBelow;
        bool bAtRightEdge;
    };
    for (const Case& c : {Case{{400, 400}, false, false},
                          {{400, 0}, true, false},
                          {{width - 60, 400}, false, true}}) {
        EditWindow window(true, c.place);
        m_capsLock.Set(true);
        window.Edit().SetFocus();
        ASSERT_TRUE(window.ComesUp());
        CRect edit;
        CRect balloon;
        window.Edit().GetWindowRect(&edit);
        GetWindowRect(window.Balloon(), &balloon);
        EXPECT_EQ(balloon.top, c.bBelow ? edit.bottom - 8 : edit.top - balloon.Height() + 4);
        EXPECT_EQ(balloon.left, c.bAtRightEdge ? width - balloon.Width() : edit.left);
    }
}

TEST_F(OwnBalloon, PointerNeitherDismissesNorMovesIt) {
    EditWindow window(true);
    m_capsLock.Set(true);
    window.Edit().SetFocus();
    ASSERT_TRUE(window.ComesUp());
    EXPECT_EQ(SendMessageA(window.Balloon(), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3)), 0);
    EXPECT_TRUE(window.ComesUp());
    POINT point = {0, 0};
    SendMessageA(window.Balloon(), TTM_WINDOWFROMPOINT, 0, reinterpret_cast<LPARAM>(&point));
    CRect edit;
    window.Edit().GetWindowRect(&edit);
    EXPECT_EQ(point.x, edit.left + 5);
    EXPECT_EQ(point.y, edit.top + 5);
}

TEST_F(OwnBalloon, GoesWithTheEdit) {
    HWND hBalloon = nullptr;
    m_capsLock.Set(true);
    {
        EditWindow window(true);
        window.Edit().SetFocus();
        hBalloon = window.Balloon();
        ASSERT_NE(hBalloon, nullptr);
    }
    EXPECT_FALSE(IsWindow(hBalloon));
}

TEST_F(OwnBalloon, IsNotMadeOnNewerSystems) {
    EditWindow window(false);
    m_capsLock.Set(true);
    window.Edit().SetFocus();
    window.Release(VK_CAPITAL);
    EXPECT_EQ(window.Balloon(), nullptr);
}

// A tool-tip such as the system's edit makes: it belongs to the edit and tells it what it does.
class SystemBalloon {
public:
    SystemBalloon(HWND hEdit, const std::string& strText)
        : m_hWnd(CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                                 WS_POPUP | TTS_NOPREFIX | TTS_BALLOON, 0, 0, 0, 0, hEdit, nullptr,
                                 nullptr, nullptr)),
          m_strText(strText) {
        m_tool.cbSize = TTTOOLINFOA_V1_SIZE;
        m_tool.uFlags = TTF_TRACK;
        m_tool.hwnd = hEdit;
        m_tool.uId = 7;
        m_tool.lpszText = m_strText.data();
        SendMessageA(m_hWnd, TTM_SETMAXTIPWIDTH, 0, 300);
        SendMessageA(m_hWnd, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&m_tool));
    }
    SystemBalloon(const SystemBalloon&) = delete;
    SystemBalloon& operator=(const SystemBalloon&) = delete;
    ~SystemBalloon() { DestroyWindow(m_hWnd); }
    void Show() {
        SendMessageA(m_hWnd, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&m_tool));
    }
    std::string Text() const { return TextOf(m_hWnd, m_tool.hwnd, m_tool.uId); }

private:
    HWND m_hWnd;
    std::string m_strText;
    TOOLINFOA m_tool{};
};

TEST(SystemsBalloon, GetsTheLibrarysWords) {
    const AttachedLibrary library;
    const std::string begin = Resource(IDS_CAPS_LOCK_SYSTEM_BEGIN);
    ASSERT_FALSE(begin.empty());
    for (const bool pin : {true, false}) {
        EditWindow window(false);
        window.Edit().SetMode(pin);
        SystemBalloon balloon(window.Edit().m_hWnd, begin + "\r\n\r\nAnd so on.");
        balloon.Show();
        EXPECT_EQ(balloon.Text(), Resource(pin ? IDS_CAPS_LOCK_PIN : IDS_CAPS_LOCK_PASSWORD));
    }
}

TEST(SystemsBalloon, KeepsOtherWords) {
    for (const bool module : {true, false}) {
        // Without the module the beginning of the system's warning is not known.
        std::unique_ptr<AttachedLibrary> pLibrary;
        if (module)
            pLibrary = std::make_unique<AttachedLibrary>();
        EditWindow window(false);
        SystemBalloon balloon(window.Edit().m_hWnd, "You can only type a number here.");
        balloon.Show();
        EXPECT_EQ(balloon.Text(), "You can only type a number here.");
    }
}

// The answer to a balloon that asks for its text, which it keeps and takes from nowhere else.
template <class Info>
void ExpectWholeAnswer(CWnd& edit, UINT nCode) {
    Info info{};
    info.hdr = {edit.m_hWnd, 7, nCode};
    info.hinst = GetModuleHandleA(nullptr);
    info.lParam = 5;
    edit.SendMessage(WM_NOTIFY, 7, reinterpret_cast<LPARAM>(&info));
    EXPECT_EQ(info.uFlags, UINT{0x8000});
    EXPECT_EQ(info.hinst, nullptr);
    EXPECT_EQ(info.lParam, 0);
    EXPECT_NE(info.lpszText, nullptr);
}

TEST(SystemsBalloon, IsToldToKeepTheText) {
    EditWindow window(false);
    ExpectWholeAnswer<NMTTDISPINFOA>(window.Edit(), TTN_GETDISPINFOA);
    ExpectWholeAnswer<NMTTDISPINFOW>(window.Edit(), TTN_GETDISPINFOW);
}

TEST(WithoutModule, BuiltInWordsAreUsed) {
    ASSERT_EQ(ResourceModule(), nullptr);
    CapsLock capsLock;
    capsLock.Set(true);
    ExpectWords(true, "Caps Lock is On",
                "Having Caps Lock on may cause you to enter your PIN incorrectly.\r\n\r\n"
                "You should press Caps Lock to turn it off before entering your PIN.");
    ExpectWords(false, "Caps Lock is On",
                "Having Caps Lock on may cause you to enter your password incorrectly.\r\n\r\n"
                "You should press Caps Lock to turn it off before entering your password.");
}

}  // namespace
}  // namespace mvp::test
