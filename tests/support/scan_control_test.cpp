// Part of every program that scans for secrets: what is left behind on purpose is found where the
// program runs, or its finding nothing else would mean nothing.
#include <cstdlib>

#include <gtest/gtest.h>

#include "support/memory_scan.h"

namespace mvp::test {
namespace {

TEST(ScanControl, FindsWhatIsLeftInFreedBlocks) {
    const HANDLE hProcessHeap = GetProcessHeap();
    for (const bool bWide : {false, true}) {
        const size_t nLength = Secret::kLength * (bWide ? 2 : 1);
        // A PIN buffer, a string, the edits' block.
        for (const size_t nSize : {nLength, nLength + 8, size_t{1026}}) {
            const Secret inRuntimeHeap;
            void* pBlock = std::malloc(nSize);
            inRuntimeHeap.CopyTo(pBlock, bWide);
            std::free(pBlock);
            EXPECT_FALSE(ScanOwnMemory(inRuntimeHeap).empty()) << nSize;

            const Secret inProcessHeap;
            pBlock = HeapAlloc(hProcessHeap, 0, nSize);
            inProcessHeap.CopyTo(pBlock, bWide);
            HeapFree(hProcessHeap, 0, pBlock);
            EXPECT_FALSE(ScanOwnMemory(inProcessHeap).empty()) << nSize;
        }
    }
}

}  // namespace
}  // namespace mvp::test
