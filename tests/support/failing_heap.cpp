#include "support/failing_heap.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace mvp::test {
namespace {

std::atomic<DWORD> g_nThread = 0;  // whose allocations count; 0: nobody's
std::size_t g_cbLeast = 0;
int g_nSuccesses = 0;
bool g_bRefused = false;

bool IsRefused(std::size_t cb) {
    if (g_nThread != GetCurrentThreadId() || cb < g_cbLeast || g_nSuccesses-- > 0) {
        return false;
    }
    g_bRefused = true;
    g_nThread = 0;
    return true;
}

void* Malloc(std::size_t cb) {
    return IsRefused(cb) ? nullptr : std::malloc(cb);
}
void* Calloc(std::size_t n, std::size_t cb) {
    return IsRefused(n * cb) ? nullptr : std::calloc(n, cb);
}
void* Realloc(void* p, std::size_t cb) {
    return IsRefused(cb) ? nullptr : std::realloc(p, cb);
}

}  // namespace

FailingHeap::FailingHeap(const char* pszModule)
    : m_imports(pszModule, {{"malloc", Address(&Malloc)},
                            {"calloc", Address(&Calloc)},
                            {"realloc", Address(&Realloc)}}) {
    if (m_imports.IsEmpty()) {
        throw std::runtime_error(std::string("no heap functions in ") + pszModule);
    }
}

void FailingHeap::FailAt(int nSuccesses, std::size_t cbLeast) {
    g_bRefused = false;
    g_nSuccesses = nSuccesses;
    g_cbLeast = cbLeast;
    g_nThread = GetCurrentThreadId();
}

bool FailingHeap::Stop() {
    g_nThread = 0;
    return g_bRefused;
}

}  // namespace mvp::test
