// Counts what a program takes from the heap. Linking counting_heap.cpp replaces the global
// operators new and delete.
#pragma once

#include <cstddef>

namespace mvp::bench {

struct HeapCount {
    std::size_t nAllocations = 0;  // so far
    std::size_t nLive = 0;         // bytes asked for and not yet given back
    std::size_t nPeak = 0;         // most at a time since ResetPeak
};

HeapCount CountHeap();
void ResetPeak();

}  // namespace mvp::bench
