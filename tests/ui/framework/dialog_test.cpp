// CDialog: the modal loop and every way out of it.
#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <tuple>

#include <dlgfw/controls.h>
#include <dlgfw/data_exchange.h>
#include <dlgfw/dialog.h>
#include <dlgfw/message_map.h>
#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "support/dialog_template.h"

namespace mvp::test {
namespace {

constexpr int kFormEdit = 1001;
constexpr int kFormButton = 1002;

// The dialog that these tests open, and what each test does in its handlers.
class FormDlg : public CDialog {
public:
    explicit FormDlg(CWnd* pParent = nullptr, DWORD dwStyle = DialogTemplate::kPopup)
        : m_template("Form", {0, 0, 180, 60}, dwStyle) {
        m_template.Add("EDIT", kFormEdit, "", {7, 7, 100, 14}, WS_BORDER | WS_TABSTOP)
            .Add("BUTTON", kFormButton, "&Go", {120, 7, 50, 14}, WS_TABSTOP)
            .Add("BUTTON", IDOK, "OK", {7, 40, 50, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP)
            .Add("BUTTON", IDCANCEL, "Cancel", {67, 40, 50, 14}, WS_TABSTOP);
        InitModalIndirect(m_template.Get(), pParent);
    }
    BOOL Open(CWnd* pParent) { return CreateIndirect(m_template.Get(), pParent); }  // modeless

    std::function<void()> m_onInit = [] {};
    std::function<void()> m_onButton;
    std::function<void()> m_onDestroy = [] {};
    std::function<void(CDataExchange*)> m_onExchange = [](CDataExchange*) {};
    bool m_bLoopThrows = false;
    int m_nChanges = 0;
    std::atomic<int> m_nIdle = 0;

    BOOL PreTranslateMessage(MSG* pMsg) override {
        return m_bLoopThrows && pMsg->message == WM_CHAR ? throw 2
                                                         : CDialog::PreTranslateMessage(pMsg);
    }

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        m_nIdle += message == WM_KICKIDLE ? 1 : 0;
        message == WM_DESTROY ? m_onDestroy() : void();
        return CDialog::WindowProc(message, wParam, lParam);
    }
    BOOL OnInitDialog() override {
        const BOOL setFocus = CDialog::OnInitDialog();
        m_onInit();
        return setFocus;
    }
    void DoDataExchange(CDataExchange* pDX) override { m_onExchange(pDX); }
    afx_msg void OnButton() {
        const auto onButton = m_onButton;  // the dialog may go meanwhile, and its function with it
        onButton();
    }
    afx_msg void OnChange() { ++m_nChanges; }
    DECLARE_MESSAGE_MAP()

private:
    DialogTemplate m_template;
};

BEGIN_MESSAGE_MAP(FormDlg, CDialog)
    ON_BN_CLICKED(kFormButton, &FormDlg::OnButton)
    ON_EN_CHANGE(kFormEdit, &FormDlg::OnChange)
END_MESSAGE_MAP()

// A visible window to be a parent, or one that has an owner itself.
struct HostWnd : CWnd {
    explicit HostWnd(CWnd* pOwner = nullptr) {
        EXPECT_TRUE(CreateEx(0, nullptr, "host", WS_POPUP | WS_CAPTION | WS_VISIBLE,
                             CRect(100, 100, 800, 700), pOwner, 0));
    }
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        m_nIdle += message == WM_ENTERIDLE ? 1 : 0;
        return CWnd::WindowProc(message, wParam, lParam);
    }
    std::atomic<int> m_nIdle = 0;
};

class DialogTest : public testing::Test {
protected:
    // What the dialog, which the script serves, ends with; without one it is not seen. Its window
    // goes, and the host is given back.
    template <class... Scripts>
    INT_PTR Run(CDialog& dlg, const Scripts&... script) {
        const DialogDriver driver(script...);
        const INT_PTR result = dlg.DoModal();
        EXPECT_EQ(dlg.m_hWnd, nullptr);
        EXPECT_TRUE(m_host.IsWindowEnabled());
        return result;
    }

