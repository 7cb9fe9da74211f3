// Memory for what a stage needs only while it runs: a first part without the heap, which texts of
// usual size do not exceed. Nothing is given back before the object goes, so it is for containers
// that grow by doubling and are used again, not for many that come and go.
#pragma once

#include <array>
#include <cstddef>
#include <memory_resource>

namespace mvp::richtext {

template <std::size_t nBytes>
class ScratchMemory {
public:
    ScratchMemory() = default;
    ScratchMemory(const ScratchMemory&) = delete;
    ScratchMemory& operator=(const ScratchMemory&) = delete;
    ~ScratchMemory() = default;

    std::pmr::memory_resource* Resource() { return &m_resource; }

private:
    alignas(std::max_align_t) std::array<std::byte, nBytes> m_aFirst;
    std::pmr::monotonic_buffer_resource m_resource{m_aFirst.data(), m_aFirst.size()};
};

}  // namespace mvp::richtext
