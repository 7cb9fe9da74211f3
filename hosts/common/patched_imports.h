// Functions of a host or a test in the place of those that a module imports, while the object
// lives:
//
//     const PatchedImports refused("dlgfw.dll", {{"calloc", Address(&Refuse)}});
//
// Calls of the module's own code go to them, on all threads; those of other modules do not.
#pragma once

#include <windows.h>

#include <cstring>
#include <initializer_list>
#include <utility>
#include <vector>

namespace mvp {

class PatchedImports {
public:
    struct Function {
        const char* pszName;
        void* pReplacement;
        const char* pszLibrary = nullptr;  // where it is imported from; null: from anywhere
    };

    // The module by its file name; null is the program itself. A module that is not loaded, and a
    // function that it does not import, is left out.
    PatchedImports(const char* pszModule, std::initializer_list<Function> functions) {
        const HMODULE moduleHandle = GetModuleHandleA(pszModule);
        if (moduleHandle == nullptr) {
            return;
        }
        const auto* headers = At<IMAGE_NT_HEADERS>(
            moduleHandle, static_cast<ULONGLONG>(At<IMAGE_DOS_HEADER>(moduleHandle, 0)->e_lfanew));
        const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        const auto* p = At<IMAGE_IMPORT_DESCRIPTOR>(moduleHandle, directory.VirtualAddress);
        for (; p->Name != 0; ++p) {
            const auto* name = At<IMAGE_THUNK_DATA>(moduleHandle, p->OriginalFirstThunk);
            auto** function = At<void*>(moduleHandle, p->FirstThunk);
            for (; name->u1.AddressOfData != 0; ++name, ++function) {
                if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                    Patch(function,
                          At<IMAGE_IMPORT_BY_NAME>(moduleHandle, name->u1.AddressOfData)->Name,
                          At<char>(moduleHandle, p->Name), functions);
                }
            }
        }
    }
    PatchedImports(const PatchedImports&) = delete;
    PatchedImports& operator=(const PatchedImports&) = delete;
    ~PatchedImports() {
        for (const auto& [function, original] : m_originals) {
            Put(function, original);
        }
    }

private:
    template <class Part>
    static Part* At(HMODULE hModule, ULONGLONG nOffset) {
        return reinterpret_cast<Part*>(reinterpret_cast<BYTE*>(hModule) + nOffset);
    }
    static void Put(void** ppFunction, void* pFunction) {
        DWORD old = 0;
        VirtualProtect(ppFunction, sizeof *ppFunction, PAGE_READWRITE, &old);
        *ppFunction = pFunction;
        VirtualProtect(ppFunction, sizeof *ppFunction, old, &old);
    }
    void Patch(void** ppFunction, const void* pName, const char* pszLibrary,
               std::initializer_list<Function> functions) {
        for (const Function& function : functions) {
            if (std::strcmp(function.pszName, static_cast<const char*>(pName)) == 0 &&
                (function.pszLibrary == nullptr ||
                 _stricmp(function.pszLibrary, pszLibrary) == 0)) {
                m_originals.emplace_back(ppFunction, *ppFunction);
                Put(ppFunction, function.pReplacement);
            }
        }
    }

    std::vector<std::pair<void**, void*>> m_originals;  // where each stood
};

template <class Function>
void* Address(Function* function) {
    return reinterpret_cast<void*>(function);
}

}  // namespace mvp
