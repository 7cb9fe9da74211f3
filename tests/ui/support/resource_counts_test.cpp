#include "support/resource_counts.h"

#include <windows.h>

#include <cstdlib>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace mvp::test {
namespace {

void* volatile g_block;  // the compiler would do without a block that nobody keeps

void NewWindow(HWND hParent) {
    CreateWindowExA(0, "STATIC", "", 0, 0, 0, 9, 9, hParent, nullptr, nullptr, nullptr);
}

DWORD WINAPI Stay(void*) {
    Sleep(INFINITE);
    return 0;
}

// What is taken here stays with the program.
TEST(ResourceCounts, GrowthOfEachKindFailsTheTest) {
    static const BYTE bits[32] = {};
    const struct {
        void (*take)();
        const char* pszFailure;
    } kinds[] = {
        {[] { NewWindow(nullptr); }, "windows grew"},
        {[] { NewWindow(HWND_MESSAGE); }, "windows grew"},
        {[] { CreateIcon(nullptr, 16, 16, 1, 1, bits, bits); }, "other user objects grew"},
        {[] { CreatePen(PS_SOLID, 3, RGB(1, 2, 3)); }, "GDI objects grew"},
        {[] { CreateEventA(nullptr, TRUE, FALSE, nullptr); }, "kernel handles grew"},
        {[] { CloseHandle(CreateThread(nullptr, 0, Stay, nullptr, 0, nullptr)); }, "threads grew"},
        {[] { g_block = std::malloc(9); }, "heap blocks grew"},
        {[] { g_block = std::malloc(9000); }, "heap bytes grew"},
        {[] { VirtualAlloc(nullptr, 1 << 20, MEM_COMMIT, PAGE_READWRITE); }, "private bytes grew"},
    };
    // A thread's first windows bring objects of the system with them; counting loads libraries.
    NewWindow(nullptr);
    NewWindow(HWND_MESSAGE);
    ResourceCounts::Now();
    for (const auto& kind : kinds) {
        testing::TestPartResultArray failures;
        {
            const testing::ScopedFakeTestPartResultReporter reporter(
                testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD,
                &failures);
            ExpectRoundsKeepNothing(1, 20, [&](int) { kind.take(); });
        }
        std::string text;
        for (int i = 0; i < failures.size(); ++i) {
            text += failures.GetTestPartResult(i).message();
        }
        EXPECT_NE(text.find(kind.pszFailure), std::string::npos) << kind.pszFailure << text;
    }
    ExpectRoundsKeepNothing(1, 20, [](int) {
        g_block = std::malloc(9000);
        std::free(g_block);
    });
}

}  // namespace
}  // namespace mvp::test
