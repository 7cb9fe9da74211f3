// CWnd: how objects and windows are bound, messages dispatched, temporaries kept.
#include <functional>
#include <memory>
#include <string>
#include <thread>
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
    explicit CProbeWnd(std::vector<std::string>* pLog = nullptr) : m_pLog(pLog) {}

    BOOL CreatePopup(DWORD dwStyle = WS_POPUP) {
        return CreateEx(0, nullptr, "probe", dwStyle, kPlace, nullptr, 0);
    }
    // Runs in the handler of kAsk.
    std::function<LRESULT()> m_onAsk;
    bool m_bRefuse = false;
    bool m_bThrow = false;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (std::exchange(m_bFirst, false))
            Log(m_hWnd != nullptr && FromHandlePermanent(m_hWnd) == this ? "bound" : "unbound");
        return CWnd::WindowProc(message, wParam, lParam);
    }
    void PreSubclassWindow() override { Log("presubclass"); }
    void PostNcDestroy() override { Log(m_hWnd == nullptr ? "postncdestroy" : "still bound"); }

    afx_msg int OnCreate(LPCREATESTRUCT lpCreateStruct) {
        Log("create");
        if (m_bThrow)
            throw 5;
        return m_bRefuse ? -1 : CWnd::OnCreate(lpCreateStruct);
    }
    afx_msg void OnDestroy() {
        Log("destroy");
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
    DECLARE_MESSAGE_MAP()

private:
    void Log(const char* event) {
        if (m_pLog != nullptr)
            m_pLog->push_back(event);
    }
    std::vector<std::string>* m_pLog;
    bool m_bFirst = true;
};

BEGIN_MESSAGE_MAP(CProbeWnd, CWnd)
    ON_WM_CREATE()
    ON_WM_DESTROY()
    ON_WM_PAINT()
    ON_MESSAGE(kAsk, &CProbeWnd::OnAsk)
    ON_REGISTERED_MESSAGE(g_nRegistered, &CProbeWnd::OnRegistered)
END_MESSAGE_MAP()

TEST(WindowTest, ObjectIsBoundFromTheFirstToTheLastMessage) {
    std::vector<std::string> log;
    CProbeWnd wnd(&log);
    ASSERT_TRUE(wnd.CreatePopup());
    HWND hWnd = wnd.m_hWnd;
    EXPECT_EQ(CWnd::FromHandle(hWnd), &wnd);
    EXPECT_TRUE(wnd.DestroyWindow());
    EXPECT_EQ(wnd.m_hWnd, nullptr);
    EXPECT_EQ(CWnd::FromHandlePermanent(hWnd), nullptr);
    EXPECT_FALSE(wnd.DestroyWindow());
    EXPECT_THAT(log, ElementsAre("presubclass", "bound", "create", "destroy", "postncdestroy"));
}

TEST(WindowTest, FailedCreationLeavesNothingAndTellsTheObjectOnce) {
    struct Refusing : CProbeWnd {
        using CProbeWnd::CProbeWnd;
        BOOL PreCreateWindow(CREATESTRUCTA&) override { return FALSE; }
    };
    std::vector<std::string> log;
    const auto fails = [&](CProbeWnd& wnd, LPCSTR lpszClass) {
        log.clear();
        return !wnd.CreateEx(0, lpszClass, "", WS_POPUP, kPlace, nullptr, 0) &&
               wnd.m_hWnd == nullptr && std::count(log.begin(), log.end(), "postncdestroy") == 1;
    };
    const auto before = ResourceCounts::Now();
    CProbeWnd refusing(&log);
    refusing.m_bRefuse = true;
    EXPECT_TRUE(fails(refusing, nullptr));
    CProbeWnd throwing(&log);
    throwing.m_bThrow = true;
    EXPECT_TRUE(fails(throwing, nullptr));
    CProbeWnd classless(&log);
    EXPECT_TRUE(fails(classless, "no such class"));
    Refusing before_creation(&log);
    EXPECT_TRUE(fails(before_creation, nullptr));
    EXPECT_EQ(ResourceCounts::Now().windows, before.windows);

    classless.m_bRefuse = false;
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
    pWnd->m_bRefuse = true;
    EXPECT_FALSE(pWnd->CreatePopup());
    EXPECT_EQ(nDeleted, 2);
}

