#include "common/crash_exit.h"

#include <gtest/gtest.h>

#include "child_process.h"

namespace mvp::test {
namespace {

// Run by the next test, in a process of its own.
TEST(CrashExit, DISABLED_Crashes) {
    EndWithCodeOnCrash(4, "the last words");
    volatile int* volatile pNowhere = nullptr;
    *pNowhere = 1;
}

TEST(CrashExit, FailsTheProgramThatCrashes) {
    const ChildResult result = RunDisabledTest("CrashExit.DISABLED_Crashes");
    EXPECT_EQ(result.dwExitCode, 4u);
    EXPECT_NE(result.strOutput.find("crashed: exception 0xC0000005"), std::string::npos)
        << result.strOutput;
    EXPECT_NE(result.strOutput.find("the last words"), std::string::npos) << result.strOutput;
}

}  // namespace
}  // namespace mvp::test
