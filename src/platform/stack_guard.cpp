// The value behind the compiler's stack guard, and what happens when a guard or a checked string
// function finds an overrun. It stands in for the compiler's own support code, which asks the
// system's cryptographic provider for a value while the loader's lock is held, and loads that
// provider's libraries for it.
//
// Part of every binary, of C too; compiled without exceptions for that, and without the guard, as
// the value changes while it runs.
#include <windows.h>

#include <cstdint>

namespace {

// Runs nothing that the overrun may have got hold of: no handler, no destructor, no callback. On
// Windows 7, which lacks the interrupt, the process ends with the code that the others give it.
[[noreturn]] void FailAtOnce(unsigned nReason) noexcept {
    if (IsProcessorFeaturePresent(PF_FASTFAIL_AVAILABLE)) {
        __asm__ volatile("int $0x29" : : "c"(nReason));
    }
    TerminateProcess(GetCurrentProcess(), STATUS_STACK_BUFFER_OVERRUN);
    __builtin_trap();
}

// Spreads what differs in few bits over the whole value.
std::uint64_t Mixed(std::uint64_t value) noexcept {
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
    return value ^ (value >> 31);
}

}  // namespace

extern "C" {

std::uintptr_t __stack_chk_guard = 0;

void __stack_chk_fail() {
    FailAtOnce(FAST_FAIL_STACK_COOKIE_CHECK_FAILURE);
}

void __chk_fail() {
    FailAtOnce(FAST_FAIL_RANGE_CHECK_FAILURE);
}

}  // extern "C"

namespace {

// What differs between two processes, between two starts, and between two binaries of a process.
int SeedGuard() {
    FILETIME time;
    GetSystemTimeAsFileTime(&time);
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    std::uint64_t value = Mixed(reinterpret_cast<std::uintptr_t>(&__stack_chk_guard));
    value = Mixed(value ^ static_cast<std::uint64_t>(counter.QuadPart));
    value = Mixed(value ^ (std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime));
    value = Mixed(value ^ (std::uint64_t{GetCurrentProcessId()} << 32 | GetCurrentThreadId()));
    // The zero byte is the first in memory: a string that runs over cannot write it and go on.
    __stack_chk_guard = static_cast<std::uintptr_t>(value) & ~std::uintptr_t{0xFF};
    return 0;
}

// The C runtime calls this table before the constructors and the binary's entry function, when
// nothing that is guarded runs yet; the first entries are its own.
[[gnu::section(".CRT$XIAB"), gnu::used]] int (*const g_pfnSeedGuard)() = &SeedGuard;

}  // namespace