TEST(WindowTest, ObjectDeletedInItsHandlerIsNotTouchedAgain) {
    auto* pWnd = new CProbeWnd;
    ASSERT_TRUE(pWnd->CreatePopup());
    pWnd->m_onAsk = [pWnd] {
        delete pWnd;
        return LRESULT{7};
    };
    HWND hWnd = pWnd->m_hWnd;
    EXPECT_EQ(SendMessageA(hWnd, kAsk, 0, 0), 7);
    EXPECT_FALSE(IsWindow(hWnd));
}

UINT g_nReported = 0;

TEST(WindowTest, ExceptionEndsAtTheWindowProcedure) {
    const auto pfnOld = AfxSetExceptionReporter([](UINT message) { g_nReported = message; });
    CProbeWnd wnd;
    ASSERT_TRUE(wnd.CreatePopup());
    wnd.m_onAsk = []() -> LRESULT { throw std::runtime_error("no"); };
    EXPECT_EQ(wnd.SendMessage(kAsk), 0);
    EXPECT_EQ(g_nReported, kAsk);
    wnd.m_onAsk = [] { return LRESULT{3}; };
    EXPECT_EQ(wnd.SendMessage(kAsk), 3);

    // Painting that fails is not asked for again and again.
    wnd.ShowWindow(SW_SHOWNA);
    wnd.Invalidate();
    wnd.UpdateWindow();
    EXPECT_EQ(g_nReported, UINT{WM_PAINT});
    EXPECT_FALSE(GetUpdateRect(wnd, nullptr, FALSE));
    EXPECT_NE(AfxSetExceptionReporter(pfnOld), pfnOld);
}

TEST(WindowTest, RegisteredMessagesAreReadWhenTheyCome) {
    CProbeWnd wnd;
    ASSERT_TRUE(wnd.CreatePopup());
    g_nRegistered = 0;
    EXPECT_EQ(wnd.SendMessage(WM_NULL, 1, 2), 0);  // an empty variable answers nothing
    g_nRegistered = RegisterWindowMessageA("dlgfw test message");
    EXPECT_EQ(wnd.SendMessage(g_nRegistered, 1, 2), 3);
}

TEST(WindowTest, PermanentObjectsAreThoseOfTheThread) {
    CProbeWnd wnd;
    ASSERT_TRUE(wnd.CreatePopup());
    CWnd* pSeen = &wnd;
    HWND hSeen = nullptr;
    std::thread([&] {
        pSeen = CWnd::FromHandlePermanent(wnd.m_hWnd);
        hSeen = CWnd::FromHandle(wnd.m_hWnd)->m_hWnd;
    }).join();
    EXPECT_EQ(pSeen, nullptr);
    EXPECT_EQ(hSeen, wnd.m_hWnd);
    CWnd second;
    EXPECT_FALSE(second.Attach(wnd.m_hWnd));
    EXPECT_FALSE(second.Attach(nullptr));
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
}

