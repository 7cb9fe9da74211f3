// The main function of every Windows test program: GoogleTest with a check of the heap after each
// test, and an exit code that tells of a crash.
#include <gtest/gtest.h>

#include "common/crash_exit.h"
#include "support/heap_check.h"

int main(int argc, char** argv) {
    constexpr unsigned kCrashed = 4;
    mvp::EndWithCodeOnCrash(kCrashed);
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new mvp::test::HeapCheckListener);
    return RUN_ALL_TESTS();
}
