#include "support/dialog_driver.h"

#include <stdexcept>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "child_process.h"
#include "plain_dialog.h"

namespace mvp::test {
namespace {

using namespace std::chrono_literals;

using Entry = void (*)(Dialog& dialog, const char* pszText);

class TextEntry : public testing::TestWithParam<Entry> {};

TEST_P(TextEntry, ArrivesWholeBeforeTheNextStep) {
    PlainDialog plain;
    DialogDriver driver([](Dialog& dialog) {
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        GetParam()(dialog, "aB3");
        EXPECT_FALSE(dialog.IsEnabled(IDOK));
        GetParam()(dialog, "!x");
        EXPECT_EQ(dialog.Text(kEdit), "aB3!x");
        EXPECT_TRUE(dialog.IsEnabled(IDOK));
        dialog.Click(IDOK);
    });
    EXPECT_EQ(plain.DoModal(), IDOK);
    driver.Join();
    EXPECT_EQ(plain.strTyped, "aB3!x");
}

INSTANTIATE_TEST_SUITE_P(
    Ways, TextEntry,
    testing::Values(
        +[](Dialog& dialog, const char* pszText) { dialog.Type(kEdit, pszText); },
        +[](Dialog& dialog, const char* pszText) { dialog.Paste(kEdit, pszText); },
        +[](Dialog& dialog, const char* pszText) { dialog.RealType(kEdit, pszText); }));

TEST(DialogDriver, DrivesDialogsInARowAndOneOverAnother) {
    PlainDialog first;
    PlainDialog second;
    second.strTitle = "Second";
    DialogDriver driver(
        [](Dialog& dialog) {
            dialog.Click(kAsk);
            Dialog question = dialog.Next(Titled("Question"));
            EXPECT_FALSE(IsWindowEnabled(dialog.Handle()));
            question.Click(IDYES);
            question.WaitGone();
            dialog.Escape();
        },
        Step(Titled("Second"), [](Dialog& dialog) {
            dialog.Type(kEdit, "1234");
            dialog.Enter();
        }));
    EXPECT_EQ(first.DoModal(), IDCANCEL);
    EXPECT_EQ(first.nAnswer, IDYES);
    EXPECT_EQ(second.DoModal(), IDOK);
    EXPECT_EQ(second.strTyped, "1234");
}

TEST(DialogDriver, FollowsTheFocusOfKeysThroughThePanel) {
    PlainDialog plain;
    DialogDriver driver([](Dialog& dialog) {
        EXPECT_EQ(dialog.FocusedId(), kEdit);
        dialog.Tab();
        EXPECT_EQ(dialog.FocusedId(), kAsk);
        dialog.RealKey(VK_TAB, {VK_SHIFT});
        EXPECT_EQ(dialog.FocusedId(), kEdit);
        dialog.RealKey('R', {VK_MENU});
        EXPECT_EQ(dialog.FocusedId(), kPanelCheck);
        EXPECT_TRUE(dialog.IsChecked(kPanelCheck));

        ASSERT_EQ(dialog.Panels().size(), 1u);
        const Dialog panel = dialog.Panels().front();
        EXPECT_TRUE(panel.Has(kPanelCheck));
        EXPECT_FALSE(panel.Has(kEdit));
        EXPECT_GT(dialog.Rect(kPanelCheck).top, panel.Rect(kPanelCheck).top);
        dialog.RealKey(VK_ESCAPE);
    });
    EXPECT_EQ(plain.DoModal(), IDCANCEL);
}

TEST(DialogDriver, RunsWorkOnTheDialogsThread) {
    PlainDialog plain;
    const DWORD dwTestThread = GetCurrentThreadId();
    DialogDriver driver([&](Dialog& dialog) {
        DWORD dwWorkThread = 0;
        dialog.Run([&] { dwWorkThread = GetCurrentThreadId(); });
        EXPECT_EQ(dwWorkThread, dwTestThread);
        EXPECT_THROW(dialog.Run([] { throw std::range_error("out"); }), std::range_error);
        dialog.Cancel();
    });
    EXPECT_EQ(plain.DoModal(), IDCANCEL);
}

struct Mistake {
    const char* pszName;
    Step step;
    const char* pszReason;
};

class DriverMistake : public testing::TestWithParam<Mistake> {};

TEST_P(DriverMistake, FailsWithItsReasonAndCancelsTheDialog) {
    INT_PTR nResult = 0;
    EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(
        {
            PlainDialog plain;
            DialogDriver driver(1s, GetParam().step);
            nResult = plain.DoModal();
        },
        GetParam().pszReason);
    EXPECT_EQ(nResult, IDCANCEL);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, DriverMistake,
    testing::Values(
        Mistake{"NoSuchDialog", Step(Titled("Other"), [](Dialog&) {}), "#32770 \"Plain\""},
        Mistake{"LeftOpen", Step([](Dialog&) {}), "still open after 1000 ms"},
        Mistake{"NoSuchControl", Step([](Dialog& dialog) { dialog.Click(9); }), "no control 9"},
        Mistake{"DisabledControl", Step([](Dialog& dialog) { dialog.Click(IDOK); }), "disabled"},
        Mistake{"HiddenControl", Step([](Dialog& dialog) { dialog.Click(kHidden); }), "hidden"},
        Mistake{"MissedCondition", Step([](Dialog& dialog) {
                    dialog.WaitUntil("the cows come home", [] { return false; });
                }),
                "until the cows come home"},
        Mistake{"Exception", Step([](Dialog&) { throw std::range_error("out of it"); }),
                "out of it"}),
    [](const auto& mistake) { return mistake.param.pszName; });

// Run by the next test, in a process of its own: a caught failure does not count as one.
TEST(DialogDriver, DISABLED_FailsFatallyInTheScript) {
    PlainDialog plain;
    DialogDriver driver([](Dialog&) { FAIL() << "in the script"; });
    EXPECT_EQ(plain.DoModal(), IDCANCEL);
}

TEST(DialogDriver, CancelsTheDialogOfAScriptThatFailedFatally) {
    const ChildResult result = RunDisabledTest("DialogDriver.DISABLED_FailsFatallyInTheScript");
    EXPECT_EQ(result.dwExitCode, 1u);
    EXPECT_NE(result.strOutput.find("in the script"), std::string::npos) << result.strOutput;
    EXPECT_EQ(result.strOutput.find("dialog driver"), std::string::npos) << result.strOutput;
    EXPECT_EQ(result.strOutput.find("DoModal"), std::string::npos) << result.strOutput;
}

TEST(DialogDriver, WithoutScriptsRefusesEveryDialog) {
    EXPECT_NONFATAL_FAILURE_ON_ALL_THREADS(
        {
            PlainDialog plain;
            DialogDriver noDialog;
            plain.DoModal();
        },
        "no script waits for what is open: #32770 \"Plain\"");
}

// Run by the next test, in a process of its own.
TEST(DialogDriver, DISABLED_MeetsAStubbornDialog) {
    PlainDialog plain;
    plain.bStubborn = true;
    DialogDriver driver(1s, [](Dialog&) {});
    plain.DoModal();
}

TEST(DialogDriver, EndsTheProcessWhenADialogCannotBeCancelled) {
    const ChildResult result = RunDisabledTest("DialogDriver.DISABLED_MeetsAStubbornDialog");
    EXPECT_EQ(result.dwExitCode, 3u);
    EXPECT_NE(result.strOutput.find("still open after 1000 ms"), std::string::npos)
        << result.strOutput;
    EXPECT_NE(result.strOutput.find("\"Plain\" cannot be cancelled"), std::string::npos)
        << result.strOutput;
}

TEST(DialogDriver, KeepsAQuitMessageForTheTest) {
    DialogDriver driver([](Dialog& dialog) {
        dialog.Run([] { PostQuitMessage(7); });
        dialog.Cancel();
    });
    PlainDialog plain;
    plain.DoModal();
    driver.Join();
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
}

}  // namespace
}  // namespace mvp::test
