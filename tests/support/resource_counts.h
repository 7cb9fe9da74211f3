// What the process holds, for tests that hold nothing grows:
//
//     ExpectRoundsKeepNothing(1, 1000, [](int) { OpenAndCloseDialog(); });
#pragma once

#include <cstddef>
#include <functional>

namespace mvp::test {

struct ResourceCounts {
    unsigned windows = 0;
    unsigned otherUserObjects = 0;  // menus, icons, cursors where they can be counted
    unsigned gdiObjects = 0;
    unsigned kernelHandles = 0;
    unsigned threads = 0;
    size_t heapBlocks = 0;  // in use, in the C runtime's heap
    size_t heapBytes = 0;
    size_t privateBytes = 0;  // committed private memory

    static ResourceCounts Now();
};

// How much more of each is still no growth: what the system or the runtime keeps by the way.
struct GrowthAllowance {
    unsigned objects = 0;  // of each kind: windows, other user objects, GDI objects
    unsigned kernelHandles = 4;
    unsigned threads = 1;
    size_t heapBlocks = 16;
    size_t heapBytes = 8192;
    size_t privateBytes = 1 << 20;
};

// A failure of the running test for each count that has grown beyond the allowance.
void ExpectNoGrowth(const ResourceCounts& before, const ResourceCounts& after,
                    const GrowthAllowance& allowance = {});

// The same for `nRounds` calls of `round`, which gets their number from 0. `nFirst` calls come
// before the first count: what the system keeps for later is made then.
void ExpectRoundsKeepNothing(int nFirst, int nRounds, const std::function<void(int)>& round,
                             const GrowthAllowance& allowance = {});

}  // namespace mvp::test
