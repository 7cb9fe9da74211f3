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

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>

#include "common/patched_imports.h"

namespace mvp::test {

class FailingHeap {
public:
    explicit FailingHeap(const char* pszModule)
        : m_imports(pszModule, {{"malloc", Address(&Malloc)},
                                {"calloc", Address(&Calloc)},
                                {"realloc", Address(&Realloc)}}) {}
    ~FailingHeap() { Stop(); }

    // The allocation after the next `nSuccesses` that ask for `cbLeast` bytes or more.
    void FailAt(int nSuccesses, std::size_t cbLeast = 0) {
        s_bRefused = false;
        s_nSuccesses = nSuccesses;
        s_cbLeast = cbLeast;
        s_nThread = GetCurrentThreadId();
    }
    // Ends it; returns whether an allocation was refused.
    bool Stop() {
        s_nThread = 0;
        return s_bRefused;
    }

private:
    static bool IsRefused(std::size_t cb) {
        if (s_nThread != GetCurrentThreadId() || cb < s_cbLeast || s_nSuccesses-- > 0) {
            return false;
        }
        s_bRefused = true;
        s_nThread = 0;
        return true;
    }
    static void* Malloc(std::size_t cb) { return IsRefused(cb) ? nullptr : std::malloc(cb); }
    static void* Calloc(std::size_t n, std::size_t cb) {
        return IsRefused(n * cb) ? nullptr : std::calloc(n, cb);
    }
    static void* Realloc(void* p, std::size_t cb) {
        return IsRefused(cb) ? nullptr : std::realloc(p, cb);
    }

    static inline std::atomic<DWORD> s_nThread = 0;  // whose allocations count; 0: nobody's
    static inline std::size_t s_cbLeast = 0;
    static inline int s_nSuccesses = 0;
    static inline bool s_bRefused = false;

    PatchedImports m_imports;
};

}  // namespace mvp::test
