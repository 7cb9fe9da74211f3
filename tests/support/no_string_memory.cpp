#include "support/no_string_memory.h"

#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace mvp::test {
namespace {

template <class Record>
Record* At(HMODULE hModule, ULONGLONG nOffset) {
    return reinterpret_cast<Record*>(reinterpret_cast<BYTE*>(hModule) + nOffset);
}

// Where the module's imports hold the address of `function`.
ULONGLONG* FindImport(HMODULE hModule, std::string_view function) {
    const auto* pHeaders =
        At<IMAGE_NT_HEADERS64>(hModule, DWORD(At<IMAGE_DOS_HEADER>(hModule, 0)->e_lfanew));
    const auto& directory = pHeaders->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* pImports = At<IMAGE_IMPORT_DESCRIPTOR>(hModule, directory.VirtualAddress);
    for (; pImports->Name != 0; ++pImports) {
        const auto* pName = At<IMAGE_THUNK_DATA64>(hModule, pImports->OriginalFirstThunk);
        auto* pEntry = At<IMAGE_THUNK_DATA64>(hModule, pImports->FirstThunk);
        for (; pName->u1.AddressOfData != 0; ++pName, ++pEntry) {
            if (!IMAGE_SNAP_BY_ORDINAL64(pName->u1.Ordinal) &&
                At<IMAGE_IMPORT_BY_NAME>(hModule, pName->u1.AddressOfData)->Name == function)
                return &pEntry->u1.Function;
        }
    }
    throw std::runtime_error("the module does not import the function");
}

void* Refuse(std::size_t nCount, std::size_t nSize) {
    return nSize == 1 ? nullptr : std::calloc(nCount, nSize);
}

void Put(ULONGLONG* pEntry, ULONGLONG nFunction) {
    DWORD nOld = 0;
    VirtualProtect(pEntry, sizeof *pEntry, PAGE_READWRITE, &nOld);
    *pEntry = nFunction;
    VirtualProtect(pEntry, sizeof *pEntry, nOld, &nOld);
}

}  // namespace

NoStringMemory::NoStringMemory()
    : m_pImport(FindImport(GetModuleHandleA("dlgfw.dll"), "calloc")), m_nCalloc(*m_pImport) {
    Put(m_pImport, reinterpret_cast<ULONGLONG>(&Refuse));
}

NoStringMemory::~NoStringMemory() {
    Put(m_pImport, m_nCalloc);
}

}  // namespace mvp::test
