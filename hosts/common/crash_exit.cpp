#include "common/crash_exit.h"

#include <windows.h>

#include <cstdio>

namespace mvp {
namespace {

unsigned g_nExitCode = 0;
const char* g_pszLastWords = nullptr;

LONG WINAPI EndProcess(EXCEPTION_POINTERS* pException) {
    std::fprintf(stderr, "crashed: exception 0x%08lX at %p\n",
                 pException->ExceptionRecord->ExceptionCode,
                 pException->ExceptionRecord->ExceptionAddress);
    if (g_pszLastWords != nullptr) {
        std::puts(g_pszLastWords);
    }
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), g_nExitCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

void EndWithCodeOnCrash(unsigned nExitCode, const char* pszLastWords) {
    g_nExitCode = nExitCode;
    g_pszLastWords = pszLastWords;
    SetUnhandledExceptionFilter(&EndProcess);
}

}  // namespace mvp
