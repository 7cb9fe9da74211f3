#include "ui/framework/freed_blocks.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace mvp::test {
namespace {

// One watch at a time; tests of one thread.
const void* g_block = nullptr;
size_t g_nBytes = 0;
bool g_bFreed = false;
size_t g_nDirty = 0;

void CheckedFree(void* p) {
    if (p != nullptr && p == g_block) {
        const auto* bytes = static_cast<const unsigned char*>(p);
        g_bFreed = true;
        g_nDirty = g_nBytes - static_cast<size_t>(std::count(bytes, bytes + g_nBytes, 0));
        g_block = nullptr;
    }
    std::free(p);
}

template <class T>
T* At(HMODULE hModule, DWORD dwOffset) {
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(hModule) + dwOffset);
}

// Where the module keeps the address of an imported function.
void** FindImport(HMODULE hModule, const char* name) {
    const auto* pDos = At<IMAGE_DOS_HEADER>(hModule, 0);
    const auto* pNt = At<IMAGE_NT_HEADERS>(hModule, static_cast<DWORD>(pDos->e_lfanew));
    const auto& directory = pNt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* p = At<IMAGE_IMPORT_DESCRIPTOR>(hModule, directory.VirtualAddress); p->Name != 0;
         ++p) {
        auto* pName = At<IMAGE_THUNK_DATA>(hModule, p->OriginalFirstThunk);
        auto* pAddress = At<IMAGE_THUNK_DATA>(hModule, p->FirstThunk);
        for (; pName->u1.AddressOfData != 0; ++pName, ++pAddress) {
            if (IMAGE_SNAP_BY_ORDINAL(pName->u1.Ordinal))
                continue;
            const auto* pByName =
                At<IMAGE_IMPORT_BY_NAME>(hModule, static_cast<DWORD>(pName->u1.AddressOfData));
            if (std::strcmp(reinterpret_cast<const char*>(pByName->Name), name) == 0)
                return reinterpret_cast<void**>(&pAddress->u1.Function);
        }
    }
    throw std::runtime_error("the module imports no such function");
}

}  // namespace

FreedBlocks::FreedBlocks(HMODULE hModule) : m_pImport(FindImport(hModule, "free")) {
    Redirect(reinterpret_cast<void*>(&CheckedFree));
}

FreedBlocks::~FreedBlocks() {
    Redirect(reinterpret_cast<void*>(&std::free));
}

void FreedBlocks::Redirect(void* function) {
    DWORD dwProtection = 0;
    VirtualProtect(m_pImport, sizeof(void*), PAGE_READWRITE, &dwProtection);
    *m_pImport = function;
    VirtualProtect(m_pImport, sizeof(void*), dwProtection, &dwProtection);
}

void FreedBlocks::Watch(const void* block, size_t nBytes) {
    g_block = block;
    g_nBytes = nBytes;
    g_bFreed = false;
    g_nDirty = 0;
}

bool FreedBlocks::WasFreed() const {
    return g_bFreed;
}
size_t FreedBlocks::DirtyBytes() const {
    return g_nDirty;
}

}  // namespace mvp::test
