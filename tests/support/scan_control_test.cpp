// Part of every program that scans for secrets: what is left behind on purpose is found where the
// program runs, or its finding nothing else would mean nothing.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include "support/memory_scan.h"

namespace mvp::test {
namespace {

TEST(ScanControl, FindsWhatIsLeftInFreedBlocks) {
    for (auto* const hHeap : {reinterpret_cast<HANDLE>(_get_heap_handle()), GetProcessHeap()})
        for (const bool bWide : {false, true}) {
            const size_t nLength = Secret::kLength * (bWide ? 2 : 1);
            // A PIN buffer, a string, the edits' block.
            for (const size_t nSize : {nLength, nLength + 8, size_t{1026}}) {
                const Secret secret;
                void* pBlock = HeapAlloc(hHeap, 0, nSize);
                secret.CopyTo(pBlock, bWide);
                HeapFree(hHeap, 0, pBlock);
                EXPECT_FALSE(ScanOwnMemory(secret).empty()) << nSize;
            }
        }
}

TEST(ScanControl, WatchFailsOverWhatWasFreedAndWhatIsLeft) {
    const Secret secret;
    const size_t nSize = Secret::kLength;
    void* pBlock = HeapAlloc(GetProcessHeap(), 0, nSize);
    secret.CopyTo(pBlock);
    EXPECT_NONFATAL_FAILURE(SecretWatch({&secret}).ExpectNothingLeft("kept"),
                            "kept, secret 1: characters 1 to 40, 8-bit");
    const SecretWatch watch({&secret});
    // Gives the block back and gets it again.
    pBlock = HeapReAlloc(GetProcessHeap(), 0, pBlock, nSize);
    SecureZeroMemory(pBlock, nSize);
    HeapFree(GetProcessHeap(), 0, pBlock);
    EXPECT_NONFATAL_FAILURE(watch.ExpectNothingLeft("freed"), "freed: pieces in blocks that");
}

}  // namespace
}  // namespace mvp::test
