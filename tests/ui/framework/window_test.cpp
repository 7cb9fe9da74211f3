// CWnd: how objects and windows are bound, messages dispatched, temporaries kept.
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <dlgfw/controls.h>
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
class CProbeWnd : public CWnd {
public:
    BOOL CreatePopup(LPCSTR lpszClass = nullptr) {
        return CreateEx(0, lpszClass, "probe", WS_POPUP, kPlace, nullptr, 0);
    }
    std::vector<std::string> m_log;
    std::function<LRESULT()> m_onAsk;  // runs in the handler of kAsk
    std::function<int()> m_onCreate = [] { return 0; };

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (std::exchange(m_bFirst, false))
            m_log.emplace_back(FromHandlePermanent(m_hWnd) == this ? "bound" : "unbound");
        return CWnd::WindowProc(message, wParam, lParam);
    }
    void PreSubclassWindow() override { m_log.emplace_back("presubclass"); }
    void PostNcDestroy() override {
        m_log.emplace_back(m_hWnd == nullptr ? "postncdestroy" : "still bound");
    }

    afx_msg int OnCreate(LPCREATESTRUCT lpCreateStruct) {
        m_log.emplace_back("create");
        const int nResult = m_onCreate();
        return nResult != 0 ? nResult : CWnd::OnCreate(lpCreateStruct);
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

BEGIN_MESSAGE_MAP(CProbeWnd, CWnd)
    ON_WM_CREATE()
    ON_WM_DESTROY()
    ON_WM_PAINT()
    ON_MESSAGE(kAsk, &CProbeWnd::OnAsk)
    ON_REGISTERED_MESSAGE(g_nRegistered, &CProbeWnd::OnRegistered)
    ON_EN_CHANGE(5, &CProbeWnd::OnChange)
    ON_COMMAND(101, &CProbeWnd::OnMenu)
END_MESSAGE_MAP()

int Refuse() {
    return -1;
}

TEST(WindowTest, ObjectIsBoundFromTheFirstToTheLastMessage) {
    CProbeWnd wnd;
    ASSERT_TRUE(wnd.CreatePopup());
    HWND hWnd = wnd.m_hWnd;
    EXPECT_EQ(CWnd::FromHandle(hWnd), &wnd);
    EXPECT_TRUE(wnd.DestroyWindow());
    EXPECT_EQ(wnd.m_hWnd, nullptr);
    EXPECT_EQ(CWnd::FromHandlePermanent(hWnd), nullptr);
    EXPECT_FALSE(wnd.DestroyWindow());
    EXPECT_THAT(wnd.m_log,
                ElementsAre("presubclass", "bound", "create", "destroy", "postncdestroy"));
}

TEST(WindowTest, FailedCreationLeavesNothingAndTellsTheObjectOnce) {
    struct Unprepared : CProbeWnd {
        BOOL PreCreateWindow(CREATESTRUCTA&) override { return FALSE; }
    };
    const auto before = ResourceCounts::Now();
    const auto expectFailure = [](CProbeWnd& wnd, LPCSTR lpszClass = nullptr) {
        EXPECT_FALSE(wnd.CreatePopup(lpszClass));
        EXPECT_EQ(wnd.m_hWnd, nullptr);
        EXPECT_EQ(std::count(wnd.m_log.begin(), wnd.m_log.end(), "postncdestroy"), 1);
    };
    CProbeWnd refusing;
    refusing.m_onCreate = Refuse;
    expectFailure(refusing);
    CProbeWnd throwing;
    throwing.m_onCreate = []() -> int { throw 5; };
    expectFailure(throwing);
    Unprepared unprepared;
    expectFailure(unprepared);
    CProbeWnd classless;
    expectFailure(classless, "no such class");
    EXPECT_EQ(ResourceCounts::Now().windows, before.windows);
    EXPECT_TRUE(classless.CreatePopup());  // it can be tried again
}

TEST(WindowTest, DeletingTheObjectDestroysItsWindow) {
    auto pWnd = std::make_unique<CProbeWnd>();
    ASSERT_TRUE(pWnd->CreatePopup());
    CStatic label;
    ASSERT_TRUE(label.Create("text", WS_CHILD, kPlace, pWnd.get()));
    HWND hWnd = pWnd->m_hWnd;
    pWnd.reset();
    EXPECT_FALSE(IsWindow(hWnd));
    EXPECT_EQ(label.m_hWnd, nullptr);  // it went with its parent

    // In its handler: then it is not touched again.
    auto* pOwn = new CProbeWnd;
    ASSERT_TRUE(pOwn->CreatePopup());
    pOwn->m_onAsk = [pOwn] {
        delete pOwn;
        return LRESULT{7};
    };
    hWnd = pOwn->m_hWnd;
    EXPECT_EQ(SendMessageA(hWnd, kAsk, 0, 0), 7);
    EXPECT_FALSE(IsWindow(hWnd));
}

TEST(WindowTest, ObjectMayDeleteItselfWhenItsWindowGoes) {
    struct Own final : CProbeWnd {
        explicit Own(int& nDeleted) : m_nDeleted(nDeleted) {}
        ~Own() override { ++m_nDeleted; }
        void PostNcDestroy() override { delete this; }
        int& m_nDeleted;
    };
    int nDeleted = 0;
    auto* pWnd = new Own(nDeleted);
    ASSERT_TRUE(pWnd->CreatePopup());
    pWnd->m_onAsk = [pWnd] { return LRESULT{pWnd->DestroyWindow()}; };
    EXPECT_EQ(pWnd->SendMessage(kAsk), TRUE);  // out of its own handler
    EXPECT_EQ(nDeleted, 1);

    pWnd = new Own(nDeleted);
    pWnd->m_onCreate = Refuse;
    EXPECT_FALSE(pWnd->CreatePopup());
    EXPECT_EQ(nDeleted, 2);
}

// What most tests begin with.
class OpenWindow : public testing::Test {
protected:
    OpenWindow() { EXPECT_TRUE(m_wnd.CreatePopup()); }
    CProbeWnd m_wnd;
};

TEST_F(OpenWindow, ExceptionEndsAtTheWindowProcedure) {
    static UINT nReported = 0;
    const auto pfnOld = AfxSetExceptionReporter([](UINT message) { nReported = message; });
    m_wnd.m_onAsk = []() -> LRESULT { throw std::runtime_error("no"); };
    EXPECT_EQ(m_wnd.SendMessage(kAsk), 0);
    EXPECT_EQ(nReported, kAsk);
    m_wnd.m_onAsk = [] { return LRESULT{3}; };
    EXPECT_EQ(m_wnd.SendMessage(kAsk), 3);

    // Painting that fails is not asked for again and again.
    m_wnd.ShowWindow(SW_SHOWNA);
    m_wnd.Invalidate();
    m_wnd.UpdateWindow();
    EXPECT_EQ(nReported, UINT{WM_PAINT});
    EXPECT_FALSE(GetUpdateRect(m_wnd, nullptr, FALSE));
    EXPECT_NE(AfxSetExceptionReporter(pfnOld), pfnOld);
}

TEST_F(OpenWindow, RegisteredMessagesAreReadWhenTheyCome) {
    g_nRegistered = 0;
    EXPECT_EQ(m_wnd.SendMessage(WM_NULL, 1, 2), 0);  // an empty variable answers nothing
    g_nRegistered = RegisterWindowMessageA("dlgfw test message");
    EXPECT_EQ(m_wnd.SendMessage(g_nRegistered, 1, 2), 3);
}

TEST_F(OpenWindow, PermanentObjectsAreThoseOfTheThread) {
    CWnd* pSeen = &m_wnd;
    HWND hSeen = nullptr;
    CWnd second;
    std::thread([&] {
        pSeen = CWnd::FromHandlePermanent(m_wnd.m_hWnd);
        hSeen = CWnd::FromHandle(m_wnd.m_hWnd)->m_hWnd;
        EXPECT_FALSE(second.SubclassWindow(m_wnd.m_hWnd));
    }).join();
    EXPECT_EQ(pSeen, nullptr);
    EXPECT_EQ(hSeen, m_wnd.m_hWnd);
    EXPECT_FALSE(second.Attach(m_wnd.m_hWnd));
    EXPECT_FALSE(second.Attach(nullptr));
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
}

TEST_F(OpenWindow, TemporariesLastUntilTheThreadIsIdle) {
    HWND hDesktop = GetDesktopWindow();
    CWnd* pOuter = CWnd::FromHandle(hDesktop);  // made outside of any handler
    EXPECT_EQ(CWnd::FromHandlePermanent(hDesktop), nullptr);

    // Temporaries ask nothing of their handles, so made-up ones will do.
    ULONG_PTR nNext = 0x10000;
    m_wnd.m_onAsk = [&] {
        for (int i = 0; i < 50; ++i) {
            auto* hMadeUp = reinterpret_cast<HWND>(nNext += 2);
            CWnd* pFirst = CWnd::FromHandle(hMadeUp);
            EXPECT_EQ(pFirst->m_hWnd, hMadeUp);
            EXPECT_EQ(CWnd::FromHandle(hMadeUp), pFirst);
        }
        return 0;
    };
    ExpectRoundsKeepNothing(1, 100, [&](int) { m_wnd.SendMessage(kAsk); }, {.heapBlocks = 5});
    // What was made before the handlers ran is not theirs to lose.
    EXPECT_EQ(CWnd::FromHandle(hDesktop), pOuter);
    EXPECT_EQ(pOuter->m_hWnd, hDesktop);
    CWnd::DeleteTempMap();
}

// Takes digits only, hears of its changes before its parent does, and has colours of its own.
class CDigitEdit : public CEdit {
public:
    int m_nChanges = 0;
    HBRUSH m_hBrush = nullptr;

protected:
    BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM, LRESULT* pResult) override {
        if (message == WM_COMMAND)
            m_nChanges += HIWORD(wParam) == EN_CHANGE ? 1 : 0;
        if (message == WM_CTLCOLOREDIT)
            *pResult = reinterpret_cast<LRESULT>(m_hBrush);
        return message == WM_COMMAND || m_hBrush != nullptr;
    }
    afx_msg LRESULT OnChar(WPARAM wParam, LPARAM) {
        return wParam >= '0' && wParam <= '9' ? Default() : 0;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CDigitEdit, CEdit)
    ON_MESSAGE(WM_CHAR, &CDigitEdit::OnChar)
END_MESSAGE_MAP()

// With an edit in the window.
class Family : public OpenWindow {
protected:
    const HWND m_hEdit = CreateWindowExA(0, "EDIT", "", WS_CHILD, 0, 0, 50, 20, m_wnd,
                                         reinterpret_cast<HMENU>(5), nullptr, nullptr);
};

TEST_F(Family, SubclassedControlAnswersFirst) {
    CDigitEdit edit;
    EXPECT_FALSE(edit.SubclassDlgItem(6, &m_wnd));
    ASSERT_TRUE(edit.SubclassDlgItem(5, &m_wnd));
    CDigitEdit second;
    EXPECT_FALSE(second.SubclassWindow(m_hEdit));
    EXPECT_EQ(m_wnd.GetDlgItem(5), &edit);
    for (const char ch : {'1', 'x', '2'})
        edit.SendMessage(WM_CHAR, static_cast<WPARAM>(ch), 1);
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
    CDigitEdit edit;
    ASSERT_TRUE(edit.SubclassWindow(m_hEdit));
    edit.SetWindowText("b");
    EXPECT_EQ(edit.m_nChanges, 1);
    EXPECT_TRUE(m_wnd.m_log.empty());

    // Without a brush the colours are left to the parent's own answer.
    HDC hDC = GetDC(edit);
    const auto color = [&] {
        return m_wnd.SendMessage(WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(hDC),
                                 reinterpret_cast<LPARAM>(edit.m_hWnd));
    };
    const LRESULT lStandard = color();
    edit.m_hBrush = static_cast<HBRUSH>(GetStockObject(DKGRAY_BRUSH));
    EXPECT_EQ(color(), reinterpret_cast<LRESULT>(edit.m_hBrush));
    EXPECT_NE(lStandard, reinterpret_cast<LRESULT>(edit.m_hBrush));
    ReleaseDC(edit, hDC);

    m_wnd.SendMessage(WM_COMMAND, 101);
    m_wnd.SendMessage(WM_COMMAND, 102);
    EXPECT_EQ(m_wnd.SendMessage(WM_NOTIFY, 5, 0), 0);  // a header is missing
    EXPECT_THAT(m_wnd.m_log, ElementsAre("menu"));
}

}  // namespace
}  // namespace mvp::test
