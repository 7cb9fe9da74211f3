#include "support/failing_heap.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

namespace mvp::test {
namespace {

std::atomic<DWORD> g_nThread = 0;  // whose allocations count; 0: nobody's
std::size_t g_cbLeast = 0;
int g_nSuccesses = 0;
bool g_bRefused = false;

bool IsRefused(std::size_t cb) {
    if (g_nThread != GetCurrentThreadId() || cb < g_cbLeast || g_nSuccesses-- > 0)
        return false;
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

struct Replacement {
    const char* pszName;
    void* pFunction;
};

template <class Part>
Part* At(std::uintptr_t nBase, std::size_t nOffset) {
    return reinterpret_cast<Part*>(nBase + nOffset);
}

// Where the module keeps the address of a function that it imports; null when it does not.
void** FindImport(std::uintptr_t nBase, const char* pszFunction) {
    const auto* pHeaders = At<IMAGE_NT_HEADERS>(
        nBase, static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(nBase, 0)->e_lfanew));
    const IMAGE_DATA_DIRECTORY& directory =
        pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* p = At<IMAGE_IMPORT_DESCRIPTOR>(nBase, directory.VirtualAddress); p->Name != 0;
         ++p) {
        const auto* pName = At<IMAGE_THUNK_DATA>(nBase, p->OriginalFirstThunk);
        for (std::size_t i = 0; pName[i].u1.AddressOfData != 0; ++i) {
            if (IMAGE_SNAP_BY_ORDINAL(pName[i].u1.Ordinal))
                continue;
            const auto* pByName = At<IMAGE_IMPORT_BY_NAME>(nBase, pName[i].u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(pByName->Name), pszFunction) == 0)
                return At<void*>(nBase, p->FirstThunk) + i;
        }
    }
    return nullptr;
}

void Put(void** ppFunction, void* pFunction) {
    DWORD dwOld = 0;
    VirtualProtect(ppFunction, sizeof *ppFunction, PAGE_READWRITE, &dwOld);
    *ppFunction = pFunction;
    VirtualProtect(ppFunction, sizeof *ppFunction, dwOld, &dwOld);
}

}  // namespace

FailingHeap::FailingHeap(const char* pszModule) {
    const auto nBase = reinterpret_cast<std::uintptr_t>(GetModuleHandleA(pszModule));
    const std::array<Replacement, 3> functions = {{{"malloc", reinterpret_cast<void*>(&Malloc)},
                                                   {"calloc", reinterpret_cast<void*>(&Calloc)},
                                                   {"realloc", reinterpret_cast<void*>(&Realloc)}}};
    for (std::size_t i = 0; i < m_imports.size(); ++i) {
        void** ppFunction = FindImport(nBase, functions.at(i).pszName);
        if (ppFunction == nullptr)
            continue;
        m_imports.at(i) = {ppFunction, *ppFunction};
        Put(ppFunction, functions.at(i).pFunction);
    }
    if (m_imports.front().ppFunction == nullptr)
        throw std::runtime_error(std::string("no heap functions in ") + pszModule);
}

FailingHeap::~FailingHeap() {
    Stop();
    for (const Import& import : m_imports)
        if (import.ppFunction != nullptr)
            Put(import.ppFunction, import.pOriginal);
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
