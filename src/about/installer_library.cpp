#include "about/installer_library.h"

#include "platform/system_library.h"

namespace mvp {

InstallerLibrary::InstallerLibrary() noexcept : m_library(LoadSystemLibrary("msi.dll")) {
    if (!m_library) {
        return;
    }
    const auto find = [this]<class Function>(const char* pszName, Function& pfnFound) {
        pfnFound = FindFunction<Function>(m_library.get(), pszName);
    };
    find("MsiGetProductInfoA", m_functions.MsiGetProductInfoA);
    find("MsiGetPatchInfoA", m_functions.MsiGetPatchInfoA);
    find("MsiEnumPatchesA", m_functions.MsiEnumPatchesA);
    find("MsiOpenDatabaseA", m_functions.MsiOpenDatabaseA);
    find("MsiDatabaseOpenViewA", m_functions.MsiDatabaseOpenViewA);
    find("MsiViewGetColumnInfo", m_functions.MsiViewGetColumnInfo);
    find("MsiViewExecute", m_functions.MsiViewExecute);
    find("MsiViewFetch", m_functions.MsiViewFetch);
    find("MsiRecordGetStringA", m_functions.MsiRecordGetStringA);
    find("MsiCloseHandle", m_functions.MsiCloseHandle);
    find("MsiCloseAllHandles", m_functions.MsiCloseAllHandles);
}

}  // namespace mvp
