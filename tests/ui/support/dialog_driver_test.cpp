#include "support/dialog_driver.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "support/dialog_template.h"

namespace mvp::test {
namespace {

using namespace std::chrono_literals;

constexpr int kEdit = 1001;
constexpr int kAsk = 1002;
constexpr int kHidden = 1003;

// A dialog of the bare system: an edit, OK (enabled from four characters on), Cancel, and a button
// that opens a message box.
struct PlainDialog {
    bool bStubborn = false;  // knows no way to be closed from outside
    INT_PTR nAnswer = 0;     // of the message box

    INT_PTR DoModal() {
        DialogTemplate form("Plain", {0, 0, 180, 90});
        form.Add("EDIT", kEdit, "", {7, 7, 120, 14}, WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL)
            .Add("BUTTON", kAsk, "&Ask", {130, 7, 40, 14}, WS_TABSTOP)
            .Add("BUTTON", kHidden, "Hidden", {130, 25, 40, 14}, WS_TABSTOP, false)
            .Add("BUTTON", IDOK, "OK", {7, 70, 50, 14}, BS_DEFPUSHBUTTON | WS_DISABLED | WS_TABSTOP)
            .Add("BUTTON", IDCANCEL, "Cancel", {67, 70, 50, 14}, WS_TABSTOP);
        return DialogBoxIndirectParamA(nullptr, form.Get(), nullptr, Proc,
                                       reinterpret_cast<LPARAM>(this));
    }

private:
    static INT_PTR CALLBACK Proc(HWND hDialog, UINT nMessage, WPARAM wParam, LPARAM lParam) {
        if (nMessage == WM_INITDIALOG) {
            SetWindowLongPtrA(hDialog, DWLP_USER, lParam);
            return TRUE;
        }
        auto* self = reinterpret_cast<PlainDialog*>(GetWindowLongPtrA(hDialog, DWLP_USER));
        const WORD id = nMessage == WM_COMMAND ? LOWORD(wParam) : WORD{0};
        if (id == kEdit) {
            EnableWindow(GetDlgItem(hDialog, IDOK),
                         SendDlgItemMessageA(hDialog, kEdit, WM_GETTEXTLENGTH, 0, 0) >= 4);
        } else if (id == kAsk) {
            self->nAnswer = MessageBoxA(hDialog, "Sure?", "Question", MB_YESNO);
        } else if (id != 0 && !self->bStubborn) {
            EndDialog(hDialog, id);
        }
        return id != 0;
    }
};

TEST(DialogDriver, ActsAndReturnsWhenTheDialogHasActed) {
    PlainDialog plain;
    DialogDriver driver([testThread = GetCurrentThreadId()](Dialog& dialog) {
        dialog.Type(kEdit, "aB3");
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        dialog.RealType(kEdit, "!X");
        EXPECT_TRUE(dialog.IsEnabled(IDOK));
        dialog.Paste(kEdit, "x");
        EXPECT_EQ(dialog.Text(kEdit), "aB3!Xx");
        dialog.RealKey('A', {VK_MENU});
        Dialog question = dialog.Next();
        EXPECT_EQ(question.Title(), "Question");
        EXPECT_FALSE(IsWindowEnabled(dialog.Handle()));
        question.Click(IDYES);
        question.WaitGone();

        dialog.Run([=] { EXPECT_EQ(GetCurrentThreadId(), testThread); });
        EXPECT_THROW(dialog.Run([] { throw std::range_error("out"); }), std::range_error);
        dialog.Run([] { PostQuitMessage(7); });
        dialog.WaitGone();  // the system's own loop ends over it
    });
    plain.DoModal();
    driver.Join();
    EXPECT_EQ(plain.nAnswer, IDYES);
    // Kept for whoever reads the thread's messages next.
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
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
    PlainDialog{.bStubborn = true}.DoModal();
}

}  // namespace
}  // namespace mvp::test
