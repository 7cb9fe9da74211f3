// Part of every program that scans for secrets: what is left behind on purpose is found where the
// program runs, or its finding nothing else would mean nothing.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include "support/memory_scan.h"

namespace mvp::test {
namespace {

char g_module[3 * Secret::kLength];

TEST(ScanControl, FindsARunWhereverItStands) {
    const Secret secret;
    char stack[2 * Secret::kLength];
    void* const block = HeapAlloc(GetProcessHeap(), 0, 100);
    auto* const pages = static_cast<char*>(
        VirtualAlloc(nullptr, 3 << 20, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    char* const places[] = {static_cast<char*>(block), stack, g_module + 1, g_module + 2,
                            g_module + 3, g_module + 4,
                            // Over the border of two of the scan's pieces, and at the very end.
                            pages + (1 << 20) - 5, pages + (3 << 20) - 2 * Secret::kLength};
    for (char* place : places) {
        for (const size_t step : {size_t{1}, size_t{2}}) {
            for (const size_t count : {secret.size(), Secret::kRun, Secret::kRun - 1}) {
                const size_t first = secret.size() - count;
                secret.CopyTo(place, step == 2);
                SecureZeroMemory(place, first * step);
                std::vector<MemoryHit> expected;
                if (count >= Secret::kRun) {
                    expected.push_back({reinterpret_cast<ULONG_PTR>(place + first * step), first,
                                        count, step == 2});
                }
                EXPECT_EQ(ScanMemory(secret), expected);
                SecureZeroMemory(place, 2 * Secret::kLength);
            }
        }
    }
    HeapFree(GetProcessHeap(), 0, block);
    VirtualFree(pages, 0, MEM_RELEASE);
}

TEST(ScanControl, FindsWhatIsLeftInFreedBlocks) {
    for (auto* const heap : {reinterpret_cast<HANDLE>(_get_heap_handle()), GetProcessHeap()}) {
        for (const bool wide : {false, true}) {
            const size_t length = Secret::kLength * (wide ? 2 : 1);
            // A PIN buffer, a string, the edits' block.
            for (const size_t size : {length, length + 8, size_t{1026}}) {
                const Secret secret;
                void* block = HeapAlloc(heap, 0, size);
                secret.CopyTo(block, wide);
                HeapFree(heap, 0, block);
                EXPECT_FALSE(ScanMemory(secret).empty()) << size;
            }
        }
    }
}

TEST(ScanControl, WatchFailsOverWhatWasFreedAndWhatIsLeft) {
    const Secret secret;
    const size_t size = Secret::kLength;
    void* block = HeapAlloc(GetProcessHeap(), 0, size);
    secret.CopyTo(block);
    EXPECT_NONFATAL_FAILURE(SecretWatch({&secret}).ExpectNothingLeft("kept"),
                            "characters 1 to 40, 8-bit, at");
    const SecretWatch watch({&secret});
    // Gives the block back and gets it again.
    block = HeapReAlloc(GetProcessHeap(), 0, block, size);
    SecureZeroMemory(block, size);
    HeapFree(GetProcessHeap(), 0, block);
    EXPECT_NONFATAL_FAILURE(watch.ExpectNothingLeft("freed"), "freed: parts in blocks that");
}

}  // namespace
}  // namespace mvp::test
