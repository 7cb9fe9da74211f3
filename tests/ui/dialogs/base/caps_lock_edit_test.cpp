// The Caps-Lock warning in both its forms: the edit's own balloon, and the library's words in the
// system's.
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mvpingui/caps_lock_sensitive_edit.h"
#include "platform/handle.h"
#include "support/waiting.h"
#include "ui/dialogs/enlarged_dialogs.h"

namespace mvp::test {
namespace {

// The edit in a host's window, whose button has the focus.
class TestEdit : public CCapsLockSensitiveEdit {
public:
    explicit TestEdit(bool bOldSystem, POINT place = {400, 400}) {
        m_bOldSystem = bOldSystem;
        constexpr int kLeft = 100;
        m_host.SetWindowPos(nullptr, place.x - kLeft, place.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        SubclassWindow(CreateWindowExA(0, "EDIT", "", WS_CHILD | WS_VISIBLE | ES_PASSWORD, kLeft, 0,
                                       100, 20, m_host.m_hWnd, nullptr, nullptr, nullptr));
        m_host.SetForegroundWindow();
        LeaveIt();
    }
    void LeaveIt() { m_host.m_ok.SetFocus(); }
    void Release(UINT nKey) { SendMessage(WM_KEYUP, nKey, 0); }
    // Red, green and blue of every pixel of the cell of a character, the upper left one first.
    std::vector<COLORREF> Cell(int nCell) {
        UpdateWindow();
        CClientDC device(this);
        const auto at = static_cast<DWORD>(SendMessage(EM_POSFROMCHAR, static_cast<WPARAM>(nCell)));
        std::vector<COLORREF> pixels(size_t{8} * 14);
        for (int i = 0; COLORREF & pixel : pixels) {
            pixel = GetPixel(device, LOWORD(at) + i % 8, HIWORD(at) + i / 8);
            ++i;
        }
        return pixels;
    }
    HWND Balloon() const {
        HWND balloon = nullptr;
        do {
            balloon = FindWindowExA(nullptr, balloon, TOOLTIPS_CLASSA, nullptr);
        } while (balloon != nullptr && GetWindow(balloon, GW_OWNER) != m_host.m_hWnd);
        return balloon;
    }
    bool IsBalloonUp() const { return Balloon() != nullptr && ::IsWindowVisible(Balloon()); }
    // The balloon pops up by a timer: runs this thread's messages until it has.
    bool ComesUp() const {
        return PumpUntil([this] { return IsBalloonUp(); });
    }

private:
    HostWindow m_host;
};

std::string Narrow(const wchar_t* pszText) {
    std::array<char, 1040> narrow{};
    WideCharToMultiByte(CP_ACP, 0, pszText, -1, narrow.data(), static_cast<int>(narrow.size()),
                        nullptr, nullptr);
    return narrow.data();
}

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

// Icon and title that this thread gave to a balloon last; they cannot be asked for everywhere.
std::string g_strTitle;

LRESULT CALLBACK WatchTitles(int nCode, WPARAM wParam, LPARAM lParam) {
    const auto& call = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (nCode == HC_ACTION && call.message == TTM_SETTITLEW) {
        g_strTitle = std::to_string(call.wParam) + " " +
                     Narrow(reinterpret_cast<const wchar_t*>(call.lParam));
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

// The words of the edit's own balloon are these, under a title with the warning icon.
void ExpectWords(bool bPin, const std::string& strTitle, const std::string& strText) {
    HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROC, &WatchTitles, nullptr, GetCurrentThreadId());
    TestEdit edit(true);
    edit.SetMode(bPin);
    SetCapsLock(true);
    edit.SetFocus();
    EXPECT_TRUE(edit.ComesUp());
    UnhookWindowsHookEx(hook);
    EXPECT_EQ(TextOf(edit.Balloon(), edit.m_hWnd, 0), strText);
    EXPECT_EQ(g_strTitle, "2 " + strTitle);
    SetCapsLock(false);
}

class OwnBalloon : public LibraryTest {
protected:
    ~OwnBalloon() override { SetCapsLock(false); }
};

TEST_F(OwnBalloon, FollowsFocusAndKeysAndGoesWithTheEdit) {
    HWND balloon = nullptr;
    {
        TestEdit edit(true);
        edit.SetFocus();
        EXPECT_EQ(edit.Balloon(), nullptr);
        SetCapsLock(true, true);
        edit.Release(VK_CAPITAL);
        EXPECT_EQ(edit.Balloon(), nullptr) << "the key is still held down";
        SetCapsLock(true);
        edit.Release(VK_CAPITAL);
        EXPECT_TRUE(edit.ComesUp());
        edit.LeaveIt();
        EXPECT_FALSE(edit.IsBalloonUp());
        edit.SetFocus();
        EXPECT_TRUE(edit.ComesUp()) << "on when the edit gains the focus";
        edit.Release(VK_SHIFT);
        EXPECT_TRUE(edit.IsBalloonUp());
        edit.Release('A');
        EXPECT_FALSE(edit.IsBalloonUp()) << "only typing takes it down";
        edit.Release(VK_CAPITAL);
        EXPECT_TRUE(edit.ComesUp());
        edit.ResetToolTip();
        EXPECT_FALSE(edit.IsBalloonUp());
        edit.Release(VK_CAPITAL);
        EXPECT_TRUE(edit.ComesUp());
        SetCapsLock(false);
        edit.Release(VK_CAPITAL);
        EXPECT_FALSE(edit.IsBalloonUp());
        balloon = edit.Balloon();
        EXPECT_NE(balloon, nullptr);
    }
    EXPECT_FALSE(IsWindow(balloon));
}

TEST_F(OwnBalloon, StandsByTheEditAndOnTheScreen) {
    const EnlargedDialogs at(150);
    const int width = GetSystemMetrics(SM_CXSCREEN);
    for (const POINT& place : {POINT{400, 0}, {width - 60, 400}}) {
        TestEdit edit(true, place);
        SetCapsLock(true);
        edit.SetFocus();
        ASSERT_TRUE(edit.ComesUp());
        const CRect rect = RectIn(nullptr, edit.m_hWnd);
        const CRect balloon = RectIn(nullptr, edit.Balloon());
        EXPECT_EQ(balloon.top, place.y == 0 ? rect.bottom - 12 : rect.top - balloon.Height() + 6);
        EXPECT_EQ(SendMessageA(edit.Balloon(), TTM_GETMAXTIPWIDTH, 0, 0), 450);
        EXPECT_EQ(balloon.left, place.x == 400 ? rect.left : width - balloon.Width());
        // The pointer neither dismisses nor moves it.
        EXPECT_EQ(SendMessageA(edit.Balloon(), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3)), 0);
        EXPECT_TRUE(edit.ComesUp());
        CPoint point(0, 0);
        SendMessageA(edit.Balloon(), TTM_WINDOWFROMPOINT, 0, reinterpret_cast<LPARAM>(&point));
        EXPECT_EQ(point, CPoint(rect.left + 5, rect.top + 5));
    }
}

// What a tool-tip such as the system's edit makes, which belongs to the edit and tells it what it
// does, says once it shows.
std::string WordsOfSystemBalloon(TestEdit& edit, std::string strText) {
    HWND balloon = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                                   WS_POPUP | TTS_NOPREFIX | TTS_BALLOON, 0, 0, 0, 0, edit.m_hWnd,
                                   nullptr, nullptr, nullptr);
    TOOLINFOA tool{};
    tool.cbSize = TTTOOLINFOA_V1_SIZE;
    tool.uFlags = TTF_TRACK;
    tool.hwnd = edit.m_hWnd;
    tool.uId = 7;
    tool.lpszText = strText.data();
    SendMessageA(balloon, TTM_SETMAXTIPWIDTH, 0, 300);
    SendMessageA(balloon, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
    SendMessageA(balloon, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
    std::string shown = TextOf(balloon, edit.m_hWnd, tool.uId);
    DestroyWindow(balloon);
    return shown;
}

constexpr char kOtherWords[] = "You can only type a number here.";

using SystemsBalloon = LibraryTest;

TEST_F(SystemsBalloon, GetsTheLibrarysWordsForItsWarningOnly) {
    const std::string begin{ResourceString(IDS_CAPS_LOCK_SYSTEM_BEGIN)};
    ASSERT_FALSE(begin.empty());
    for (const bool pin : {true, false}) {
        TestEdit edit(false);
        edit.SetMode(pin);
        EXPECT_EQ(WordsOfSystemBalloon(edit, begin + "\r\n\r\nAnd so on."),
                  std::string(ResourceString(pin ? IDS_CAPS_LOCK_PIN : IDS_CAPS_LOCK_PASSWORD)));
    }
    TestEdit edit(false);
    EXPECT_EQ(WordsOfSystemBalloon(edit, kOtherWords), kOtherWords);
    // Where the system has its own balloon, the edit makes none.
    SetCapsLock(true);
    edit.SetFocus();
    edit.Release(VK_CAPITAL);
    EXPECT_EQ(edit.Balloon(), nullptr);
    SetCapsLock(false);
}

TEST_F(SystemsBalloon, IsTakenDownWhereTheTextIsShown) {
    for (const std::string& words :
         {std::string(ResourceString(IDS_CAPS_LOCK_SYSTEM_BEGIN)), std::string(kOtherWords)}) {
        TestEdit edit(false);
        edit.ShowText();
        EXPECT_EQ(WordsOfSystemBalloon(edit, words), words);
        MSG message;
        EXPECT_EQ(words != kOtherWords, PeekMessageA(&message, edit.m_hWnd, EM_HIDEBALLOONTIP,
                                                     EM_HIDEBALLOONTIP, PM_REMOVE));
    }
}

TEST_F(SystemsBalloon, ShowsEachCharacterInTheColoursOfItsState) {
    for (const bool shown : {false, true}) {
        TestEdit edit(false);
        if (shown) {
            edit.ShowText();
        }
        edit.SetWindowText("81118");
        EXPECT_EQ(edit.Cell(0) != edit.Cell(1), shown);
        edit.SetFocus();
        edit.SetSel(1, 2);
        EXPECT_EQ(edit.Cell(1).front(), GetSysColor(COLOR_HIGHLIGHT));
        EXPECT_EQ(edit.Cell(3).front(), GetSysColor(COLOR_WINDOW));
        edit.LeaveIt();
        EXPECT_EQ(edit.Cell(1), edit.Cell(2));
        edit.EnableWindow(FALSE);
        EXPECT_NE(std::ranges::count(edit.Cell(1), GetSysColor(COLOR_GRAYTEXT)), 0);
    }
}

// What stands on the screen of an edit that shows a code, in a host's window that is mirrored or
// not.
std::vector<COLORREF> PictureOfCode(DWORD dwExStyle) {
    CWnd host;
    host.CreateEx(dwExStyle, "STATIC", "", WS_POPUP | WS_VISIBLE, 50, 50, 200, 20, nullptr,
                  nullptr);
    CCapsLockSensitiveEdit edit;
    edit.CreateEx(0, "EDIT", "", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 0, 200, 20, host.m_hWnd,
                  nullptr);
    edit.ShowText();
    edit.SetWindowText("0123-4567-89AB");
    edit.RedrawWindow();
    const WindowDc device(edit.m_hWnd);
    SetLayout(device.get(), 0);
    std::vector<COLORREF> pixels(size_t{200} * 20);
    for (int i = 0; COLORREF & pixel : pixels) {
        pixel = GetPixel(device.get(), i % 200, i / 200);
        ++i;
    }
    return pixels;
}

TEST(ShownCode, IsReadFromLeftToRightInEveryLanguage) {
    EXPECT_TRUE(PictureOfCode(WS_EX_LAYOUTRTL) == PictureOfCode(0));
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

TEST(WithoutModule, BuiltInWordsAreUsedAndTheBeginningOfTheSystemsIsNotKnown) {
    ASSERT_EQ(ResourceModule(), nullptr);
    ExpectWords(true, "Caps Lock is On",
                "Having Caps Lock on may cause you to enter your PIN incorrectly.\r\n\r\n"
                "You should press Caps Lock to turn it off before entering your PIN.");
    ExpectWords(false, "Caps Lock is On",
                "Having Caps Lock on may cause you to enter your password incorrectly.\r\n\r\n"
                "You should press Caps Lock to turn it off before entering your password.");
    TestEdit edit(false);
    EXPECT_EQ(WordsOfSystemBalloon(edit, kOtherWords), kOtherWords);
    ExpectWholeAnswer<NMTTDISPINFOA>(edit, TTN_GETDISPINFOA);
    ExpectWholeAnswer<NMTTDISPINFOW>(edit, TTN_GETDISPINFOW);
}

}  // namespace
}  // namespace mvp::test
