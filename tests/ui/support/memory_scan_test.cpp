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
    auto* const hRuntimeHeap = reinterpret_cast<HANDLE>(_get_heap_handle());
    void* const pSmall = HeapAlloc(hRuntimeHeap, 0, 100);
    auto* const pLarge = static_cast<char*>(HeapAlloc(hRuntimeHeap, 0, 3 << 20));
    void* const pOther = HeapAlloc(GetProcessHeap(), 0, 100);
    auto* const pPages = static_cast<char*>(
        VirtualAlloc(nullptr, 1 << 20, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    char stack[2 * Secret::kLength];
    const struct {
        void* pPlace;
        const char* pszOwner;
    } places[] = {
        {pSmall, " in the C heap"},
        {pLarge + (2 << 20) + 3, " in the C heap"},
        {pOther, " in the process heap"},
        {g_module, "memory_scan_test.exe"},
        {stack, " in this thread's stack"},
        // Over the border of two of the scan's pieces.
        {pPages + (1 << 18) - 5, " in other memory"},
        {pPages + (1 << 20) - 2 * Secret::kLength, " in other memory"},
    };
    for (const auto& place : places)
        for (const bool bWide : {false, true}) {
            secret.CopyTo(place.pPlace, bWide);
            const std::vector<MemoryHit> hits = ScanOwnMemory(secret);
            SecureZeroMemory(place.pPlace, 2 * Secret::kLength);
            ASSERT_EQ(hits.size(), 1u) << testing::PrintToString(hits);
            EXPECT_EQ(hits[0].address, reinterpret_cast<ULONG_PTR>(place.pPlace));
            EXPECT_EQ(hits[0].nCount, Secret::kLength);
            EXPECT_EQ(hits[0].bWide, bWide);
            EXPECT_FALSE(hits[0].bFreed);
            const std::string strText = testing::PrintToString(hits[0]);
            EXPECT_NE(strText.find(place.pszOwner), std::string::npos) << strText;
            EXPECT_EQ(hits[0].place == MemoryHit::Place::kHeap,
                      strText.find("heap") != std::string::npos);
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
