// Makes one allocation of a module fail, as when memory is short.
//
//     FailingHeap heap("dlgfw.dll");
//     heap.FailAt(2);
//     panel.LocCreate(&host);           // the third allocation is refused
//     const bool bRefused = heap.Stop();
//
// Only allocations that the module itself asks the C runtime for on the calling thread count; those
// that the test's own code makes do not. One at a time.
#pragma once

#include <cstddef>

#include "support/patched_imports.h"

namespace mvp::test {

class FailingHeap {
public:
    explicit FailingHeap(const char* pszModule);
    ~FailingHeap() { Stop(); }

    // The allocation after the next `nSuccesses` that ask for `cbLeast` bytes or more.
    void FailAt(int nSuccesses, std::size_t cbLeast = 0);
    // Ends it; returns whether an allocation was refused.
    bool Stop();

private:
    PatchedImports m_imports;
};

}  // namespace mvp::test
