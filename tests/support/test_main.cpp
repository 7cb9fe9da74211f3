// The main function of every Windows test program: GoogleTest with a check of the heap after each
// test, and an exit code that tells of a crash.
#include <windows.h>

#include <cstdio>

#include <gtest/gtest.h>

#include "support/heap_check.h"

namespace {

// Left to itself, a process that crashed may end with the code 0 once a debugger has looked at it.
LONG WINAPI EndCrashed(EXCEPTION_POINTERS* pException) {
    std::fprintf(stderr, "crashed: exception 0x%08lX at %p\n",
                 pException->ExceptionRecord->ExceptionCode,
                 pException->ExceptionRecord->ExceptionAddress);
    std::fflush(nullptr);
    constexpr UINT kCrashed = 4;
    TerminateProcess(GetCurrentProcess(), kCrashed);
    return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

int main(int argc, char** argv) {
    SetUnhandledExceptionFilter(&EndCrashed);
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new mvp::test::HeapCheckListener);
    return RUN_ALL_TESTS();
}
