// The main function of every Windows test program: GoogleTest with a check of the heap after each
// test.
#include <gtest/gtest.h>

#include "support/heap_check.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new mvp::test::HeapCheckListener);
    return RUN_ALL_TESTS();
}
