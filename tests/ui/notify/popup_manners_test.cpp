// What popups do to the window that the user works in: nothing. Popups of another process come and
// go under the pointer while real keys are typed and real clicks made.
#include <array>
#include <cstdlib>

#include "common/keyboard.h"
#include "popup_owner.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr int kCloseLinkId = 790;  // the first of the two with it

int g_nChanges = 0;

// Counts what tells a window that it is no longer, or newly, the one that the user works in.
class WorkWindow : public CWnd {
public:
    int m_nReceived = 0;
    int m_nWrong = 0;  // not the digit whose turn it was

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
            case WM_ACTIVATE:
            case WM_ACTIVATEAPP:
            case WM_NCACTIVATE:
            case WM_SETFOCUS:
            case WM_KILLFOCUS:
                ++g_nChanges;
                break;
            case WM_CHAR:
                m_nWrong += wParam == static_cast<WPARAM>('0' + m_nReceived++ % 10) ? 0 : 1;
                break;
            default:
                break;
        }
        return CWnd::WindowProc(message, wParam, lParam);
    }
};

void CALLBACK OnForeground(HWINEVENTHOOK, DWORD, HWND, LONG, LONG, DWORD, DWORD) {
    ++g_nChanges;
}

// The user at work: types digits in turn into an edit in the foreground.
class PopupManners : public testing::Test {
protected:
    PopupManners() {
        GetCursorPos(&m_cursor);
        m_window.CreateEx(0, "STATIC", "work", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 400, 200,
                          nullptr, nullptr);
        m_edit.CreateEx(0, "EDIT", "", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 10, 10, 300, 24,
                        m_window.m_hWnd, nullptr);
        m_edit.SendMessage(EM_LIMITTEXT, 0);
        m_window.SetForegroundWindow();
        m_edit.SetFocus();
        EXPECT_TRUE(PumpUntil([this] { return GetForegroundWindow() == m_window.m_hWnd; }));
        // Both the strokes and the events of what was before have come when this one has.
        EXPECT_TRUE(TypeAndWait());
        g_nChanges = 0;
    }
    ~PopupManners() override {
        UnhookWinEvent(m_hook);
        m_window.DestroyWindow();
        SetCursorPos(m_cursor.x, m_cursor.y);
    }

    // Some of them while the ones before are still on their way.
    bool TypeAndWait(int nAtOnce = 1) {
        for (int i = 0; i < nAtOnce; ++i) {
            const char digit = static_cast<char>('0' + m_nTyped++ % 10);
            EXPECT_TRUE(SendText({&digit, 1}));
        }
        g_nChanges += GetForegroundWindow() == m_window.m_hWnd ? 0 : 1;
        const bool received = PumpUntil([this] { return m_edit.m_nReceived >= m_nTyped; });
        m_edit.SetWindowText("");  // an edit measures all that it holds at every stroke
        return received;
    }
    void ExpectUndisturbed() {
        EXPECT_EQ(m_nTyped - m_edit.m_nReceived, 0) << "keys are lost";
        EXPECT_EQ(m_edit.m_nWrong, 0);
        EXPECT_EQ(g_nChanges, 0) << "the foreground or the focus has changed";
        EXPECT_EQ(GetForegroundWindow(), m_window.m_hWnd);
        EXPECT_EQ(GetFocus(), m_edit.m_hWnd);
    }

    POINT m_cursor{};
    const PopupOwner m_owner;
    HWINEVENTHOOK m_hook = SetWinEventHook(EVENT_SYSTEM_FOREGROUND, EVENT_SYSTEM_FOREGROUND,
                                           nullptr, &OnForeground, 0, 0, WINEVENT_OUTOFCONTEXT);
    int m_nTyped = 0;
    WorkWindow m_window;
    WorkWindow m_edit;
};

// Where the pointer lies over every popup of a series above a taskbar at the bottom, on its very
// edge: inside the window, but not so far that the popup stays for its sake.
POINT EdgeOfPopup() {
    RECT work{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    constexpr int kSkinWidth = 340;
    constexpr int kInset = 7;
    constexpr int kRise = 12;  // the slide comes past it soon
    return {work.right - kSkinWidth - kInset, work.bottom - kRise};
}

// Where a late move of the pointer cannot come between: each of the two says where it is.
void Click(POINT point) {
    SetCursorPos(point.x, point.y);
    INPUT button[2] = {};
    for (INPUT& input : button) {
        input.type = INPUT_MOUSE;
        input.mi.dx = MulDiv(point.x, 65536, GetSystemMetrics(SM_CXSCREEN)) + 1;
        input.mi.dy = MulDiv(point.y, 65536, GetSystemMetrics(SM_CYSCREEN)) + 1;
        input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    }
    button[0].mi.dwFlags |= MOUSEEVENTF_LEFTDOWN;
    button[1].mi.dwFlags |= MOUSEEVENTF_LEFTUP;
    EXPECT_EQ(SendInput(2, button, sizeof button[0]), 2u);
}

// The measure can see what it looks for.
TEST_F(PopupManners, AreNotThoseOfAnOrdinaryWindow) {
    HWND ordinary = m_owner.Show(PopupOwner::kOrdinary);
    EXPECT_TRUE(PumpUntil([&] { return GetForegroundWindow() == ordinary && g_nChanges > 3; }));
}

TEST_F(PopupManners, NoKeyIsLost) {
    constexpr int kKeys = 10'000;
    constexpr int kPopups = 200;
    constexpr int kAtOnce = 40;
    const POINT edge = EdgeOfPopup();
    SetCursorPos(edge.x, edge.y);
    m_owner.RunSeries();
    std::array<int, 3> typed{};  // while popups slide in, stay and leave
    int under = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(8);
    while ((m_owner.Number("shown") <= kPopups || m_nTyped < kKeys) &&
           std::chrono::steady_clock::now() < end) {
        const int steps = m_owner.Number("steps");
        ++typed.at(steps < PopupOwner::kArrived ? 0 : steps < PopupOwner::kLeaving ? 1 : 2);
        under += IsTopMost(WindowFromPoint(edge)) ? 1 : 0;
        if (!TypeAndWait(kAtOnce)) {
            break;
        }
    }
    ExpectUndisturbed();
    EXPECT_GT(m_owner.Number("shown"), kPopups);
    EXPECT_GE(m_nTyped, kKeys);
    EXPECT_GT(under, 0) << "no popup came under the pointer";
    for (const int count : typed) {
        EXPECT_GT(count, 0);
    }
    std::printf("%d keys over %d popups, %d under\n", m_nTyped, m_owner.Number("shown"), under);
}

TEST_F(PopupManners, AClickActivatesNothing) {
    HWND popup = m_owner.Show(DIALOG_POPUP_NO_READER);
    ASSERT_TRUE(BringIn(popup));
    CRect link;
    GetWindowRect(GetDlgItem(popup, kCloseLinkId), &link);
    const POINT words{link.left + 60, link.CenterPoint().y};
    const POINT ground{link.left + 20, link.top - 50};
    ASSERT_EQ(WindowFromPoint(ground), popup);
    for (const POINT point : {ground, words}) {
        Click(point);
        EXPECT_TRUE(TypeAndWait());
        ExpectUndisturbed();
    }
    EXPECT_TRUE(PumpUntil([&] { return IsWindowVisible(popup) == FALSE; })) << "it is closed";
    EXPECT_TRUE(TypeAndWait());
    ExpectUndisturbed();
}

}  // namespace
}  // namespace mvp::test
