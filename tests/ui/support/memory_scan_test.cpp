#include "support/memory_scan.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <malloc.h>

namespace mvp::test {
namespace {

char g_module[2 * Secret::kLength];

TEST(MemoryScan, FindsAPlantedTextAndTellsWhoseMemoryItIs) {
    const Secret secret;
    auto* const runtimeHeap = reinterpret_cast<HANDLE>(_get_heap_handle());
    void* const little = HeapAlloc(runtimeHeap, 0, 100);
    auto* const large = static_cast<char*>(HeapAlloc(runtimeHeap, 0, 3 << 20));
    void* const other = HeapAlloc(GetProcessHeap(), 0, 100);
    auto* const pages = static_cast<char*>(
        VirtualAlloc(nullptr, 1 << 20, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    char stack[2 * Secret::kLength];
    const struct {
        void* pPlace;
        const char* pszOwner;
    } places[] = {
        {little, " in the C heap"},
        {large + (2 << 20) + 3, " in the C heap"},
        {other, " in the process heap"},
        {g_module, "memory_scan_test.exe"},
        {stack, " in this thread's stack"},
        // Over the border of two of the scan's pieces.
        {pages + (1 << 18) - 5, " in other memory"},
        {pages + (1 << 20) - 2 * Secret::kLength, " in other memory"},
    };
    for (const auto& place : places) {
        for (const bool wide : {false, true}) {
            secret.CopyTo(place.pPlace, wide);
            const std::vector<MemoryHit> hits = ScanOwnMemory(secret);
            SecureZeroMemory(place.pPlace, 2 * Secret::kLength);
            ASSERT_EQ(hits.size(), 1u) << testing::PrintToString(hits);
            EXPECT_EQ(hits[0].address, reinterpret_cast<ULONG_PTR>(place.pPlace));
            EXPECT_EQ(hits[0].nCount, Secret::kLength);
            EXPECT_EQ(hits[0].bWide, wide);
            EXPECT_FALSE(hits[0].bFreed);
            const std::string text = testing::PrintToString(hits[0]);
            EXPECT_NE(text.find(place.pszOwner), std::string::npos) << text;
            EXPECT_EQ(hits[0].place == MemoryHit::Place::Heap,
                      text.find("heap") != std::string::npos);
        }
    }
    secret.CopyTo(other);
    HeapFree(GetProcessHeap(), 0, other);
    for (const MemoryHit& hit : ScanOwnMemory(secret)) {
        EXPECT_TRUE(hit.bFreed) << hit;
    }
    HeapFree(runtimeHeap, 0, little);
    HeapFree(runtimeHeap, 0, large);
    VirtualFree(pages, 0, MEM_RELEASE);
}

TEST(FreedBlocks, SeeWhatEachFunctionGivesBack) {
    constexpr size_t kSize = 77;
    void (*const ways[])(HANDLE) = {
        [](HANDLE) {
            void* volatile p = std::malloc(kSize);
            std::free(p);
        },
        [](HANDLE h) { HeapFree(h, 0, HeapAlloc(h, 0, kSize)); },
        [](HANDLE h) { HeapFree(h, 0, HeapReAlloc(h, 0, HeapAlloc(h, 0, kSize), 2 * kSize)); },
        [](HANDLE) { LocalFree(LocalAlloc(LMEM_MOVEABLE, kSize)); },
        [](HANDLE) {
            LocalFree(LocalReAlloc(LocalAlloc(LMEM_MOVEABLE, kSize), 2 * kSize, LMEM_MOVEABLE));
        },
    };
    for (const auto& way : ways) {
        int seen = 0;
        const FreedBlocks freed({nullptr},
                                [&](const void*, size_t nBytes) { seen += nBytes == kSize; });
        way(GetProcessHeap());
        EXPECT_EQ(seen, 1) << &way - ways;
    }
}

}  // namespace
}  // namespace mvp::test
