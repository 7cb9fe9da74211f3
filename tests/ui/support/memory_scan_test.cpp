#include "support/memory_scan.h"

#include <cstdlib>

#include <gtest/gtest.h>
#include <malloc.h>

namespace mvp::test {
namespace {

char g_module[2 * Secret::kLength];

TEST(MemoryScan, FindsAPlantedTextWhereverItIs) {
    const Secret secret;
    auto* const runtimeHeap = reinterpret_cast<HANDLE>(_get_heap_handle());
    void* const little = HeapAlloc(runtimeHeap, 0, 100);
    auto* const large = static_cast<char*>(HeapAlloc(runtimeHeap, 0, 3 << 20));
    void* const other = HeapAlloc(GetProcessHeap(), 0, 100);
    auto* const pages = static_cast<char*>(
        VirtualAlloc(nullptr, 1 << 20, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    char stack[2 * Secret::kLength];
    void* const places[] = {
        little, large + (2 << 20) + 3, other,
        // From here on outside the heaps; the first over the border of two of the scan's pieces.
        pages + (1 << 18) - 5, pages + (1 << 20) - 2 * Secret::kLength, g_module, stack};
    for (size_t i = 0; i < std::size(places); ++i) {
        for (const bool wide : {false, true}) {
            secret.CopyTo(places[i], wide);
            const std::vector<MemoryHit> hits = ScanOwnMemory(secret);
            SecureZeroMemory(places[i], 2 * Secret::kLength);
            ASSERT_EQ(hits.size(), 1u) << testing::PrintToString(hits);
            EXPECT_EQ(hits[0].address, reinterpret_cast<ULONG_PTR>(places[i]));
            EXPECT_EQ(hits[0].nCount, Secret::kLength);
            EXPECT_EQ(hits[0].bWide, wide);
            EXPECT_EQ(hits[0].bInUse, i < 3) << hits[0];
        }
    }
    secret.CopyTo(other);
    HeapFree(GetProcessHeap(), 0, other);
    for (const MemoryHit& hit : ScanOwnMemory(secret)) {
        EXPECT_FALSE(hit.bInUse) << hit;
    }
    HeapFree(runtimeHeap, 0, little);
    HeapFree(runtimeHeap, 0, large);
    VirtualFree(pages, 0, MEM_RELEASE);
}

}  // namespace
}  // namespace mvp::test
