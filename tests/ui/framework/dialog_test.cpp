// CDialog: the modal loop and every way out of it.
#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include <dlgfw/controls.h>
#include <dlgfw/dialog.h>
#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "support/resource_counts.h"
#include "ui/framework/form.h"

namespace mvp::test {
namespace {

TEST(DialogTest, ModalDialogReturnsItsResultAndGivesTheParentBack) {
    CHostWnd host;
    host.SetForegroundWindow();
    for (const int nButton : {IDOK, IDCANCEL}) {
        CFormDlg dlg(&host);
        HWND hWnd = nullptr;
        dlg.m_onInit = [&] {
            hWnd = dlg.m_hWnd;
            EXPECT_FALSE(dlg.IsWindowVisible());
            EXPECT_FALSE(host.IsWindowEnabled());
        };
        dlg.m_onDestroy = [&] {
            EXPECT_TRUE(host.IsWindowEnabled());
            EXPECT_FALSE(dlg.IsWindowVisible());
        };
        DialogDriver driver([&](Dialog& dialog) {
            EXPECT_EQ(dialog.FocusedId(), kFormEdit);
            EXPECT_EQ(GetWindow(dialog.Handle(), GW_OWNER), host.m_hWnd);
            dialog.Click(nButton);
        });
        EXPECT_EQ(dlg.DoModal(), nButton);
        EXPECT_FALSE(IsWindow(hWnd));
        EXPECT_EQ(dlg.m_hWnd, nullptr);
        EXPECT_TRUE(host.IsWindowEnabled());
        EXPECT_EQ(GetActiveWindow(), host.m_hWnd);
    }
}

TEST(DialogTest, ParentThatWasDisabledStaysSo) {
    CHostWnd host;
    host.EnableWindow(FALSE);
    CFormDlg dlg(&host);
    DialogDriver driver([](Dialog& dialog) { dialog.Click(IDOK); });
    EXPECT_EQ(dlg.DoModal(), IDOK);
    EXPECT_FALSE(host.IsWindowEnabled());
}

TEST(DialogTest, ChildAsParentDisablesItsTopLevelWindow) {
    CHostWnd outer;
    CWnd popup;
    ASSERT_TRUE(
        popup.CreateEx(0, nullptr, "popup", WS_POPUP | WS_VISIBLE, CRect(0, 0, 50, 50), &outer, 0));
    CWnd child;
    ASSERT_TRUE(child.Create("STATIC", "", WS_VISIBLE, CRect(0, 0, 9, 9), &popup, 1));
    CFormDlg dlg(&child);
    DialogDriver driver([&](Dialog& dialog) {
        EXPECT_EQ(GetWindow(dialog.Handle(), GW_OWNER), popup.m_hWnd);
        EXPECT_FALSE(popup.IsWindowEnabled());
        EXPECT_FALSE(outer.IsWindowEnabled());
        dialog.Click(IDOK);
    });
    EXPECT_EQ(dlg.DoModal(), IDOK);
    EXPECT_TRUE(popup.IsWindowEnabled());
    EXPECT_TRUE(outer.IsWindowEnabled());
}

TEST(DialogTest, DialogWithoutTemplateDoesNotOpen) {
    DialogDriver noDialog;
    CHostWnd host;
    CDialog by_number(54321u, &host);
    EXPECT_EQ(by_number.DoModal(), -1);
    CDialog empty;
    EXPECT_FALSE(empty.InitModalIndirect(nullptr, &host));
    EXPECT_EQ(empty.DoModal(), -1);
    EXPECT_FALSE(empty.Create(54321u, &host));
    EXPECT_TRUE(host.IsWindowEnabled());
}

TEST(DialogTest, DialogWithDestroyedParentDoesNotOpen) {
    DialogDriver noDialog;
    HWND hGone = nullptr;
    {
        CHostWnd host;
        hGone = host.m_hWnd;
    }
    CWnd* pGone = CWnd::FromHandle(hGone);
    CFormDlg dlg(pGone);
    EXPECT_EQ(dlg.DoModal(), -1);
}

TEST(DialogTest, EndedWhileInitialisingItIsNeverSeen) {
    CHostWnd host;
    CFormDlg dlg(&host);
    dlg.m_onInit = [&] { dlg.EndDialog(77); };
    DialogDriver noDialog;
    EXPECT_EQ(dlg.DoModal(), 77);
    EXPECT_TRUE(host.IsWindowEnabled());
    dlg.m_onInit = [&] { dlg.DestroyWindow(); };
    EXPECT_EQ(dlg.DoModal(), -1);
    EXPECT_TRUE(host.IsWindowEnabled());
}

TEST(DialogTest, NestedDialogsEndInTurn) {
    CHostWnd host;
    CFormDlg outer(&host);
    INT_PTR nInner = 0;
    outer.m_onButton = [&] {
        CWnd* pTemporary = CWnd::FromHandle(GetDesktopWindow());
        CFormDlg inner(&outer);
        nInner = inner.DoModal();
        // What a handler got before it opened a dialog is still good after it.
        EXPECT_EQ(CWnd::FromHandle(GetDesktopWindow()), pTemporary);
    };
    DialogDriver driver([&](Dialog& first) {
        first.Click(kFormButton);
        Dialog second = first.Next();
        EXPECT_FALSE(IsWindowEnabled(first.Handle()));
        second.Click(IDCANCEL);
        second.WaitGone();
        first.WaitUntil("the first is enabled again",
                        [&] { return IsWindowEnabled(first.Handle()) != FALSE; });
        EXPECT_FALSE(host.IsWindowEnabled());
        first.Click(IDOK);
    });
    EXPECT_EQ(outer.DoModal(), IDOK);
    EXPECT_EQ(nInner, IDCANCEL);
}

TEST(DialogTest, QuitEndsEveryLoopAndIsPostedAgain) {
    CFormDlg outer;
    INT_PTR nInner = 0;
    outer.m_onButton = [&] {
        CFormDlg inner(&outer);
        inner.m_onButton = [] { PostQuitMessage(7); };
        nInner = inner.DoModal();
    };
    DialogDriver driver([](Dialog& first) {
        first.Click(kFormButton);
        Dialog second = first.Next();
        PostMessageA(second.Control(kFormButton), BM_CLICK, 0, 0);
        second.WaitGone();
        first.WaitGone();
    });
    EXPECT_EQ(outer.DoModal(), -1);
    EXPECT_EQ(nInner, -1);
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
}

TEST(DialogTest, DestroyingTheOwnerEndsTheDialogsOverIt) {
    auto pHost = std::make_unique<CHostWnd>();
    CFormDlg outer(pHost.get());
    INT_PTR nInner = 0;
    outer.m_onButton = [&] {
        CFormDlg inner(&outer);
        inner.m_onButton = [&] { pHost.reset(); };
        nInner = inner.DoModal();
    };
    DialogDriver driver([](Dialog& first) {
        first.Click(kFormButton);
        Dialog second = first.Next();
        second.Click(kFormButton);
        second.WaitGone();
        first.WaitGone();
    });
    EXPECT_EQ(outer.DoModal(), -1);
    EXPECT_EQ(nInner, -1);
}

TEST(DialogTest, DialogDeletedInItsHandlerIsNotTouchedAgain) {
    CHostWnd host;
    // The window that the dialog disables is the popup's owner.
    CWnd popup;
    ASSERT_TRUE(
        popup.CreateEx(0, nullptr, "popup", WS_POPUP | WS_VISIBLE, CRect(0, 0, 50, 50), &host, 0));
    auto* pDlg = new CFormDlg(&popup);
    pDlg->m_onButton = [pDlg] { delete pDlg; };
    DialogDriver driver([](Dialog& dialog) { dialog.Click(kFormButton); });
    EXPECT_EQ(pDlg->DoModal(), -1);
    EXPECT_TRUE(host.IsWindowEnabled());
}

TEST(DialogTest, ModelessDialogOwnsItself) {
    struct Own final : CFormDlg {
        explicit Own(bool& bDeleted) : m_bDeleted(bDeleted) {}
        ~Own() override { m_bDeleted = true; }
        void OnOK() override { DestroyWindow(); }
        void PostNcDestroy() override { delete this; }
        bool& m_bDeleted;
    };
    CHostWnd host;
    bool bDeleted = false;
    auto* pDlg = new Own(bDeleted);
    ASSERT_TRUE(pDlg->Open(&host));
    EXPECT_FALSE(pDlg->IsWindowVisible());
    EXPECT_TRUE(host.IsWindowEnabled());
    SendMessageA(pDlg->m_hWnd, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(bDeleted);

    bDeleted = false;
    pDlg = new Own(bDeleted);
    pDlg->m_onInit = [] { throw 1; };
    EXPECT_FALSE(pDlg->Open(&host));
    EXPECT_TRUE(bDeleted);
}

UINT g_nReports = 0;

TEST(DialogTest, ThrowingInitialisationAndLoopGiveMinusOne) {
    g_nReports = 0;
    const auto pfnOld = AfxSetExceptionReporter([](UINT) { ++g_nReports; });
    CHostWnd host;
    {
        DialogDriver noDialog;
        CFormDlg dlg(&host);
        dlg.m_onInit = [] { throw 1; };
        EXPECT_EQ(dlg.DoModal(), -1);
        EXPECT_EQ(g_nReports, 1u);
        EXPECT_EQ(dlg.m_hWnd, nullptr);
        EXPECT_TRUE(host.IsWindowEnabled());
    }
    CFormDlg dlg(&host);
    dlg.m_onPreTranslate = [](MSG* pMsg) { return pMsg->message == WM_CHAR ? throw 2 : false; };
    DialogDriver driver([](Dialog& dialog) {
        PostMessageA(dialog.Control(kFormEdit), WM_CHAR, 'x', 0);
        dialog.WaitGone();
    });
    EXPECT_EQ(dlg.DoModal(), -1);
    EXPECT_EQ(g_nReports, 2u);
    EXPECT_TRUE(host.IsWindowEnabled());
    AfxSetExceptionReporter(pfnOld);
}

// Counts one kind of message.
template <class Base, UINT nMessage>
struct Counting : Base {
    using Base::Base;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        m_nCount += message == nMessage ? 1 : 0;
        return Base::WindowProc(message, wParam, lParam);
    }
    std::atomic<int> m_nCount = 0;
};

TEST(DialogTest, SentMessageMayEndTheLoop) {
    Counting<CFormDlg, WM_KICKIDLE> dlg;
    dlg.m_onAsk = [&](WPARAM) {
        dlg.EndDialog(5);
        return 1;
    };
    DialogDriver driver([&](Dialog& dialog) {
        // What is sent from now on arrives while the loop waits for what is posted.
        dialog.WaitUntil("the dialog is idle", [&] { return dlg.m_nCount > 0; });
        SendMessageA(dialog.Handle(), kFormAsk, 0, 0);
    });
    EXPECT_EQ(dlg.DoModal(), 5);
}

// The window is told of its end, or the edit in it is, and the system had no hand in it.
TEST(DialogTest, WhoeverIsToldOfItsEndIsDestroyed) {
    const std::initializer_list<UINT> lies[] = {
        {WM_DESTROY}, {WM_NCDESTROY}, {WM_DESTROY, WM_NCDESTROY}, {WM_NCDESTROY, WM_NCDESTROY}};
    for (const bool bEdit : {false, true}) {
        for (const auto& lie : lies) {
            CHostWnd host;
            CFormDlg dlg(&host);
            CEdit edit;
            HWND hWnd = nullptr;
            HWND hEdit = nullptr;
            int nDestroyed = 0;
            dlg.m_onInit = [&] {
                edit.SubclassDlgItem(kFormEdit, &dlg);
                hEdit = edit.m_hWnd;
                hWnd = dlg.m_hWnd;
            };
            dlg.m_onDestroy = [&] { ++nDestroyed; };
            DialogDriver driver([&](Dialog& dialog) {
                dialog.Run([&] {
                    host.PostMessage(WM_NULL);  // the modal loop has this to do first
                    for (const UINT message : lie)
                        SendMessageA(bEdit ? hEdit : hWnd, message, 0, 0);
                    // What comes after it must not make a success of it.
                    if (!bEdit)
                        SendMessageA(hWnd, WM_COMMAND, IDOK, 0);
                });
            });
            EXPECT_EQ(dlg.DoModal(), -1);
            EXPECT_FALSE(IsWindow(hWnd));
            EXPECT_EQ(dlg.m_hWnd, nullptr);
            EXPECT_EQ(edit.m_hWnd, nullptr);
            EXPECT_GE(nDestroyed, 1);
            EXPECT_TRUE(host.IsWindowEnabled());
            driver.Join();
            ASSERT_FALSE(HasFailure());
        }
    }
}

TEST(DialogTest, ParentIsToldOfIdlenessUnlessTheStyleForbids) {
    for (const DWORD dwStyle : {DWORD{0}, DWORD{DS_NOIDLEMSG}}) {
        Counting<CHostWnd, WM_ENTERIDLE> host;
        Counting<CFormDlg, WM_KICKIDLE> dlg(&host, DialogTemplate::kPopup | dwStyle);
        DialogDriver driver([&](Dialog& dialog) {
            dialog.WaitUntil("the dialog is idle", [&] { return dlg.m_nCount > 0; });
            dialog.Click(IDOK);
        });
        EXPECT_EQ(dlg.DoModal(), IDOK);
        EXPECT_EQ(host.m_nCount > 0, dwStyle == 0);
    }
}

TEST(DialogTest, CreationStepMayTryAgainWithoutTheParent) {
    struct Stubborn : CFormDlg {
        using CFormDlg::CFormDlg;
        BOOL CreateModalWindow(LPCDLGTEMPLATE lpDialogTemplate, ModalParent& parent,
                               HINSTANCE hInst) override {
            EXPECT_TRUE(parent.bReenable);
            ModalParent gone = {reinterpret_cast<HWND>(LONG_PTR{0xDEAD}), FALSE};
            if (CFormDlg::CreateModalWindow(lpDialogTemplate, gone, hInst))
                return TRUE;
            EXPECT_NE(m_nFlags & WF_CONTINUEMODAL, 0u);  // it could not be made
            parent = {nullptr, FALSE};
            return CFormDlg::CreateModalWindow(lpDialogTemplate, parent, hInst);
        }
    };
    CHostWnd host;
    Stubborn dlg(&host);
    DialogDriver driver([](Dialog& dialog) {
        EXPECT_EQ(GetWindow(dialog.Handle(), GW_OWNER), nullptr);
        dialog.Click(IDOK);
    });
    EXPECT_EQ(dlg.DoModal(), IDOK);
    EXPECT_FALSE(host.IsWindowEnabled());
}

TEST(DialogTest, ModalDialogStandsOverItsOwnerUnlessPlaced) {
    constexpr DWORD dwPlain = WS_POPUP | WS_CAPTION | DS_SETFONT;
    CHostWnd host;
    CRect rectHost;
    host.GetWindowRect(rectHost);
    const auto open = [&](DWORD dwStyle, const std::function<void(CFormDlg&)>& onInit) {
        CFormDlg dlg(&host, dwStyle);
        dlg.m_onInit = [&] { onInit(dlg); };
        CRect rect;
        DialogDriver driver([&](Dialog& dialog) {
            rect = dialog.ScreenRect();
            dialog.Click(IDOK);
        });
        EXPECT_EQ(dlg.DoModal(), IDOK);
        return rect;
    };
    const CRect rectCentered = open(dwPlain, [](CFormDlg&) {});
    EXPECT_LE(std::abs(rectCentered.CenterPoint().x - rectHost.CenterPoint().x), 1);
    EXPECT_LE(std::abs(rectCentered.CenterPoint().y - rectHost.CenterPoint().y), 1);
    const CRect rectAtOrigin = open(dwPlain, [](CFormDlg& dlg) {
        dlg.SetWindowPos(nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    });
    EXPECT_EQ(rectAtOrigin.TopLeft(), CPoint(0, 0));
    const CRect rectSmaller = open(dwPlain, [](CFormDlg& dlg) {
        dlg.SetWindowPos(nullptr, 0, 0, 50, 40, SWP_NOMOVE | SWP_NOZORDER);
    });
    EXPECT_LE(std::abs(rectSmaller.CenterPoint().x - rectHost.CenterPoint().x), 1);
    const CRect rectMoved = open(dwPlain, [](CFormDlg& dlg) {
        dlg.SetWindowPos(nullptr, 5, 6, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    });
    EXPECT_EQ(rectMoved.TopLeft(), CPoint(5, 6));
    EXPECT_EQ(open(dwPlain | DS_ABSALIGN, [](CFormDlg&) {}).TopLeft(), CPoint(0, 0));
}

TEST(DialogTest, ThousandDialogsLeaveNothing) {
    CHostWnd host;
    const auto open = [&host] {
        CFormDlg dlg(&host);
        CWnd edit;
        dlg.m_onInit = [&] {
            edit.SubclassDlgItem(kFormEdit, &dlg);
            dlg.PostMessage(WM_COMMAND, IDOK);
        };
        return dlg.DoModal();
    };
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(open(), IDOK);
    const auto before = ResourceCounts::Now();
    const DWORD dwUser = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    const DWORD dwGdi = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(open(), IDOK);
    ExpectNoGrowth(before, ResourceCounts::Now());
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), dwUser);
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), dwGdi);
}

}  // namespace
}  // namespace mvp::test
