// How a test program ends when a test goes wrong: in a process of its own each, for a failure that
// was expected does not count as one.
#include <cstdlib>

#include <gtest/gtest.h>

#include "child_process.h"
#include "common/crash_exit.h"

namespace mvp::test {
namespace {

TEST(Endings, DISABLED_Crashes) {
    EndWithCodeOnCrash(4, "the last words");
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
}

TEST(Endings, DISABLED_WritesBehindABlock) {
    auto* block = static_cast<volatile char*>(std::malloc(24));
    // Through a variable: the compiler knows the block's size.
    volatile size_t behind = 24;
    block[behind] = 'x';
    // Left as it is, for the check to find.
}  // NOLINT(clang-analyzer-unix.Malloc)

TEST(Endings, TellWhatWentWrong) {
    const struct {
        const char* pszTest;
        DWORD dwExitCode;
        const char* pszReason;
        const char* pszMore;
    } endings[] = {
        {"Endings.DISABLED_Crashes", 4, "crashed: exception 0xC0000005", "the last words"},
        {"Endings.DISABLED_WritesBehindABlock", 1, "a heap is damaged after", ""},
        {"DialogDriver.DISABLED_FailsFatallyInTheScript", 1, "in the script", ""},
        {"DialogDriver.DISABLED_MeetsAStubbornDialog", 3, "\"Plain\" has gone",
         "\"Plain\" cannot be cancelled"},
    };
    for (const auto& ending : endings) {
        const ChildResult result = RunDisabledTest(ending.pszTest);
        SCOPED_TRACE(ending.pszTest + ("\n" + result.strOutput));
        EXPECT_EQ(result.dwExitCode, ending.dwExitCode);
        for (const char* text : {ending.pszReason, ending.pszMore}) {
            EXPECT_NE(result.strOutput.find(text), std::string::npos) << text;
        }
        // What has been reported is not reported again, nor does the dialog's result fail.
        EXPECT_EQ(result.strOutput.find("dialog driver") != std::string::npos,
                  ending.dwExitCode == 3);
        EXPECT_EQ(result.strOutput.find("Ask()"), std::string::npos);
    }
}

}  // namespace
}  // namespace mvp::test
