// Part of every program that scans for secrets: what is left behind on purpose is found where the
// program runs, or its finding nothing else would mean nothing.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include "support/memory_scan.h"

namespace mvp::test {
namespace {

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
                EXPECT_FALSE(ScanOwnMemory(secret).empty()) << size;
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
                            "kept, secret 1: characters 1 to 40, 8-bit");
    const SecretWatch watch({&secret});
    // Gives the block back and gets it again.
    block = HeapReAlloc(GetProcessHeap(), 0, block, size);
    SecureZeroMemory(block, size);
    HeapFree(GetProcessHeap(), 0, block);
    EXPECT_NONFATAL_FAILURE(watch.ExpectNothingLeft("freed"), "freed: pieces in blocks that");
}

}  // namespace
}  // namespace mvp::test
