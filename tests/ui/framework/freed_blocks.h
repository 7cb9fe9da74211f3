// Watches what a library gives back to the heap: its calls of `free` go through a check that looks
// at the block while it is still the library's own.
#pragma once

#include <windows.h>

#include <cstddef>

namespace mvp::test {

class FreedBlocks {
public:
    // Throws std::runtime_error when the module does not import `free`.
    explicit FreedBlocks(HMODULE hModule);
    FreedBlocks(const FreedBlocks&) = delete;
    FreedBlocks& operator=(const FreedBlocks&) = delete;
    ~FreedBlocks();

    // From now on `nBytes` at `block` are what counts.
    void Watch(const void* block, size_t nBytes);
    // Of the block watched: whether it was freed, and the number of bytes that were not zero then.
    bool WasFreed() const;
    size_t DirtyBytes() const;

private:
    void Redirect(void* function);

    void** m_pImport;
};

}  // namespace mvp::test
