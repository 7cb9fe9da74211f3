#include "common/crash_exit.h"

#include <windows.h>

#include <cstdio>

namespace mvp {
namespace {

unsigned g_nExitCode = 0;

LONG WINAPI EndProcess(EXCEPTION_POINTERS* pException) {
    std::fprintf(stderr, "crashed: exception 0x%08lX at %p\n",
                 pException->ExceptionRecord->ExceptionCode,
                 pException->ExceptionRecord->ExceptionAddress);
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), g_nExitCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

void EndWithCodeOnCrash(unsigned nExitCode) {
    g_nExitCode = nExitCode;
    SetUnhandledExceptionFilter(&EndProcess);
}

}  // namespace mvp
