#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/handle.h"
#include "platform/system_library.h"
#include "ui/support/child_process.h"

extern "C" std::uintptr_t __stack_chk_guard;

namespace mvp::test {
namespace {

// What the compiler must not see through, or it would refuse what the tests do.
void* (*volatile g_pfnFill)(void*, int, std::size_t) = &std::memset;
volatile std::size_t g_nTooMuch = 64;

// Run by the next test, in processes of their own.
TEST(StackGuard, DISABLED_RunsOverItsFrame) {
    char buffer[16];
    g_pfnFill(buffer, 'x', g_nTooMuch);
}

// Stays inside the frame, where only the checked function can tell.
TEST(StackGuard, DISABLED_CopiesTooMuch) {
    struct {
        char szBuffer[16];
        char szBehind[64];
    } record;
    std::strncpy(record.szBuffer, "x", g_nTooMuch);
    g_pfnFill(record.szBehind, 'x', sizeof record.szBehind);
}

TEST(StackGuard, EndsTheProcessAtOnceWithTheSystemsCode) {
    std::vector<const char*> tests = {"DISABLED_RunsOverItsFrame"};
#ifdef NDEBUG  // String functions are checked in optimised code only.
    tests.push_back("DISABLED_CopiesTooMuch");
#endif
    for (const char* test : tests) {
        const ChildResult result = RunDisabledTest(std::string("StackGuard.") + test);
        EXPECT_EQ(result.dwExitCode, STATUS_STACK_BUFFER_OVERRUN) << test;
        EXPECT_EQ(result.strOutput.find("crashed"), std::string::npos) << result.strOutput;
    }
}

TEST(StackGuard, DISABLED_PrintsItsValue) {
    std::printf("guard %llx\n", static_cast<unsigned long long>(__stack_chk_guard));
}

TEST(StackGuard, DiffersBetweenProcessesAndBetweenLibraries) {
    const ChildResult other = RunDisabledTest("StackGuard.DISABLED_PrintsItsValue");
    const std::size_t at = other.strOutput.find("guard ");
    ASSERT_NE(at, std::string::npos) << other.strOutput;
    std::set<std::uintptr_t> values = {
        __stack_chk_guard,
        static_cast<std::uintptr_t>(std::stoull(other.strOutput.substr(at + 6), nullptr, 16))};
    for (const char* library : {"guarded_library_1.dll", "guarded_library_2.dll"}) {
        const UniqueHandle<ModuleTraits> module(LoadLibraryA(library));
        values.insert(FindFunction<std::uintptr_t (*)()>(module.get(), "GuardValue")());
    }
    EXPECT_EQ(values.size(), 4u);
    for (const std::uintptr_t value : values) {
        EXPECT_NE(value, 0u);
        EXPECT_EQ(value & 0xFF, 0u);
    }
}

}  // namespace
}  // namespace mvp::test
