// CWnd: how objects and windows are bound, messages dispatched, temporaries kept; what draws in it.
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <dlgfw/controls.h>
#include <dlgfw/dc.h>
#include <dlgfw/gdi_object.h>
#include <dlgfw/message_map.h>
#include <dlgfw/wnd.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/resource_counts.h"

namespace mvp::test {
namespace {

using testing::ElementsAre;

constexpr RECT kPlace = {10, 10, 210, 110};
constexpr UINT kAsk = WM_APP + 1;
UINT g_nRegistered = 0;  // not registered yet

// Writes down what happens to it, in order.
class ProbeWnd : public CWnd {
public:
    BOOL CreatePopup(LPCSTR lpszClass = nullptr) {
        return CreateEx(0, lpszClass, "probe", WS_POPUP, kPlace, nullptr, 0);
    }
    std::vector<std::string> m_log;
    std::function<LRESULT()> m_onAsk;  // runs in the handler of kAsk
    std::function<int()> m_onCreate = [] { return 0; };

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (std::exchange(m_bFirst, false)) {
            m_log.emplace_back(FromHandlePermanent(m_hWnd) == this ? "bound" : "unbound");
        }
        return CWnd::WindowProc(message, wParam, lParam);
    }
    void PreSubclassWindow() override { m_log.emplace_back("presubclass"); }
    void PostNcDestroy() override {
        m_log.emplace_back(m_hWnd == nullptr ? "postncdestroy" : "still bound");
    }

