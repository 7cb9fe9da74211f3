// What the driver makes of a dialog that goes wrong. That its strokes and clicks arrive whole, and
// that a dialog over another is reached, the tests of the dialogs themselves hold.
#include "support/dialog_driver.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "support/dialog_template.h"

namespace mvp::test {
namespace {

using namespace std::chrono_literals;

int Ask() {
    return MessageBoxA(nullptr, "Sure?", "Plain", MB_OKCANCEL);
}

TEST(DialogDriver, WorksOnTheDialogsThreadAndKeepsAQuitMessage) {
    DialogDriver driver([testThread = GetCurrentThreadId()](Dialog& dialog) {
        dialog.Run([=] { EXPECT_EQ(GetCurrentThreadId(), testThread); });
        EXPECT_THROW(dialog.Run([] { throw std::range_error("out"); }), std::range_error);
        dialog.Run([] { PostQuitMessage(7); });
        dialog.WaitGone();  // the system's own loop ends over it
    });
    Ask();
    driver.Join();
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
}

TEST(DialogDriver, FailsWithTheReasonOfAMistakeAndCancelsTheDialog) {
    const auto clickOk = [](void (*spoil)(HWND)) {
        return [spoil](Dialog& dialog) {
            dialog.Run([&] { spoil(dialog.Control(IDOK)); });
            dialog.Click(IDOK);
        };
    };
    const struct {
        std::vector<Script> scripts;
        const char* pszReason;
    } mistakes[] = {
        {{}, "no script waits for what is open: #32770 \"Plain\""},
        {{[](Dialog&) {}}, "until the dialog \"Plain\" has gone"},
        {{[](Dialog& dialog) { dialog.Next(); }},
         "until a dialog opens; open are: #32770 \"Plain\""},
        {{[](Dialog& dialog) { dialog.Click(9); }}, "no control 9"},
        {{clickOk([](HWND hOk) { EnableWindow(hOk, FALSE); })}, "disabled"},
        {{clickOk([](HWND hOk) { ShowWindow(hOk, SW_HIDE); })}, "hidden"},
        {{[](Dialog& dialog) { dialog.WaitUntil("never", [] { return false; }); }}, "until never"},
        {{[](Dialog&) { throw std::range_error("out of it"); }}, "out of it"},
    };
    for (const auto& mistake : mistakes) {
        int result = 0;
        EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(
            {
                DialogDriver driver(1s, mistake.scripts);
                result = Ask();
            },
            mistake.pszReason);
        EXPECT_EQ(result, IDCANCEL) << mistake.pszReason;
    }
}

// These two are run by the test of endings.
TEST(DialogDriver, DISABLED_FailsFatallyInTheScript) {
    DialogDriver driver([](Dialog&) { FAIL() << "in the script"; });
    EXPECT_EQ(Ask(), IDCANCEL);
}

// Knows no way to be closed from outside.
INT_PTR CALLBACK TakeEveryCommand(HWND, UINT nMessage, WPARAM, LPARAM) {
    return nMessage == WM_COMMAND;
}

TEST(DialogDriver, DISABLED_MeetsAStubbornDialog) {
    DialogDriver driver(1s, {[](Dialog&) {}});
    DialogBoxIndirectParamA(nullptr, DialogTemplate("Plain", {0, 0, 180, 90}).Get(), nullptr,
                            TakeEveryCommand, 0);
}

}  // namespace
}  // namespace mvp::test
