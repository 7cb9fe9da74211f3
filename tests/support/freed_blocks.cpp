#include "support/freed_blocks.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include <malloc.h>

#include "platform/system_library.h"

namespace mvp::test {
namespace {

FreedBlocks::Look g_look;

// The real function, asked for by name: the program's own imports may be patched as well.
template <class Function>
Function* Real(Function&, const char* pszName, const char* pszLibrary = "kernel32.dll") {
    return FindFunction<Function*>(GetModuleHandleA(pszLibrary), pszName);
}

void CheckedFree(void* p) {
    static const auto real = Real(std::free, "free", "msvcrt.dll");
    if (p != nullptr) {
        g_look(p, _msize(p));
    }
    real(p);
}

BOOL WINAPI CheckedHeapFree(HANDLE hHeap, DWORD dwFlags, void* p) {
    static const auto real = Real(HeapFree, "HeapFree");
    if (p != nullptr) {
        g_look(p, HeapSize(hHeap, 0, p));
    }
    return real(hHeap, dwFlags, p);
}

void* WINAPI CheckedHeapReAlloc(HANDLE hHeap, DWORD dwFlags, void* p, SIZE_T nBytes) {
    static const auto real = Real(HeapReAlloc, "HeapReAlloc");
    g_look(p, HeapSize(hHeap, 0, p));
    return real(hHeap, dwFlags, p, nBytes);
}

BOOL WINAPI CheckedVirtualFree(void* p, SIZE_T nBytes, DWORD dwType) {
    static const auto real = Real(VirtualFree, "VirtualFree");
    MEMORY_BASIC_INFORMATION info = {};
    VirtualQuery(p, &info, sizeof info);
    g_look(p, info.RegionSize);
    return real(p, nBytes, dwType);
}

void LookAtLocal(HLOCAL hMemory) {
    if (const void* p = LocalLock(hMemory)) {
        g_look(p, LocalSize(hMemory));
        LocalUnlock(hMemory);
    }
}

HLOCAL WINAPI CheckedLocalFree(HLOCAL hMemory) {
    static const auto real = Real(LocalFree, "LocalFree");
    LookAtLocal(hMemory);
    return real(hMemory);
}

HLOCAL WINAPI CheckedLocalReAlloc(HLOCAL hMemory, SIZE_T nBytes, UINT nFlags) {
    static const auto real = Real(LocalReAlloc, "LocalReAlloc");
    LookAtLocal(hMemory);
    return real(hMemory, nBytes, nFlags);
}

}  // namespace

FreedBlocks::FreedBlocks(std::initializer_list<const char*> modules, Look look) {
    g_look = std::move(look);
    for (const char* moduleName : modules) {
        m_patches.emplace_back(moduleName, std::initializer_list<PatchedImports::Function>{
                                               // The C runtime that this program has; the system's
                                               // modules have another.
                                               {"free", Address(&CheckedFree), "msvcrt.dll"},
                                               {"HeapFree", Address(&CheckedHeapFree)},
                                               {"HeapReAlloc", Address(&CheckedHeapReAlloc)},
                                               {"VirtualFree", Address(&CheckedVirtualFree)},
                                               {"LocalFree", Address(&CheckedLocalFree)},
                                               {"LocalReAlloc", Address(&CheckedLocalReAlloc)},
                                           });
    }
}

FreedBlocks::~FreedBlocks() {
    m_patches.clear();
    g_look = nullptr;
}

std::size_t DirtyBytes(const void* pBlock, std::size_t nBytes) {
    const auto* bytes = static_cast<const unsigned char*>(pBlock);
    return nBytes - static_cast<std::size_t>(std::count(bytes, bytes + nBytes, 0));
}

}  // namespace mvp::test
