#include "support/patched_imports.h"

#include <windows.h>

#include <cstring>

namespace mvp::test {
namespace {

template <class Part>
Part* At(HMODULE hModule, ULONGLONG nOffset) {
    return reinterpret_cast<Part*>(reinterpret_cast<BYTE*>(hModule) + nOffset);
}

void Put(void** ppFunction, void* pFunction) {
    DWORD old = 0;
    VirtualProtect(ppFunction, sizeof *ppFunction, PAGE_READWRITE, &old);
    *ppFunction = pFunction;
    VirtualProtect(ppFunction, sizeof *ppFunction, old, &old);
}

// Calls `visit` with the library, the name and the place of the address of each import that has a
// name.
template <class Visit>
void ForEachImport(HMODULE hModule, Visit visit) {
    const auto* headers = At<IMAGE_NT_HEADERS>(
        hModule, static_cast<ULONGLONG>(At<IMAGE_DOS_HEADER>(hModule, 0)->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* p = At<IMAGE_IMPORT_DESCRIPTOR>(hModule, directory.VirtualAddress);
    for (; p->Name != 0; ++p) {
        const auto* name = At<IMAGE_THUNK_DATA>(hModule, p->OriginalFirstThunk);
        for (auto** function = At<void*>(hModule, p->FirstThunk); name->u1.AddressOfData != 0;
             ++name, ++function) {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                visit(At<char>(hModule, p->Name),
                      reinterpret_cast<const char*>(
                          At<IMAGE_IMPORT_BY_NAME>(hModule, name->u1.AddressOfData)->Name),
                      function);
            }
        }
    }
}

}  // namespace

PatchedImports::PatchedImports(const char* pszModule, std::initializer_list<Function> functions) {
    const HMODULE moduleHandle = GetModuleHandleA(pszModule);
    if (moduleHandle == nullptr) {
        return;
    }
    ForEachImport(moduleHandle,
                  [&](const char* pszLibrary, const char* pszName, void** ppFunction) {
                      for (const Function& function : functions) {
                          if (std::strcmp(function.pszName, pszName) == 0 &&
                              (function.pszLibrary == nullptr ||
                               _stricmp(function.pszLibrary, pszLibrary) == 0)) {
                              m_originals.emplace_back(ppFunction, *ppFunction);
                              Put(ppFunction, function.pReplacement);
                          }
                      }
                  });
}

PatchedImports::~PatchedImports() {
    for (const auto& [function, original] : m_originals) {
        Put(function, original);
    }
}

}  // namespace mvp::test
