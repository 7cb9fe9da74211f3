// Keeps one copy of each distinct value and names it by a number, so that runs and boxes carry a
// number instead of the value.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

namespace mvp::richtext {

// Gives back storage that was taken in vain, where it is worth the copying.
template <class Container>
void Shrink(Container& container) {
    constexpr std::size_t kWorthIt = 2048;
    if ((container.capacity() - container.size()) * sizeof(container[0]) > kWorthIt) {
        container.shrink_to_fit();
    }
}

template <class T>
class CInternTable {
    // Hashed and compared by its bytes.
    static_assert(std::has_unique_object_representations_v<T>);
    static_assert(sizeof(T) % sizeof(std::uint32_t) == 0);

public:
    std::uint32_t Intern(const T& value) {
        if (m_aSlots.empty()) {
            if (const std::uint32_t nKnown = Search(value); nKnown < Size()) {
                return nKnown;
            }
            if (Size() < kFew) {
                m_aValues.reserve(kFew);
                m_aValues.push_back(value);
                return Size() - 1;
            }
        }
        if ((m_aValues.size() + 1) * 2 > m_aSlots.size()) {
            Grow();
        }
        std::uint32_t& nSlot = SlotOf(value);
        if (nSlot == 0) {
            m_aValues.push_back(value);
            nSlot = static_cast<std::uint32_t>(m_aValues.size());
        }
        return nSlot - 1;
    }

    const T& operator[](std::uint32_t nIndex) const { return m_aValues[nIndex]; }
    std::uint32_t Size() const { return static_cast<std::uint32_t>(m_aValues.size()); }

    // No more values will come.
    void Seal() {
        m_aSlots = {};
        Shrink(m_aValues);
    }

private:
    // So many are told apart without slots.
    static constexpr std::size_t kFew = 8;

    // The value's number, or the number of values.
    std::uint32_t Search(const T& value) const {
        std::uint32_t i = 0;
        while (i < Size() && std::memcmp(&m_aValues[i], &value, sizeof(T)) != 0) {
            ++i;
        }
        return i;
    }

    static std::size_t HashOf(const T& value) {
        std::uint32_t aWords[sizeof(T) / sizeof(std::uint32_t)];
        std::memcpy(aWords, &value, sizeof(T));
        std::uint64_t nHash = 0;
        for (const std::uint32_t nWord : aWords) {
            nHash = (nHash ^ nWord) * 0x9E3779B97F4A7C15ULL;
            nHash ^= nHash >> 29;
        }
        return static_cast<std::size_t>(nHash);
    }

    // The slot that holds the value's number + 1, or the free one where it belongs.
    std::uint32_t& SlotOf(const T& value) {
        const std::size_t nMask = m_aSlots.size() - 1;
        std::size_t nSlot = HashOf(value) & nMask;
        while (m_aSlots[nSlot] != 0 &&
               std::memcmp(&m_aValues[m_aSlots[nSlot] - 1], &value, sizeof(T)) != 0) {
            nSlot = (nSlot + 1) & nMask;
        }
        return m_aSlots[nSlot];
    }

    void Grow() {
        m_aSlots.assign(m_aSlots.empty() ? 4 * kFew : m_aSlots.size() * 2, 0);
        m_aValues.reserve(m_aSlots.size() / 2);
        for (std::uint32_t i = 0; i < m_aValues.size(); ++i) {
            SlotOf(m_aValues[i]) = i + 1;
        }
    }

    std::vector<T> m_aValues;
    std::vector<std::uint32_t> m_aSlots;
};

}  // namespace mvp::richtext