TEST(WindowTest, TemporariesLastUntilTheThreadIsIdle) {
    CProbeWnd wnd;
    ASSERT_TRUE(wnd.CreatePopup());
    HWND hDesktop = GetDesktopWindow();
    CWnd* pOuter = CWnd::FromHandle(hDesktop);  // made outside of any handler
    EXPECT_EQ(CWnd::FromHandlePermanent(hDesktop), nullptr);

    // Temporaries ask nothing of their handles, so made-up ones will do.
    ULONG_PTR nNext = 0x10000;
    wnd.m_onAsk = [&] {
        for (int i = 0; i < 50; ++i) {
            auto* hMadeUp = reinterpret_cast<HWND>(nNext += 2);
            CWnd* pFirst = CWnd::FromHandle(hMadeUp);
            EXPECT_EQ(pFirst->m_hWnd, hMadeUp);
            EXPECT_EQ(CWnd::FromHandle(hMadeUp), pFirst);
        }
        return 0;
    };
    wnd.SendMessage(kAsk);
    const auto before = ResourceCounts::Now();
    for (int i = 0; i < 100; ++i)
        wnd.SendMessage(kAsk);
    EXPECT_LE(ResourceCounts::Now().heapBlocks, before.heapBlocks + 5);
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

class CParentWnd : public CProbeWnd {
public:
    std::vector<UINT> m_calls;

protected:
    afx_msg void OnChange() { m_calls.push_back(EN_CHANGE); }
    afx_msg void OnMenu() { m_calls.push_back(WM_COMMAND); }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CParentWnd, CProbeWnd)
    ON_EN_CHANGE(5, &CParentWnd::OnChange)
    ON_COMMAND(101, &CParentWnd::OnMenu)
END_MESSAGE_MAP()

struct Family {
    Family() {
        EXPECT_TRUE(parent.CreatePopup());
        hEdit = CreateWindowExA(0, "EDIT", "", WS_CHILD, 0, 0, 50, 20, parent,
                                reinterpret_cast<HMENU>(5), nullptr, nullptr);
    }
    CParentWnd parent;
    HWND hEdit;
};

TEST(WindowTest, SubclassedControlAnswersFirst) {
    Family family;
    CDigitEdit edit;
    EXPECT_FALSE(edit.SubclassDlgItem(6, &family.parent));
    ASSERT_TRUE(edit.SubclassDlgItem(5, &family.parent));
    CDigitEdit second;
    EXPECT_FALSE(second.SubclassWindow(family.hEdit));
    EXPECT_EQ(family.parent.GetDlgItem(5), &edit);
    for (const char ch : {'1', 'x', '2'})
        edit.SendMessage(WM_CHAR, static_cast<WPARAM>(ch), 1);
    CString str;
    EXPECT_EQ(family.parent.GetDlgItemText(5, str), 2);
    EXPECT_STREQ(str, "12");
    EXPECT_EQ(family.parent.GetDlgItemText(6, str), 0);
    DestroyWindow(family.hEdit);
    EXPECT_EQ(edit.m_hWnd, nullptr);
    std::thread([&] { EXPECT_FALSE(second.SubclassWindow(family.parent.m_hWnd)); }).join();
}

TEST(WindowTest, SystemChangesReachTheObjectsBelowATopLevelWindow) {
    struct Listening : CStatic {
        LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
            m_nHeard += message == WM_SYSCOLORCHANGE || message == WM_SETTINGCHANGE ? 1 : 0;
            return CStatic::WindowProc(message, wParam, lParam);
        }
        int m_nHeard = 0;
    };
    Family family;
    Listening panel;
    ASSERT_TRUE(panel.Create("", WS_CHILD, kPlace, &family.parent));
    Listening label;
    ASSERT_TRUE(label.Create("", WS_CHILD, kPlace, &panel));
    family.parent.SendMessage(WM_SYSCOLORCHANGE);
    family.parent.SendMessage(WM_SETTINGCHANGE);
    EXPECT_EQ(panel.m_nHeard, 2);
    EXPECT_EQ(label.m_nHeard, 2);
}

TEST(WindowTest, NotificationsGoToTheControlFirstAndThenToTheParent) {
    Family family;
    SetWindowTextA(family.hEdit, "a");
    EXPECT_THAT(std::exchange(family.parent.m_calls, {}), ElementsAre(UINT{EN_CHANGE}));
    CDigitEdit edit;
    ASSERT_TRUE(edit.SubclassWindow(family.hEdit));
    edit.SetWindowText("b");
    EXPECT_EQ(edit.m_nChanges, 1);
    EXPECT_TRUE(family.parent.m_calls.empty());

    // Without a brush the colours are left to the parent's own answer.
    HDC hDC = GetDC(edit);
    const auto color = [&] {
        return family.parent.SendMessage(WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(hDC),
                                         reinterpret_cast<LPARAM>(edit.m_hWnd));
    };
    const LRESULT lStandard = color();
    edit.m_hBrush = static_cast<HBRUSH>(GetStockObject(DKGRAY_BRUSH));
    EXPECT_EQ(color(), reinterpret_cast<LRESULT>(edit.m_hBrush));
    EXPECT_NE(lStandard, reinterpret_cast<LRESULT>(edit.m_hBrush));
    ReleaseDC(edit, hDC);

    family.parent.SendMessage(WM_COMMAND, 101);
    family.parent.SendMessage(WM_COMMAND, 102);
    EXPECT_EQ(family.parent.SendMessage(WM_NOTIFY, 5, 0), 0);  // a header is missing
    EXPECT_THAT(family.parent.m_calls, ElementsAre(UINT{WM_COMMAND}));
}

}  // namespace
}  // namespace mvp::test
