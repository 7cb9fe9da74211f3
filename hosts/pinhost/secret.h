// Storage for a card's PIN and codes: what it gives up is overwritten first.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace pinhost {

// Overwrites in a way that the compiler keeps, though nobody reads the memory again.
inline void Wipe(void* pMemory, std::size_t cbSize) noexcept {
    auto* byte = static_cast<volatile unsigned char*>(pMemory);
    while (cbSize-- > 0) {
        *byte++ = 0;
    }
}

template <class T>
struct WipingAllocator {
    using value_type = T;

    WipingAllocator() noexcept = default;
    template <class Other>
    explicit WipingAllocator(const WipingAllocator<Other>&) noexcept {}

    T* allocate(std::size_t nCount) { return std::allocator<T>().allocate(nCount); }
    void deallocate(T* p, std::size_t nCount) noexcept {
        Wipe(p, nCount * sizeof(T));
        std::allocator<T>().deallocate(p, nCount);
    }
    friend bool operator==(const WipingAllocator&, const WipingAllocator&) noexcept { return true; }
};

// The bytes of a PIN or code. Not a std::string: that keeps short texts inside itself.
using Secret = std::vector<char, WipingAllocator<char>>;

// Takes the same time wherever the difference lies.
inline bool SameSecret(std::span<const char> candidate, std::span<const char> secret) noexcept {
    std::size_t difference = candidate.size() ^ secret.size();
    for (std::size_t i = 0; i < candidate.size(); ++i) {
        const char ch = secret.empty() ? '\0' : secret[i % secret.size()];
        difference |= static_cast<unsigned char>(candidate[i] ^ ch);
    }
    return difference == 0;
}

}  // namespace pinhost
