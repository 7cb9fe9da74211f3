#include "support/dialog_driver.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "support/caps_lock.h"
#include "support/dialog_template.h"

namespace mvp::test {
namespace {

using namespace std::chrono_literals;

constexpr int kEdit = 1001;
constexpr int kAsk = 1002;
constexpr int kPanelCheck = 1003;
constexpr int kHidden = 1004;

// A dialog of the bare system: an edit, OK (enabled from four characters on), Cancel, a button that
// opens a message box, and a panel with a control of its own.
struct PlainDialog {
    std::string strTitle = "Plain";
    bool bStubborn = false;  // knows no way to be closed from outside
    std::string strTyped;    // what the edit held at OK
    INT_PTR nAnswer = 0;     // of the message box

    INT_PTR DoModal() {
        DialogTemplate form(strTitle, {0, 0, 180, 90});
        form.Add("EDIT", kEdit, "", {7, 7, 120, 14}, WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL)
            .Add("BUTTON", kAsk, "&Ask", {130, 7, 40, 14}, WS_TABSTOP)
            .Add("BUTTON", kHidden, "Hidden", {130, 25, 40, 14}, WS_TABSTOP, false)
            .Add("BUTTON", IDOK, "OK", {7, 70, 50, 14}, BS_DEFPUSHBUTTON | WS_DISABLED | WS_TABSTOP)
            .Add("BUTTON", IDCANCEL, "Cancel", {67, 70, 50, 14}, WS_TABSTOP);
        return DialogBoxIndirectParamA(nullptr, form.Get(), nullptr, Proc,
                                       reinterpret_cast<LPARAM>(this));
    }

private:
    void OnCommand(HWND hDialog, WORD wId) {
        char text[64] = {};
        GetDlgItemTextA(hDialog, kEdit, text, sizeof text);
        if (wId == kEdit) {
            EnableWindow(GetDlgItem(hDialog, IDOK), strlen(text) >= 4);
        } else if (wId == kAsk) {
            nAnswer = MessageBoxA(hDialog, "Sure?", "Question", MB_YESNO);
        } else if (!bStubborn) {
            strTyped = text;
            EndDialog(hDialog, wId);
        }
    }