    afx_msg int OnCreate(LPCREATESTRUCT lpCreateStruct) {
        m_log.emplace_back("create");
        const int result = m_onCreate();
        return result != 0 ? result : CWnd::OnCreate(lpCreateStruct);
    }
    afx_msg void OnDestroy() {
        m_log.emplace_back("destroy");
        CWnd::OnDestroy();
    }
    afx_msg LRESULT OnAsk(WPARAM, LPARAM) {
        const auto onAsk = m_onAsk;  // the object may go meanwhile, and its function with it
        return onAsk();
    }
    afx_msg LRESULT OnRegistered(WPARAM wParam, LPARAM lParam) {
        return static_cast<LRESULT>(wParam) + lParam;
    }
    afx_msg void OnPaint() { throw std::string("no painting"); }
    afx_msg void OnChange() { m_log.emplace_back("change"); }
    afx_msg void OnMenu() { m_log.emplace_back("menu"); }
    DECLARE_MESSAGE_MAP()

private:
    bool m_bFirst = true;
};

BEGIN_MESSAGE_MAP(ProbeWnd, CWnd)
    ON_WM_CREATE()
    ON_WM_DESTROY()
    ON_WM_PAINT()
    ON_MESSAGE(kAsk, &ProbeWnd::OnAsk)
    ON_REGISTERED_MESSAGE(g_nRegistered, &ProbeWnd::OnRegistered)
    ON_EN_CHANGE(5, &ProbeWnd::OnChange)
    ON_COMMAND(101, &ProbeWnd::OnMenu)
END_MESSAGE_MAP()

int Refuse() {
    return -1;
}

TEST(WindowTest, ObjectIsBoundFromTheFirstToTheLastMessage) {
    ProbeWnd wnd;
    ASSERT_TRUE(wnd.CreatePopup());
    HWND window = wnd.m_hWnd;
    EXPECT_EQ(CWnd::FromHandle(window), &wnd);
    EXPECT_TRUE(wnd.DestroyWindow());
    EXPECT_EQ(wnd.m_hWnd, nullptr);
    EXPECT_EQ(CWnd::FromHandlePermanent(window), nullptr);
    EXPECT_FALSE(wnd.DestroyWindow());
    EXPECT_THAT(wnd.m_log,
                ElementsAre("presubclass", "bound", "create", "destroy", "postncdestroy"));
}

TEST(WindowTest, FailedCreationLeavesNothingAndTellsTheObjectOnce) {
    struct Unprepared : ProbeWnd {
        BOOL PreCreateWindow(CREATESTRUCTA&) override { return FALSE; }
    };
    const auto before = ResourceCounts::Now();
    ProbeWnd refusing;
    refusing.m_onCreate = Refuse;
    ProbeWnd throwing;
    throwing.m_onCreate = []() -> int { throw 5; };
    Unprepared unprepared;
    ProbeWnd classless;
    for (ProbeWnd* wnd : {&refusing, &throwing, static_cast<ProbeWnd*>(&unprepared), &classless}) {
        EXPECT_FALSE(wnd->CreatePopup(wnd == &classless ? "no such class" : nullptr));
        EXPECT_EQ(wnd->m_hWnd, nullptr);
        EXPECT_EQ(std::count(wnd->m_log.begin(), wnd->m_log.end(), "postncdestroy"), 1);
    }
    EXPECT_EQ(ResourceCounts::Now().windows, before.windows);
    EXPECT_TRUE(classless.CreatePopup());  // it can be tried again
}

TEST(WindowTest, DeletingTheObjectDestroysItsWindow) {
    auto probe = std::make_unique<ProbeWnd>();
    ASSERT_TRUE(probe->CreatePopup());
    CStatic label;
    ASSERT_TRUE(label.Create("text", WS_CHILD, kPlace, probe.get()));
    HWND window = probe->m_hWnd;
    probe.reset();
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(label.m_hWnd, nullptr);  // it went with its parent

    // In its handler: then it is not touched again.
    auto* own = new ProbeWnd;
    ASSERT_TRUE(own->CreatePopup());
    own->m_onAsk = [own] {
        delete own;
        return LRESULT{7};
    };
    window = own->m_hWnd;
    EXPECT_EQ(SendMessageA(window, kAsk, 0, 0), 7);
    EXPECT_FALSE(IsWindow(window));
}

TEST(WindowTest, ObjectMayDeleteItselfWhenItsWindowGoes) {
    static int deleted;
    deleted = 0;
    struct Own final : ProbeWnd {
        ~Own() override { ++deleted; }
        void PostNcDestroy() override { delete this; }
    };
    auto* window = new Own;
    ASSERT_TRUE(window->CreatePopup());
    window->m_onAsk = [window] { return LRESULT{window->DestroyWindow()}; };
    EXPECT_EQ(window->SendMessage(kAsk), TRUE);  // out of its own handler
    EXPECT_EQ(deleted, 1);

    window = new Own;
    window->m_onCreate = Refuse;
    EXPECT_FALSE(window->CreatePopup());
    EXPECT_EQ(deleted, 2);
}

// What most tests begin with.
class OpenWindow : public testing::Test {
protected:
    OpenWindow() { EXPECT_TRUE(m_wnd.CreatePopup()); }
    ProbeWnd m_wnd;
};

TEST_F(OpenWindow, ExceptionEndsAtTheWindowProcedure) {
    static UINT reported = 0;
    const auto oldFunction = AfxSetExceptionReporter([](UINT message) { reported = message; });
    m_wnd.m_onAsk = []() -> LRESULT { throw std::runtime_error("no"); };
    EXPECT_EQ(m_wnd.SendMessage(kAsk), 0);
    EXPECT_EQ(reported, kAsk);
    m_wnd.m_onAsk = [] { return LRESULT{3}; };
    EXPECT_EQ(m_wnd.SendMessage(kAsk), 3);

    // Painting that fails is not asked for again and again.
    m_wnd.ShowWindow(SW_SHOWNA);
    m_wnd.Invalidate();
    m_wnd.UpdateWindow();
    EXPECT_EQ(reported, UINT{WM_PAINT});
    EXPECT_FALSE(GetUpdateRect(m_wnd, nullptr, FALSE));
    EXPECT_NE(AfxSetExceptionReporter(oldFunction), oldFunction);
}

TEST_F(OpenWindow, RegisteredMessagesAreReadWhenTheyCome) {
    g_nRegistered = 0;
    EXPECT_EQ(m_wnd.SendMessage(WM_NULL, 1, 2), 0);  // an empty variable answers nothing
    g_nRegistered = RegisterWindowMessageA("dlgfw test message");
    EXPECT_EQ(m_wnd.SendMessage(g_nRegistered, 1, 2), 3);
}

TEST_F(OpenWindow, PermanentObjectsAreThoseOfTheThread) {
    CWnd second;
    std::thread([&] {
        EXPECT_EQ(CWnd::FromHandlePermanent(m_wnd.m_hWnd), nullptr);
        EXPECT_EQ(CWnd::FromHandle(m_wnd.m_hWnd)->m_hWnd, m_wnd.m_hWnd);
        EXPECT_FALSE(second.SubclassWindow(m_wnd.m_hWnd));
    }).join();
    EXPECT_FALSE(second.Attach(m_wnd.m_hWnd));
    EXPECT_FALSE(second.Attach(nullptr));
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
}

TEST_F(OpenWindow, TemporariesLastUntilTheThreadIsIdle) {
    HWND desktop = GetDesktopWindow();
    CWnd* outer = CWnd::FromHandle(desktop);  // made outside of any handler
    EXPECT_EQ(CWnd::FromHandlePermanent(desktop), nullptr);

    // Temporaries ask nothing of their handles, so made-up ones will do.
    ULONG_PTR next = 0x10000;
    m_wnd.m_onAsk = [&] {
        for (int i = 0; i < 50; ++i) {
            auto* madeUp = reinterpret_cast<HWND>(next += 2);
            CWnd* first = CWnd::FromHandle(madeUp);
            EXPECT_EQ(first->m_hWnd, madeUp);
            EXPECT_EQ(CWnd::FromHandle(madeUp), first);
        }
        return 0;
    };
    ExpectRoundsKeepNothing(1, 100, [&](int) { m_wnd.SendMessage(kAsk); }, {.heapBlocks = 5});
    // What was made before the handlers ran is not theirs to lose.
    EXPECT_EQ(CWnd::FromHandle(desktop), outer);
    EXPECT_EQ(outer->m_hWnd, desktop);
    CWnd::DeleteTempMap();
}

TEST_F(OpenWindow, DrawingObjectsAreOwnedAndSelectionsGivenBack) {
    CBitmap bitmap;
    {
        CClientDC screen(&m_wnd);
        CDC memory;
        ASSERT_TRUE(memory.CreateCompatibleDC(&screen));
        ASSERT_TRUE(bitmap.CreateCompatibleBitmap(&screen, 20, 10));
        CBitmap* old = memory.SelectObject(&bitmap);
        EXPECT_EQ(memory.SelectObject(old), &bitmap);
    }
    HGDIOBJ bitmapHandle = bitmap.m_hObject;
    EXPECT_TRUE(bitmap.Attach(CreateBitmap(1, 1, 1, 1, nullptr)));  // in place of the first
    EXPECT_EQ(GetObjectType(bitmapHandle), 0u);
    HGDIOBJ second = bitmap.Detach();
    EXPECT_EQ(GetObjectType(second), DWORD{OBJ_BITMAP});
    EXPECT_TRUE(DeleteObject(second));
}

// Takes digits only, hears of its changes before its parent does, and has colours of its own.
class DigitEdit : public CEdit {
public:
    int m_nChanges = 0;
    HBRUSH m_hBrush = nullptr;

protected:
    BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM, LRESULT* pResult) override {
        m_nChanges += message == WM_COMMAND && HIWORD(wParam) == EN_CHANGE ? 1 : 0;
        if (message == WM_CTLCOLOREDIT) {
            *pResult = reinterpret_cast<LRESULT>(m_hBrush);
        }
        return message == WM_COMMAND || m_hBrush != nullptr;
    }
    afx_msg LRESULT OnChar(WPARAM wParam, LPARAM) {
        return wParam >= '0' && wParam <= '9' ? Default() : 0;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(DigitEdit, CEdit)
    ON_MESSAGE(WM_CHAR, &DigitEdit::OnChar)
END_MESSAGE_MAP()

// With an edit in the window.
class Family : public OpenWindow {
protected:
    const HWND m_hEdit = CreateWindowExA(0, "EDIT", "", WS_CHILD, 0, 0, 50, 20, m_wnd,
                                         reinterpret_cast<HMENU>(5), nullptr, nullptr);
};

TEST_F(Family, SubclassedControlAnswersFirst) {
    DigitEdit edit;
    EXPECT_FALSE(edit.SubclassDlgItem(6, &m_wnd));
    ASSERT_TRUE(edit.SubclassDlgItem(5, &m_wnd));
    DigitEdit second;
    EXPECT_FALSE(second.SubclassWindow(m_hEdit));
    EXPECT_EQ(m_wnd.GetDlgItem(5), &edit);
    for (const char ch : {'1', 'x', '2'}) {
        edit.SendMessage(WM_CHAR, static_cast<WPARAM>(ch), 1);
    }
    CString str;
    EXPECT_EQ(m_wnd.GetDlgItemText(5, str), 2);
    EXPECT_STREQ(str, "12");
    EXPECT_EQ(m_wnd.GetDlgItemText(6, str), 0);
    DestroyWindow(m_hEdit);
    EXPECT_EQ(edit.m_hWnd, nullptr);
}

TEST_F(Family, SystemChangesReachTheObjectsBelowATopLevelWindow) {
    struct Listening : CStatic {
        LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
            m_nHeard += message == WM_SYSCOLORCHANGE || message == WM_SETTINGCHANGE ? 1 : 0;
            return CStatic::WindowProc(message, wParam, lParam);
        }
        int m_nHeard = 0;
    };
    Listening panel;
    ASSERT_TRUE(panel.Create("", WS_CHILD, kPlace, &m_wnd));
    Listening label;
    ASSERT_TRUE(label.Create("", WS_CHILD, kPlace, &panel));
    m_wnd.SendMessage(WM_SYSCOLORCHANGE);
    m_wnd.SendMessage(WM_SETTINGCHANGE);
    EXPECT_EQ(panel.m_nHeard, 2);
    EXPECT_EQ(label.m_nHeard, 2);
}

TEST_F(Family, NotificationsGoToTheControlFirstAndThenToTheParent) {
    m_wnd.m_log.clear();
    SetWindowTextA(m_hEdit, "a");
    EXPECT_THAT(std::exchange(m_wnd.m_log, {}), ElementsAre("change"));
    DigitEdit edit;
    ASSERT_TRUE(edit.SubclassWindow(m_hEdit));
    edit.SetWindowText("b");
    EXPECT_EQ(edit.m_nChanges, 1);
    EXPECT_TRUE(m_wnd.m_log.empty());

    // Without a brush the colours are left to the parent's own answer.
    HDC dc = GetDC(edit);
    const auto color = [&] {
        return m_wnd.SendMessage(WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(dc),
                                 reinterpret_cast<LPARAM>(edit.m_hWnd));
    };
    const LRESULT standard = color();
    edit.m_hBrush = static_cast<HBRUSH>(GetStockObject(DKGRAY_BRUSH));
    EXPECT_EQ(color(), reinterpret_cast<LRESULT>(edit.m_hBrush));
    EXPECT_NE(standard, reinterpret_cast<LRESULT>(edit.m_hBrush));
    ReleaseDC(edit, dc);

    m_wnd.SendMessage(WM_COMMAND, 101);
    m_wnd.SendMessage(WM_COMMAND, 102);
    EXPECT_EQ(m_wnd.SendMessage(WM_NOTIFY, 5, 0), 0);  // a header is missing
    EXPECT_THAT(m_wnd.m_log, ElementsAre("menu"));
}

}  // namespace
}  // namespace mvp::test