    HostWnd m_host;
};

TEST_F(DialogTest, DisablesAndGivesBackItsParentWhichMayBeAChildOrDisabledAlready) {
    HostWnd popup(&m_host);
    CWnd child;
    ASSERT_TRUE(child.Create("STATIC", "", WS_VISIBLE, CRect(0, 0, 9, 9), &popup, 1));
    const auto show = [&](CWnd& parent, CWnd& owner) {
        const BOOL enabled = owner.IsWindowEnabled();
        FormDlg dlg(&parent);
        dlg.m_onInit = [&] { EXPECT_FALSE(dlg.IsWindowVisible() || m_host.IsWindowEnabled()); };
        dlg.m_onDestroy = [&] {
            EXPECT_EQ(owner.IsWindowEnabled(), enabled);
            EXPECT_FALSE(dlg.IsWindowVisible());
        };
        const auto look = [&](Dialog& dialog) {
            EXPECT_EQ(dialog.FocusedId(), kFormEdit);
            EXPECT_EQ(GetWindow(dialog.Handle(), GW_OWNER), owner.m_hWnd);
            EXPECT_FALSE(owner.IsWindowEnabled() || m_host.IsWindowEnabled());
            dialog.Click(IDOK);
        };
        EXPECT_EQ(Run(dlg, look), IDOK);
        EXPECT_EQ(owner.IsWindowEnabled(), enabled);
        EXPECT_TRUE(GetActiveWindow() == owner.m_hWnd || !enabled);
    };
    show(child, popup);
    popup.EnableWindow(FALSE);
    show(child, popup);
    popup.DestroyWindow();
    m_host.SetForegroundWindow();
    show(m_host, m_host);
}

TEST_F(DialogTest, DoesNotOpenWithoutTemplateOrParentOrWhenItEndsFirst) {
    CDialog numbered(54321u, &m_host);
    EXPECT_EQ(Run(numbered), -1);
    CDialog empty;
    EXPECT_FALSE(empty.InitModalIndirect(nullptr, &m_host));
    EXPECT_EQ(Run(empty), -1);
    EXPECT_FALSE(empty.Create(54321u, &m_host));

    FormDlg dlg(&m_host);
    dlg.m_onInit = [&] { dlg.EndDialog(77); };
    EXPECT_EQ(Run(dlg), 77);
    dlg.m_onInit = [&] { dlg.DestroyWindow(); };
    EXPECT_EQ(Run(dlg), -1);

    FormDlg orphan(CWnd::FromHandle(reinterpret_cast<HWND>(LONG_PTR{0xDEAD})));
    EXPECT_EQ(Run(orphan), -1);
}

// One that is missing at first ends the new dialog, which the library's own dialogs are tested for.
TEST_F(DialogTest, ExchangesTextsAndStaysOpenWhereAControlIsMissing) {
    FormDlg dlg(&m_host);
    CString text = "Ann";
    CEdit edit;
    int from = kFormEdit;
    dlg.m_onExchange = [&](CDataExchange* pDX) {
        DDX_Control(pDX, kFormEdit, edit);
        DDX_Text(pDX, from, text);
    };
    const auto enter = [&](Dialog& dialog) {
        EXPECT_EQ(dlg.m_nChanges, 0);  // filling the controls is no change of the user's
        EXPECT_EQ(dialog.Text(kFormEdit), "Ann");
        dialog.Type(kFormEdit, "abel");
        dialog.Run([&] { from = 4711; });
        dialog.Click(IDOK);
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_STREQ(text, "Ann");
        dialog.Run([&] { from = kFormEdit; });
        dialog.Click(IDOK);
    };
    EXPECT_EQ(Run(dlg, enter), IDOK);
    EXPECT_STREQ(text, "Annabel");
    EXPECT_GT(dlg.m_nChanges, 0);
    EXPECT_EQ(edit.m_hWnd, nullptr);
    EXPECT_FALSE(dlg.UpdateData(TRUE));  // no window any more
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
            second.Click(kFormButton);
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
    HostWnd popup(&m_host);  // the window that the dialog disables is the popup's owner
    auto* owned = new FormDlg(&popup);
    owned->m_onButton = [owned] { delete owned; };
    DialogDriver driver([](Dialog& dialog) { dialog.Click(kFormButton); });
    EXPECT_EQ(owned->DoModal(), -1);
    EXPECT_TRUE(m_host.IsWindowEnabled());
}

TEST_F(DialogTest, ModelessDialogOwnsItself) {
    static bool deleted;
    struct Own final : FormDlg {
        ~Own() override { deleted = true; }
        void OnOK() override { DestroyWindow(); }
        void PostNcDestroy() override { delete this; }
    };
    deleted = false;
    auto* owned = new Own;
    ASSERT_TRUE(owned->Open(&m_host));
    EXPECT_FALSE(owned->IsWindowVisible());
    EXPECT_TRUE(m_host.IsWindowEnabled());
    SendMessageA(owned->m_hWnd, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(deleted);

    deleted = false;
    owned = new Own;
    owned->m_onInit = [] { throw 1; };
    EXPECT_FALSE(owned->Open(&m_host));
    EXPECT_TRUE(deleted);
}

// What its initialisation throws, the tests of the library's dialogs hold.
TEST_F(DialogTest, ThrowingLoopGivesMinusOne) {
    static unsigned reports = 0;
    const auto oldFunction = AfxSetExceptionReporter([](UINT) { ++reports; });
    FormDlg dlg(&m_host);
    dlg.m_bLoopThrows = true;
    EXPECT_EQ(Run(dlg, [](Dialog& d) { PostMessageA(d.Control(kFormEdit), WM_CHAR, 'x', 0); }), -1);
    EXPECT_EQ(reports, 1u);
    AfxSetExceptionReporter(oldFunction);
}

TEST_F(DialogTest, TellsItsParentOfIdlenessUnlessTheStyleForbidsAndMayEndThen) {
    for (const DWORD style : {DWORD{0}, DWORD{DS_NOIDLEMSG}}) {
        FormDlg dlg(&m_host, DialogTemplate::kPopup | style);
        dlg.m_onButton = [&] { dlg.EndDialog(5); };
        m_host.m_nIdle = 0;
        const auto end = [&](Dialog& dialog) {
            // What is sent from now on arrives while the loop waits for what is posted.
            dialog.WaitUntil("the dialog is idle", [&] { return dlg.m_nIdle > 0; });
            SendMessageA(dialog.Handle(), WM_COMMAND, kFormButton, 0);
        };
        EXPECT_EQ(Run(dlg, end), 5);
        EXPECT_EQ(m_host.m_nIdle > 0, style == 0);
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
        EXPECT_EQ(Run(dlg, [](Dialog& dialog) { dialog.Click(kFormButton); }), -1);
        EXPECT_FALSE(IsWindow(window));
        EXPECT_EQ(edit.m_hWnd, nullptr);
        EXPECT_GE(destroyed, 1);
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(DialogTest, ModalDialogStandsOverItsOwnerUnlessPlaced) {
    constexpr DWORD plain = WS_POPUP | WS_CAPTION | DS_SETFONT;
    CRect rectHost;
    m_host.GetWindowRect(rectHost);
    // What its initialisation asks for by SetWindowPos, and whether it is centred.
    const std::tuple<DWORD, RECT, UINT, bool> cases[] = {
        {plain, {}, SWP_NOSIZE | SWP_NOMOVE, true},
        {plain, {0, 0, 50, 40}, SWP_NOMOVE, true},
        {plain, {}, SWP_NOSIZE, false},
        {plain, {5, 6, 0, 0}, SWP_NOSIZE, false},
        {plain | DS_ABSALIGN, {}, SWP_NOSIZE | SWP_NOMOVE, false}};
    for (const auto& [style, to, flags, centered] : cases) {
        FormDlg dlg(&m_host, style);
        CRect rect;
        dlg.m_onInit = [&, &to = to, &flags = flags] {
            dlg.SetWindowPos(nullptr, to.left, to.top, to.right, to.bottom, flags | SWP_NOZORDER);
        };
        dlg.m_onDestroy = [&] { dlg.GetWindowRect(rect); };
        EXPECT_EQ(Run(dlg, [](Dialog& dialog) { dialog.Click(IDOK); }), IDOK);
        const CPoint from = centered ? rect.CenterPoint() : rect.TopLeft();
        const CPoint wanted = centered ? rectHost.CenterPoint() : CPoint(to.left, to.top);
        EXPECT_LE(std::abs(from.x - wanted.x) + std::abs(from.y - wanted.y), centered ? 2 : 0);
    }
}

}  // namespace
}  // namespace mvp::test
