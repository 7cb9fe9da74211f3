#include "support/heap_check.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "child_process.h"

namespace mvp::test {
namespace {

// Run by the next test, in a process of its own.
TEST(HeapCheck, DISABLED_WritesBehindABlock) {
    auto* pBlock = static_cast<volatile char*>(std::malloc(24));
    // Through a variable: the compiler knows the block's size.
    volatile size_t nBehind = 24;
    pBlock[nBehind] = 'x';
    // Left as it is, for the check to find.
}  // NOLINT(clang-analyzer-unix.Malloc)

TEST(HeapCheck, FailsTheTestThatDamagesTheHeap) {
    ASSERT_TRUE(HeapsAreValid());
    const ChildResult result = RunDisabledTest("HeapCheck.DISABLED_WritesBehindABlock");
    EXPECT_EQ(result.dwExitCode, 1u);
    EXPECT_NE(result.strOutput.find("a heap is damaged after"), std::string::npos)
        << result.strOutput;
}

}  // namespace
}  // namespace mvp::test
