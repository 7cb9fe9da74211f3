// CDialog: the modal loop and every way out of it.
#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>

#include <dlgfw/controls.h>
#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "support/resource_counts.h"
#include "ui/framework/form.h"

namespace mvp::test {
namespace {

const Script kPressOk = [](Dialog& dialog) { dialog.Click(IDOK); };

// What the dialog ends with when the script has run over it.
INT_PTR RunModal(CDialog& dlg, const Script& script = kPressOk) {
    DialogDriver driver(script);
    return dlg.DoModal();
}

// A window that is owned by another one, as a dialog is.
struct Popup : CWnd {
    explicit Popup(CWnd* pOwner) {
        EXPECT_TRUE(
            CreateEx(0, nullptr, "popup", WS_POPUP | WS_VISIBLE, CRect(0, 0, 50, 50), pOwner, 0));
    }
};

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
        const INT_PTR nResult = RunModal(dlg, [&](Dialog& dialog) {
            EXPECT_EQ(dialog.FocusedId(), kFormEdit);
            EXPECT_EQ(GetWindow(dialog.Handle(), GW_OWNER), host.m_hWnd);
            dialog.Click(nButton);
        });
        EXPECT_EQ(nResult, nButton);
        EXPECT_FALSE(IsWindow(hWnd));
        EXPECT_EQ(dlg.m_hWnd, nullptr);
        EXPECT_TRUE(host.IsWindowEnabled());
        EXPECT_EQ(GetActiveWindow(), host.m_hWnd);
    }
    host.EnableWindow(FALSE);
    CFormDlg dlg(&host);
    EXPECT_EQ(RunModal(dlg), IDOK);
    EXPECT_FALSE(host.IsWindowEnabled()) << "it was disabled before";
}

