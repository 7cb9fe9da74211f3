#include "support/freed_blocks.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include <malloc.h>

#include "platform/system_library.h"

namespace mvp::test {
namespace {

FreedBlocks::Look g_look;

// The real functions, asked for by name: the program's own imports may be patched as well.
template <class Function>
Function Real(const char* pszLibrary, const char* pszName) {
    return FindFunction<Function>(GetModuleHandleA(pszLibrary), pszName);
}

void CheckedFree(void* p) {
    static const auto s_real = Real<decltype(&std::free)>("msvcrt.dll", "free");
    if (p != nullptr)
        g_look(p, _msize(p));
    s_real(p);
}

BOOL WINAPI CheckedHeapFree(HANDLE hHeap, DWORD dwFlags, void* p) {
    static const auto s_real = Real<decltype(&::HeapFree)>("kernel32.dll", "HeapFree");
    if (p != nullptr)
        g_look(p, HeapSize(hHeap, 0, p));
    return s_real(hHeap, dwFlags, p);
}

void LookAtLocal(HLOCAL hMemory) {
    if (const void* p = LocalLock(hMemory)) {
        g_look(p, LocalSize(hMemory));
        LocalUnlock(hMemory);
    }
}

HLOCAL WINAPI CheckedLocalFree(HLOCAL hMemory) {
    static const auto s_real = Real<decltype(&::LocalFree)>("kernel32.dll", "LocalFree");
    LookAtLocal(hMemory);
    return s_real(hMemory);
}

void* WINAPI CheckedHeapReAlloc(HANDLE hHeap, DWORD dwFlags, void* p, SIZE_T nBytes) {
    static const auto s_real = Real<decltype(&::HeapReAlloc)>("kernel32.dll", "HeapReAlloc");
    g_look(p, HeapSize(hHeap, 0, p));
    return s_real(hHeap, dwFlags, p, nBytes);
}

HLOCAL WINAPI CheckedLocalReAlloc(HLOCAL hMemory, SIZE_T nBytes, UINT nFlags) {
    static const auto s_real = Real<decltype(&::LocalReAlloc)>("kernel32.dll", "LocalReAlloc");
    LookAtLocal(hMemory);
    return s_real(hMemory, nBytes, nFlags);
}

// The check that takes the place of an imported function; null for one that frees nothing, or not
// to the heap that this program's runtime has.
void* CheckFor(const char* pszLibrary, const char* pszName) {
    const struct {
        const char* pszName;
        void* pCheck;
    } checks[] = {
        {"HeapFree", reinterpret_cast<void*>(&CheckedHeapFree)},
        {"HeapReAlloc", reinterpret_cast<void*>(&CheckedHeapReAlloc)},
        {"LocalFree", reinterpret_cast<void*>(&CheckedLocalFree)},
        {"LocalReAlloc", reinterpret_cast<void*>(&CheckedLocalReAlloc)},
    };
    for (const auto& check : checks)
        if (std::strcmp(pszName, check.pszName) == 0)
            return check.pCheck;
    if (std::strcmp(pszName, "free") == 0 && _stricmp(pszLibrary, "msvcrt.dll") == 0)
        return reinterpret_cast<void*>(&CheckedFree);
    return nullptr;
}

template <class T>
T* At(HMODULE hModule, ULONGLONG nOffset) {
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(hModule) + nOffset);
}

void Write(void** pImport, void* pFunction) {
    DWORD dwProtection = 0;
    VirtualProtect(pImport, sizeof(void*), PAGE_READWRITE, &dwProtection);
    *pImport = pFunction;
    VirtualProtect(pImport, sizeof(void*), dwProtection, &dwProtection);
}

}  // namespace

FreedBlocks::FreedBlocks(std::initializer_list<const char*> modules, Look look) {
    g_look = std::move(look);
    for (const char* pszModule : modules) {
        const HMODULE hModule = GetModuleHandleA(pszModule);
        if (hModule == nullptr)
            continue;
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
                const auto* pByName = At<IMAGE_IMPORT_BY_NAME>(hModule, pName->u1.AddressOfData);
                void* pCheck = CheckFor(At<char>(hModule, p->Name),
                                        reinterpret_cast<const char*>(pByName->Name));
                if (pCheck == nullptr)
                    continue;
                auto** pImport = reinterpret_cast<void**>(&pAddress->u1.Function);
                m_patches.push_back({pImport, *pImport});
                Write(pImport, pCheck);
            }
        }
    }
}

FreedBlocks::~FreedBlocks() {
    for (const Patch& patch : m_patches)
        Write(patch.pImport, patch.pOriginal);
    g_look = nullptr;
}

std::size_t DirtyBytes(const void* pBlock, std::size_t nBytes) {
    const auto* pBytes = static_cast<const unsigned char*>(pBlock);
    return nBytes - static_cast<std::size_t>(std::count(pBytes, pBytes + nBytes, 0));
}

}  // namespace mvp::test
