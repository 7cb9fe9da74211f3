// CDialog: the modal loop and every way out of it.
#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>

#include <dlgfw/controls.h>
#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "ui/framework/form.h"

namespace mvp::test {
namespace {

const Script kPressOk = [](Dialog& dialog) { dialog.Click(IDOK); };

// A window that is owned by another one, as a dialog is.
struct Popup : CWnd {
    explicit Popup(CWnd* pOwner) {
        EXPECT_TRUE(
            CreateEx(0, nullptr, "popup", WS_POPUP | WS_VISIBLE, CRect(0, 0, 50, 50), pOwner, 0));
    }
};

class DialogTest : public testing::Test {
protected:
    // What the dialog, which the script serves, ends with. Its window goes, and the host is given
    // back.
    INT_PTR RunModal(CDialog& dlg, const Script& script = kPressOk) {
        DialogDriver driver(script);
        return ExpectEnd(dlg);
    }
    // The same without being seen.
    INT_PTR RunUnseen(CDialog& dlg) {
        DialogDriver noDialog;
        return ExpectEnd(dlg);
    }

    HostWnd m_host;

private:
    INT_PTR ExpectEnd(CDialog& dlg) {
        const INT_PTR result = dlg.DoModal();
        EXPECT_EQ(dlg.m_hWnd, nullptr);
        EXPECT_TRUE(m_host.IsWindowEnabled());
        return result;
    }
};

TEST_F(DialogTest, ModalDialogReturnsItsResultAndGivesTheParentBack) {
    m_host.SetForegroundWindow();
    for (const int button : {IDOK, IDCANCEL}) {
        FormDlg dlg(&m_host);
        HWND window = nullptr;
        dlg.m_onInit = [&] {
            window = dlg.m_hWnd;
            EXPECT_FALSE(dlg.IsWindowVisible());
            EXPECT_FALSE(m_host.IsWindowEnabled());
        };
        dlg.m_onDestroy = [&] {
            EXPECT_TRUE(m_host.IsWindowEnabled());
            EXPECT_FALSE(dlg.IsWindowVisible());
        };
        const INT_PTR result = RunModal(dlg, [&](Dialog& dialog) {
            EXPECT_EQ(dialog.FocusedId(), kFormEdit);
            EXPECT_EQ(GetWindow(dialog.Handle(), GW_OWNER), m_host.m_hWnd);
            dialog.Click(button);
        });
        EXPECT_EQ(result, button);
        EXPECT_FALSE(IsWindow(window));
        EXPECT_EQ(GetActiveWindow(), m_host.m_hWnd);
    }
}

TEST_F(DialogTest, ChildAsParentDisablesItsTopLevelWindowWhichMayBeDisabledAlready) {
    Popup popup(&m_host);
    CWnd child;
    ASSERT_TRUE(child.Create("STATIC", "", WS_VISIBLE, CRect(0, 0, 9, 9), &popup, 1));
    for (const BOOL enabled : {TRUE, FALSE}) {
        popup.EnableWindow(enabled);
        FormDlg dlg(&child);
        const INT_PTR result = RunModal(dlg, [&](Dialog& dialog) {
            EXPECT_EQ(GetWindow(dialog.Handle(), GW_OWNER), popup.m_hWnd);
            EXPECT_FALSE(popup.IsWindowEnabled());
            EXPECT_FALSE(m_host.IsWindowEnabled());
            dialog.Click(IDOK);
        });
        EXPECT_EQ(result, IDOK);
        EXPECT_EQ(popup.IsWindowEnabled(), enabled);
    }
}

TEST_F(DialogTest, DoesNotOpenWithoutTemplateOrParentOrWhenItEndsFirst) {
    CDialog numbered(54321u, &m_host);
    EXPECT_EQ(RunUnseen(numbered), -1);
    CDialog empty;
    EXPECT_FALSE(empty.InitModalIndirect(nullptr, &m_host));
    EXPECT_EQ(RunUnseen(empty), -1);
    EXPECT_FALSE(empty.Create(54321u, &m_host));

    FormDlg dlg(&m_host);
    dlg.m_onInit = [&] { dlg.EndDialog(77); };
    EXPECT_EQ(RunUnseen(dlg), 77);
    dlg.m_onInit = [&] { dlg.DestroyWindow(); };
    EXPECT_EQ(RunUnseen(dlg), -1);

    FormDlg orphan(CWnd::FromHandle(reinterpret_cast<HWND>(LONG_PTR{0xDEAD})));
    EXPECT_EQ(RunUnseen(orphan), -1);
}

// A dialog over another one; what its button does ends one of them or both.
class NestedDialogs : public testing::Test {
protected:
    NestedDialogs() {
        m_outer.m_onButton = [this] {
            CWnd* temporary = CWnd::FromHandle(GetDesktopWindow());
            FormDlg inner(&m_outer);
            inner.m_onButton = m_onInnerButton;
            m_nInner = inner.DoModal();
            // What a handler got before it opened a dialog is still good after it.
            EXPECT_EQ(CWnd::FromHandle(GetDesktopWindow()), temporary);
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

    std::unique_ptr<HostWnd> m_pHost = std::make_unique<HostWnd>();
    FormDlg m_outer{m_pHost.get()};
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

TEST_F(DialogTest, DialogDeletedInItsHandlerIsNotTouchedAgain) {
    Popup popup(&m_host);  // the window that the dialog disables is the popup's owner
    auto* owned = new FormDlg(&popup);
    owned->m_onButton = [owned] { delete owned; };
    DialogDriver driver([](Dialog& dialog) { dialog.Click(kFormButton); });
    EXPECT_EQ(owned->DoModal(), -1);
    EXPECT_TRUE(m_host.IsWindowEnabled());
}

TEST_F(DialogTest, ModelessDialogOwnsItself) {
    struct Own final : FormDlg {
        explicit Own(bool& deleted) : m_bDeleted(deleted) {}
        ~Own() override { m_bDeleted = true; }
        void OnOK() override { DestroyWindow(); }
        void PostNcDestroy() override { delete this; }
        bool& m_bDeleted;
    };
    bool deleted = false;
    auto* owned = new Own(deleted);
    ASSERT_TRUE(owned->Open(&m_host));
    EXPECT_FALSE(owned->IsWindowVisible());
    EXPECT_TRUE(m_host.IsWindowEnabled());
    SendMessageA(owned->m_hWnd, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(deleted);

    deleted = false;
    owned = new Own(deleted);
    owned->m_onInit = [] { throw 1; };
    EXPECT_FALSE(owned->Open(&m_host));
    EXPECT_TRUE(deleted);
}

TEST_F(DialogTest, ThrowingInitialisationAndLoopGiveMinusOne) {
    static unsigned reports = 0;
    const auto oldFunction = AfxSetExceptionReporter([](UINT) { ++reports; });
    FormDlg dlg(&m_host);
    dlg.m_onInit = [] { throw 1; };
    EXPECT_EQ(RunUnseen(dlg), -1);
    EXPECT_EQ(reports, 1u);
    dlg.m_onInit = nullptr;
    dlg.m_onPreTranslate = [](MSG* pMsg) { return pMsg->message == WM_CHAR ? throw 2 : false; };
    const Script type = [](Dialog& dialog) {
        PostMessageA(dialog.Control(kFormEdit), WM_CHAR, 'x', 0);
        dialog.WaitGone();
    };
    EXPECT_EQ(RunModal(dlg, type), -1);
    EXPECT_EQ(reports, 2u);
    AfxSetExceptionReporter(oldFunction);
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

TEST_F(DialogTest, TellsItsParentOfIdlenessUnlessTheStyleForbidsAndMayEndThen) {
    for (const DWORD style : {DWORD{0}, DWORD{DS_NOIDLEMSG}}) {
        Counting<HostWnd, WM_ENTERIDLE> host;
        Counting<FormDlg, WM_KICKIDLE> dlg(&host, DialogTemplate::kPopup | style);
        dlg.m_onButton = [&] { dlg.EndDialog(5); };
        const INT_PTR result = RunModal(dlg, [&](Dialog& dialog) {
            // What is sent from now on arrives while the loop waits for what is posted.
            dialog.WaitUntil("the dialog is idle", [&] { return dlg.m_nCount > 0; });
            SendMessageA(dialog.Handle(), WM_COMMAND, kFormButton, 0);
        });
        EXPECT_EQ(result, 5);
        EXPECT_EQ(host.m_nCount > 0, style == 0);
    }
}

// The window is told of its end, or the edit in it is, and the system had no hand in it.
TEST_F(DialogTest, WhoeverIsToldOfItsEndIsDestroyed) {
    const std::initializer_list<UINT> lies[] = {
        {WM_DESTROY}, {WM_NCDESTROY}, {WM_DESTROY, WM_NCDESTROY}, {WM_NCDESTROY, WM_NCDESTROY}};
    for (int i = 0; i < 8; ++i) {
        SCOPED_TRACE(i);
        const bool toEdit = i >= 4;
        FormDlg dlg(&m_host);
        CEdit edit;
        HWND window = nullptr;
        int destroyed = 0;
        dlg.m_onInit = [&] {
            edit.SubclassDlgItem(kFormEdit, &dlg);
            window = dlg.m_hWnd;
        };
        dlg.m_onDestroy = [&] { ++destroyed; };
        dlg.m_onButton = [&] {
            HWND editHandle = edit.m_hWnd;
            m_host.PostMessage(WM_NULL);  // the modal loop has this to do first
            for (const UINT message : lies[i % 4]) {
                SendMessageA(toEdit ? editHandle : window, message, 0, 0);
            }
            // What comes after it must not make a success of it.
            if (!toEdit) {
                SendMessageA(window, WM_COMMAND, IDOK, 0);
            }
        };
        EXPECT_EQ(RunModal(dlg, [](Dialog& dialog) { dialog.Click(kFormButton); }), -1);
        EXPECT_FALSE(IsWindow(window));
        EXPECT_EQ(edit.m_hWnd, nullptr);
        EXPECT_GE(destroyed, 1);
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(DialogTest, ModalDialogStandsOverItsOwnerUnlessPlaced) {
    constexpr DWORD plain = WS_POPUP | WS_CAPTION | DS_SETFONT;
    // Where it stands after SetWindowPos(..., nFlags) in its initialisation.
    const auto place = [&](DWORD dwStyle, const RECT& to, UINT nFlags) {
        FormDlg dlg(&m_host, dwStyle);
        CRect rect;
        dlg.m_onInit = [&] {
            dlg.SetWindowPos(nullptr, to.left, to.top, to.right, to.bottom, nFlags | SWP_NOZORDER);
        };
        dlg.m_onDestroy = [&] { dlg.GetWindowRect(rect); };
        EXPECT_EQ(RunModal(dlg), IDOK);
        return rect;
    };
    CRect rectHost;
    m_host.GetWindowRect(rectHost);
    const auto isCentered = [&](const CRect& rect) {
        const CPoint is = rect.CenterPoint();
        const CPoint wanted = rectHost.CenterPoint();
        return std::abs(is.x - wanted.x) <= 1 && std::abs(is.y - wanted.y) <= 1;
    };
    EXPECT_TRUE(isCentered(place(plain, {}, SWP_NOSIZE | SWP_NOMOVE)));
    EXPECT_TRUE(isCentered(place(plain, {0, 0, 50, 40}, SWP_NOMOVE)));
    EXPECT_EQ(place(plain, {}, SWP_NOSIZE).TopLeft(), CPoint(0, 0));
    EXPECT_EQ(place(plain, {5, 6, 0, 0}, SWP_NOSIZE).TopLeft(), CPoint(5, 6));
    EXPECT_EQ(place(plain | DS_ABSALIGN, {}, SWP_NOSIZE | SWP_NOMOVE).TopLeft(), CPoint(0, 0));
}

}  // namespace
}  // namespace mvp::test