    static INT_PTR CALLBACK PanelProc(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

    static INT_PTR CALLBACK Proc(HWND hDialog, UINT nMessage, WPARAM wParam, LPARAM lParam) {
        if (nMessage == WM_INITDIALOG) {
            SetWindowLongPtrA(hDialog, DWLP_USER, lParam);
            DialogTemplate panel("", {7, 30, 100, 30}, DialogTemplate::kChild, WS_EX_CONTROLPARENT);
            panel.Add("BUTTON", kPanelCheck, "&Remember", {2, 2, 80, 12},
                      BS_AUTOCHECKBOX | WS_TABSTOP);
            CreateDialogIndirectParamA(nullptr, panel.Get(), hDialog, PanelProc, 0);
        } else if (nMessage == WM_COMMAND) {
            reinterpret_cast<PlainDialog*>(GetWindowLongPtrA(hDialog, DWLP_USER))
                ->OnCommand(hDialog, LOWORD(wParam));
        }
        return nMessage == WM_INITDIALOG || nMessage == WM_COMMAND;
    }
};

TEST(DialogDriver, TextArrivesWholeBeforeTheNextStep) {
    using Entry = void (*)(Dialog & dialog, const char* pszText);
    for (const Entry enter : {
             Entry{[](Dialog&d, const char*pszText) { d.Type(kEdit, pszText); }},
             Entry{[](Dialog&d, const char*pszText) { d.Paste(kEdit, pszText); }},
             Entry{[](Dialog&d, const char*pszText) { d.RealType(kEdit, pszText); }},
         }) {
        PlainDialog plain;
        DialogDriver driver([enter](Dialog& dialog) {
            enter(dialog, "aB3");
            EXPECT_FALSE(dialog.IsEnabled(IDOK));
            enter(dialog, "!x");
            EXPECT_EQ(dialog.Text(kEdit), "aB3!x");
            EXPECT_TRUE(dialog.IsEnabled(IDOK));
            dialog.Click(IDOK);
        });
        EXPECT_EQ(plain.DoModal(), IDOK);
        driver.Join();
        EXPECT_EQ(plain.strTyped, "aB3!x");
    }
}

TEST(DialogDriver, DrivesDialogsInARowAndOneOverAnother) {
    PlainDialog first;
    PlainDialog second;
    second.strTitle = "Second";
    DialogDriver driver(
        [](Dialog& dialog) {
            dialog.Click(kAsk);
            Dialog question = dialog.Next();
            EXPECT_EQ(question.Title(), "Question");
            EXPECT_FALSE(IsWindowEnabled(dialog.Handle()));
            question.Click(IDYES);
            question.WaitGone();
            dialog.Escape();
        },
        [](Dialog& dialog) {
            EXPECT_EQ(dialog.Title(), "Second");
            dialog.Type(kEdit, "1234");
            dialog.Enter();
        });
    EXPECT_EQ(first.DoModal(), IDCANCEL);
    EXPECT_EQ(first.nAnswer, IDYES);
    EXPECT_EQ(second.DoModal(), IDOK);
    EXPECT_EQ(second.strTyped, "1234");
}

TEST(DialogDriver, FollowsTheFocusOfKeysThroughThePanelAndRunsWorkThere) {
    DialogDriver driver([testThread = GetCurrentThreadId()](Dialog& dialog) {
        EXPECT_EQ(dialog.FocusedId(), kEdit);
        dialog.Tab();
        EXPECT_EQ(dialog.FocusedId(), kAsk);
        dialog.RealKey(VK_TAB, {VK_SHIFT});
        EXPECT_EQ(dialog.FocusedId(), kEdit);
        dialog.RealKey('R', {VK_MENU});
        EXPECT_EQ(dialog.FocusedId(), kPanelCheck);
        EXPECT_TRUE(dialog.IsChecked(kPanelCheck));
        EXPECT_GT(dialog.Rect(kPanelCheck).top, dialog.Rect(kAsk).bottom);

        dialog.Run([=] { EXPECT_EQ(GetCurrentThreadId(), testThread); });
        EXPECT_THROW(dialog.Run([] { throw std::range_error("out"); }), std::range_error);
        dialog.RealKey(VK_ESCAPE);
    });
    EXPECT_EQ(PlainDialog().DoModal(), IDCANCEL);
}

TEST(DialogDriver, FailsWithTheReasonOfAMistakeAndCancelsTheDialog) {
    const struct {
        std::vector<Script> scripts;
        const char* pszReason;
    } mistakes[] = {
        {{}, "no script waits for what is open: #32770 \"Plain\""},
        {{[](Dialog&) {}}, "until the dialog \"Plain\" has gone"},
        {{[](Dialog& dialog) { dialog.Next(); }},
         "until a dialog opens; open are: #32770 \"Plain\""},
        {{[](Dialog& dialog) { dialog.Click(9); }}, "no control 9"},
        {{[](Dialog& dialog) { dialog.Click(IDOK); }}, "disabled"},
        {{[](Dialog& dialog) { dialog.Click(kHidden); }}, "hidden"},
        {{[](Dialog& dialog) { dialog.WaitUntil("never", [] { return false; }); }}, "until never"},
        {{[](Dialog&) { throw std::range_error("out of it"); }}, "out of it"},
    };
    for (const auto& mistake : mistakes) {
        INT_PTR result = 0;
        EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(
            {
                DialogDriver driver(1s, mistake.scripts);
                result = PlainDialog().DoModal();
            },
            mistake.pszReason);
        EXPECT_EQ(result, IDCANCEL) << mistake.pszReason;
    }
}

// These two are run by the test of endings.
TEST(DialogDriver, DISABLED_FailsFatallyInTheScript) {
    DialogDriver driver([](Dialog&) { FAIL() << "in the script"; });
    EXPECT_EQ(PlainDialog().DoModal(), IDCANCEL);
}

TEST(DialogDriver, DISABLED_MeetsAStubbornDialog) {
    DialogDriver driver(1s, {[](Dialog&) {}});
    PlainDialog plain;
    plain.bStubborn = true;
    plain.DoModal();
}

TEST(DialogDriver, KeepsAQuitMessageForTheTest) {
    DialogDriver driver([](Dialog& dialog) {
        dialog.Run([] { PostQuitMessage(7); });
        dialog.WaitGone();  // the system's own loop ends over it
    });
    PlainDialog().DoModal();
    driver.Join();
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
}

TEST(CapsLock, ActsOnTypingAndIsPutBack) {
    const bool before = CapsLock::IsOn();
    {
        const CapsLock capsLock(!before);
        DialogDriver driver([&](Dialog& dialog) {
            dialog.RealType(kEdit, "abCD");
            EXPECT_EQ(dialog.Text(kEdit), before ? "abCD" : "ABcd");
            dialog.Cancel();
        });
        PlainDialog().DoModal();
    }
    EXPECT_EQ(CapsLock::IsOn(), before);
}

}  // namespace
}  // namespace mvp::test
