// Checks the heaps for damage after every test.
//
// The test programs' main function installs the listener; a test needs nothing. A test that wants
// to know where between two steps the damage happens asks HeapsAreValid itself.
#pragma once

#include <gtest/gtest.h>

namespace mvp::test {

// Whether the C runtime's heap (which every binary of a process shares) and the process heap are
// undamaged. The system notices an overrun of a few bytes when it pads blocks, which the tests'
// environment asks for.
bool HeapsAreValid();

// Fails the test after which a heap is damaged.
class HeapCheckListener : public testing::EmptyTestEventListener {
public:
    void OnTestEnd(const testing::TestInfo& info) override;
};

}  // namespace mvp::test
