// To whom an address of a process belongs. Internal to the memory scan.
#pragma once

#include <windows.h>

#include <vector>

#include "support/memory_scan.h"

namespace mvp::test {

class MemoryMap {
public:
    explicit MemoryMap(HANDLE hProcess);

    MemoryHit Attribute(ULONG_PTR address) const;

private:
    struct Stack {
        const void* pAllocation;
        DWORD dwThreadId;
    };

    void ListStacks();
    bool FindInHeaps(MemoryHit& hit) const;

    HANDLE m_hProcess;  // not owned
    bool m_bOwn;
    std::vector<Stack> m_stacks;
};

}  // namespace mvp::test
