// The main function of every Windows test program: GoogleTest with a check of the heap after each
// test, and an exit code that tells of a crash, also of one that ends the thread of the tests
// alone.
#include <windows.h>

#include <cstdio>

#include <gtest/gtest.h>
#include <malloc.h>

#include "common/crash_exit.h"
#include "platform/handle.h"

namespace {

constexpr unsigned kCrashed = 4;

// The C runtime's heap, which every binary of a process shares, and the process heap. The system
// notices an overrun of a few bytes when it pads blocks, which the tests' environment asks for.
class HeapCheck : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& info) override {
        // The value has no other type than an integer in the runtime's interface.
        for (auto* const heap : {reinterpret_cast<HANDLE>(_get_heap_handle()), GetProcessHeap()}) {
            EXPECT_TRUE(HeapValidate(heap, 0, nullptr))
                << "a heap is damaged after " << info.test_suite_name() << "." << info.name();
        }
    }
};

// A thread whose stack is full is ended by the system without a word, and the process goes on with
// the others, to an exit code of theirs.
DWORD WINAPI EndWithTheTestsThread(void* pTests) {
    WaitForSingleObject(pTests, INFINITE);
    std::fputs("the thread of the tests has ended before they had\n", stderr);
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), kCrashed);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    mvp::EndWithCodeOnCrash(kCrashed);
    // The system's own way: the language's threads would use functions that tests replace.
    const mvp::KernelHandle watch(CreateThread(nullptr, 0, &EndWithTheTestsThread,
                                               OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId()),
                                               0, nullptr));
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new HeapCheck);
    return RUN_ALL_TESTS();
}
