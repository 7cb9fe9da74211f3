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
class InternTable {
    // Hashed and compared by its bytes.
    static_assert(std::has_unique_object_representations_v<T>);
    static_assert(sizeof(T) % sizeof(std::uint32_t) == 0);

public:
    std::uint32_t Intern(const T& value) {
        if (m_aSlots.empty()) {
            if (const std::uint32_t known = Search(value); known < Size()) {
                return known;
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
        std::uint32_t& slot = SlotOf(value);
        if (slot == 0) {
            m_aValues.push_back(value);
            slot = static_cast<std::uint32_t>(m_aValues.size());
        }
        return slot - 1;
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
        std::uint32_t words[sizeof(T) / sizeof(std::uint32_t)];
        std::memcpy(words, &value, sizeof(T));
        std::uint64_t hash = 0;
        for (const std::uint32_t word : words) {
            hash = (hash ^ word) * 0x9E3779B97F4A7C15ULL;
            hash ^= hash >> 29;
        }
        return static_cast<std::size_t>(hash);
    }

    // The slot that holds the value's number + 1, or the free one where it belongs.
    std::uint32_t& SlotOf(const T& value) {
        const std::size_t mask = m_aSlots.size() - 1;
        std::size_t slot = HashOf(value) & mask;
        while (m_aSlots[slot] != 0 &&
               std::memcmp(&m_aValues[m_aSlots[slot] - 1], &value, sizeof(T)) != 0) {
            slot = (slot + 1) & mask;
        }
        return m_aSlots[slot];
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