TEST(DialogTest, ChildAsParentDisablesItsTopLevelWindow) {
    CHostWnd outer;
    Popup popup(&outer);
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

TEST(DialogTest, DoesNotOpenWithoutTemplateOrParentOrWhenItEndsFirst) {
    DialogDriver noDialog;
    CHostWnd host;
    CDialog by_number(54321u, &host);
    EXPECT_EQ(by_number.DoModal(), -1);
    CDialog empty;
    EXPECT_FALSE(empty.InitModalIndirect(nullptr, &host));
    EXPECT_EQ(empty.DoModal(), -1);
    EXPECT_FALSE(empty.Create(54321u, &host));
    EXPECT_TRUE(host.IsWindowEnabled());

    CFormDlg dlg(&host);
    dlg.m_onInit = [&] { dlg.EndDialog(77); };
    EXPECT_EQ(dlg.DoModal(), 77);
    EXPECT_TRUE(host.IsWindowEnabled());
    dlg.m_onInit = [&] { dlg.DestroyWindow(); };
    EXPECT_EQ(dlg.DoModal(), -1);
    EXPECT_TRUE(host.IsWindowEnabled());

    HWND hGone = host.m_hWnd;
    host.DestroyWindow();
    CFormDlg orphan(CWnd::FromHandle(hGone));
    EXPECT_EQ(orphan.DoModal(), -1);
}

// A dialog over another one; what its button does ends one of them or both.
class NestedDialogs : public testing::Test {
protected:
    NestedDialogs() {
        m_outer.m_onButton = [this] {
            CWnd* pTemporary = CWnd::FromHandle(GetDesktopWindow());
            CFormDlg inner(&m_outer);
            inner.m_onButton = m_onInnerButton;
            m_nInner = inner.DoModal();
            // What a handler got before it opened a dialog is still good after it.
            EXPECT_EQ(CWnd::FromHandle(GetDesktopWindow()), pTemporary);
        };
    }
    // Both end, by the inner one's button.
    void ExpectBothEnd() {
        DialogDriver driver([](Dialog& first) {
            first.Click(kFormButton);
            Dialog second = first.Next();
            PostMessageA(second.Control(kFormButton), BM_CLICK, 0, 0);
            second.WaitGone();
            first.WaitGone();
        });
        EXPECT_EQ(m_outer.DoModal(), -1);
        EXPECT_EQ(m_nInner, -1);
    }

    std::unique_ptr<CHostWnd> m_pHost = std::make_unique<CHostWnd>();
    CFormDlg m_outer{m_pHost.get()};
    std::function<void()> m_onInnerButton;
    INT_PTR m_nInner = 0;
};

TEST_F(NestedDialogs, EndInTurn) {
    DialogDriver driver([&](Dialog& first) {
        first.Click(kFormButton);
        Dialog second = first.Next();
        EXPECT_FALSE(IsWindowEnabled(first.Handle()));
        second.Click(IDCANCEL);
        second.WaitGone();
        first.WaitUntil("the first is enabled again",
                        [&] { return IsWindowEnabled(first.Handle()) != FALSE; });
        EXPECT_FALSE(m_pHost->IsWindowEnabled());
        first.Click(IDOK);
    });
    EXPECT_EQ(m_outer.DoModal(), IDOK);
    EXPECT_EQ(m_nInner, IDCANCEL);
}

TEST_F(NestedDialogs, QuitEndsEveryLoopAndIsPostedAgain) {
    m_onInnerButton = [] { PostQuitMessage(7); };
    ExpectBothEnd();
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
}

TEST_F(NestedDialogs, EndWithTheirOwner) {
    m_onInnerButton = [&] { m_pHost.reset(); };
    ExpectBothEnd();
}

TEST(DialogTest, DialogDeletedInItsHandlerIsNotTouchedAgain) {
    CHostWnd host;
    Popup popup(&host);  // the window that the dialog disables is the popup's owner
    auto* pDlg = new CFormDlg(&popup);
    pDlg->m_onButton = [pDlg] { delete pDlg; };
    EXPECT_EQ(RunModal(*pDlg, [](Dialog& dialog) { dialog.Click(kFormButton); }), -1);
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

TEST(DialogTest, ThrowingInitialisationAndLoopGiveMinusOne) {
    static unsigned nReports = 0;
    const auto pfnOld = AfxSetExceptionReporter([](UINT) { ++nReports; });
    CHostWnd host;
    {
        DialogDriver noDialog;
        CFormDlg dlg(&host);
        dlg.m_onInit = [] { throw 1; };
        EXPECT_EQ(dlg.DoModal(), -1);
        EXPECT_EQ(nReports, 1u);
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
    EXPECT_EQ(nReports, 2u);
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

TEST(DialogTest, TellsItsParentOfIdlenessUnlessTheStyleForbidsAndMayEndThen) {
    for (const DWORD dwStyle : {DWORD{0}, DWORD{DS_NOIDLEMSG}}) {
        Counting<CHostWnd, WM_ENTERIDLE> host;
        Counting<CFormDlg, WM_KICKIDLE> dlg(&host, DialogTemplate::kPopup | dwStyle);
        dlg.m_onButton = [&] { dlg.EndDialog(5); };
        DialogDriver driver([&](Dialog& dialog) {
            // What is sent from now on arrives while the loop waits for what is posted.
            dialog.WaitUntil("the dialog is idle", [&] { return dlg.m_nCount > 0; });
            SendMessageA(dialog.Handle(), WM_COMMAND, kFormButton, 0);
        });
        EXPECT_EQ(dlg.DoModal(), 5);
        EXPECT_EQ(host.m_nCount > 0, dwStyle == 0);
    }
}

// The window is told of its end, or the edit in it is, and the system had no hand in it.
TEST(DialogTest, WhoeverIsToldOfItsEndIsDestroyed) {
    const std::initializer_list<UINT> lies[] = {
        {WM_DESTROY}, {WM_NCDESTROY}, {WM_DESTROY, WM_NCDESTROY}, {WM_NCDESTROY, WM_NCDESTROY}};
    for (int i = 0; i < 8; ++i) {
        SCOPED_TRACE(i);
        const bool bEdit = i >= 4;
        CHostWnd host;
        CFormDlg dlg(&host);
        CEdit edit;
        HWND hWnd = nullptr;
        int nDestroyed = 0;
        dlg.m_onInit = [&] {
            edit.SubclassDlgItem(kFormEdit, &dlg);
            hWnd = dlg.m_hWnd;
        };
        dlg.m_onDestroy = [&] { ++nDestroyed; };
        dlg.m_onButton = [&] {
            HWND hEdit = edit.m_hWnd;
            host.PostMessage(WM_NULL);  // the modal loop has this to do first
            for (const UINT message : lies[i % 4])
                SendMessageA(bEdit ? hEdit : hWnd, message, 0, 0);
            // What comes after it must not make a success of it.
            if (!bEdit)
                SendMessageA(hWnd, WM_COMMAND, IDOK, 0);
        };
        EXPECT_EQ(RunModal(dlg, [](Dialog& dialog) { dialog.Click(kFormButton); }), -1);
        EXPECT_FALSE(IsWindow(hWnd));
        EXPECT_EQ(dlg.m_hWnd, nullptr);
        EXPECT_EQ(edit.m_hWnd, nullptr);
        EXPECT_GE(nDestroyed, 1);
        EXPECT_TRUE(host.IsWindowEnabled());
        ASSERT_FALSE(HasFailure());
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
    // Where it stands after SetWindowPos(..., nFlags) in its initialisation.
    const auto place = [&](DWORD dwStyle, const RECT& to, UINT nFlags) {
        CFormDlg dlg(&host, dwStyle);
        CRect rect;
        dlg.m_onInit = [&] {
            dlg.SetWindowPos(nullptr, to.left, to.top, to.right, to.bottom, nFlags | SWP_NOZORDER);
        };
        dlg.m_onDestroy = [&] { dlg.GetWindowRect(rect); };
        EXPECT_EQ(RunModal(dlg), IDOK);
        return rect;
    };
    CRect rectHost;
    host.GetWindowRect(rectHost);
    const auto isCentered = [&](const CRect& rect) {
        const CPoint is = rect.CenterPoint();
        const CPoint wanted = rectHost.CenterPoint();
        return std::abs(is.x - wanted.x) <= 1 && std::abs(is.y - wanted.y) <= 1;
    };
    EXPECT_TRUE(isCentered(place(dwPlain, {}, SWP_NOSIZE | SWP_NOMOVE)));
    EXPECT_TRUE(isCentered(place(dwPlain, {0, 0, 50, 40}, SWP_NOMOVE)));
    EXPECT_EQ(place(dwPlain, {}, SWP_NOSIZE).TopLeft(), CPoint(0, 0));
    EXPECT_EQ(place(dwPlain, {5, 6, 0, 0}, SWP_NOSIZE).TopLeft(), CPoint(5, 6));
    EXPECT_EQ(place(dwPlain | DS_ABSALIGN, {}, SWP_NOSIZE | SWP_NOMOVE).TopLeft(), CPoint(0, 0));
}

TEST(DialogTest, ThousandDialogsLeaveNothing) {
    CHostWnd host;
    ExpectRoundsKeepNothing(20, 1000, [&host](int) {
        CFormDlg dlg(&host);
        CWnd edit;
        dlg.m_onInit = [&] {
            edit.SubclassDlgItem(kFormEdit, &dlg);
            dlg.PostMessage(WM_COMMAND, IDOK);
        };
        EXPECT_EQ(dlg.DoModal(), IDOK);
    });
}

}  // namespace
}  // namespace mvp::test
