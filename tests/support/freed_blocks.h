// Looks at what modules give back: their calls of `free`, `HeapFree`, `LocalFree`, `VirtualFree`
// and of what may move a block, `HeapReAlloc` and `LocalReAlloc`, go through a check that sees the
// block while it is still their own. What a scan of the memory finds later depends on who took the
// block next; this does not.
#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <list>

#include "common/patched_imports.h"

namespace mvp::test {

class FreedBlocks {
public:
    // Called on whatever thread frees, for each block; must not throw, nor free in those modules.
    using Look = std::function<void(const void* pBlock, std::size_t nBytes)>;

    // The modules by their file names; null is the program itself. Those that are not loaded are
    // left out. One object at a time.
    FreedBlocks(std::initializer_list<const char*> modules, Look look);
    FreedBlocks(const FreedBlocks&) = delete;
    FreedBlocks& operator=(const FreedBlocks&) = delete;
    ~FreedBlocks();

private:
    std::list<PatchedImports> m_patches;
};

// The number of bytes that are not zero.
std::size_t DirtyBytes(const void* pBlock, std::size_t nBytes);

}  // namespace mvp::test
