#include "support/memory_scan.h"

#include <cstdlib>

#include <gtest/gtest.h>
#include <malloc.h>

namespace mvp::test {
namespace {

char g_module[2 * Secret::kLength];

TEST(MemoryScan, FindsAPlantedTextWhereverItIs) {
    const Secret secret;
    auto* const hRuntimeHeap = reinterpret_cast<HANDLE>(_get_heap_handle());
    void* const pSmall = HeapAlloc(hRuntimeHeap, 0, 100);
    auto* const pLarge = static_cast<char*>(HeapAlloc(hRuntimeHeap, 0, 3 << 20));
    void* const pOther = HeapAlloc(GetProcessHeap(), 0, 100);
    auto* const pPages = static_cast<char*>(
        VirtualAlloc(nullptr, 1 << 20, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    char stack[2 * Secret::kLength];
    void* const places[] = {
        pSmall, pLarge + (2 << 20) + 3, pOther,
        // From here on outside the heaps; the first over the border of two of the scan's pieces.
        pPages + (1 << 18) - 5, pPages + (1 << 20) - 2 * Secret::kLength, g_module, stack};
    for (size_t i = 0; i < std::size(places); ++i)
        for (const bool bWide : {false, true}) {
            secret.CopyTo(places[i], bWide);
            const std::vector<MemoryHit> hits = ScanOwnMemory(secret);
            SecureZeroMemory(places[i], 2 * Secret::kLength);
            ASSERT_EQ(hits.size(), 1u) << testing::PrintToString(hits);
            EXPECT_EQ(hits[0].address, reinterpret_cast<ULONG_PTR>(places[i]));
            EXPECT_EQ(hits[0].nCount, Secret::kLength);
            EXPECT_EQ(hits[0].bWide, bWide);
            EXPECT_FALSE(hits[0].bFreed);
            EXPECT_EQ(hits[0].place == MemoryHit::Place::kHeap, i < 3) << hits[0];
        }
    secret.CopyTo(pOther);
    HeapFree(GetProcessHeap(), 0, pOther);
    for (const MemoryHit& hit : ScanOwnMemory(secret))
        EXPECT_TRUE(hit.bFreed) << hit;
    HeapFree(hRuntimeHeap, 0, pSmall);
    HeapFree(hRuntimeHeap, 0, pLarge);
    VirtualFree(pPages, 0, MEM_RELEASE);
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
        int nSeen = 0;
        const FreedBlocks freed({nullptr},
                                [&](const void*, size_t nBytes) { nSeen += nBytes == kSize; });
        way(GetProcessHeap());
        EXPECT_EQ(nSeen, 1) << &way - ways;
    }
}

}  // namespace
}  // namespace mvp::test
