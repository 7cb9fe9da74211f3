#include "counting_heap.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

mvp::bench::HeapCount g_count;

// In front of each block, so that delete knows its size whichever form of it is called.
constexpr std::size_t kHeader = alignof(std::max_align_t);

void* Take(std::size_t nBytes) {
    void* const raw = std::malloc(nBytes + kHeader);
    if (raw == nullptr) {
        throw std::bad_alloc();
    }
    *static_cast<std::size_t*>(raw) = nBytes;
    ++g_count.nAllocations;
    g_count.nLive += nBytes;
    g_count.nPeak = std::max(g_count.nPeak, g_count.nLive);
    return static_cast<char*>(raw) + kHeader;
}

void GiveBack(void* pBlock) {
    if (pBlock != nullptr) {
        void* const raw = static_cast<char*>(pBlock) - kHeader;
        g_count.nLive -= *static_cast<std::size_t*>(raw);
        std::free(raw);
    }
}

}  // namespace

namespace mvp::bench {

HeapCount CountHeap() {
    return g_count;
}

void ResetPeak() {
    g_count.nPeak = g_count.nLive;
}

}  // namespace mvp::bench

void* operator new(std::size_t nBytes) {
    return Take(nBytes);
}
void* operator new[](std::size_t nBytes) {
    return Take(nBytes);
}
void operator delete(void* pBlock) noexcept {
    GiveBack(pBlock);
}
void operator delete[](void* pBlock) noexcept {
    GiveBack(pBlock);
}
void operator delete(void* pBlock, std::size_t /*nBytes*/) noexcept {
    GiveBack(pBlock);
}
void operator delete[](void* pBlock, std::size_t /*nBytes*/) noexcept {
    GiveBack(pBlock);
}
