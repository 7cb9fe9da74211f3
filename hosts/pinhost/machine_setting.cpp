#include "pinhost/machine_setting.h"

#include "pinhost/command.h"
#include "platform/machine_registry.h"

namespace pinhost {
namespace {

LSTATUS SetBytes(HKEY hKey, const char* pszName, DWORD dwType, const std::string& strBytes) {
    return RegSetValueExA(hKey, pszName, 0, dwType, reinterpret_cast<const BYTE*>(strBytes.data()),
                          static_cast<DWORD>(strBytes.size()));
}

}  // namespace

MachineSetting::MachineSetting(const mvp::TextSetting& setting, const std::string& strText)
    : m_pszName(setting.pszName) {
    LSTATUS error =
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, setting.pszKey, 0, nullptr, REG_OPTION_VOLATILE,
                        KEY_READ | KEY_WRITE | mvp::kMachineView, nullptr, m_key.put(), nullptr);
    if (error == ERROR_SUCCESS) {
        DWORD size = 0;
        m_bWasThere = RegQueryValueExA(m_key.get(), m_pszName, nullptr, nullptr, nullptr, &size) ==
                      ERROR_SUCCESS;
        m_strBefore.resize(size);
        error = m_bWasThere ? RegQueryValueExA(m_key.get(), m_pszName, nullptr, &m_dwTypeBefore,
                                               reinterpret_cast<BYTE*>(m_strBefore.data()), &size)
                            : ERROR_SUCCESS;
    }
    if (error == ERROR_SUCCESS) {
        error = SetBytes(m_key.get(), m_pszName, REG_SZ, strText + '\0');
    }
    if (error != ERROR_SUCCESS) {
        throw EnvironmentError(std::string("the machine's setting ") + m_pszName +
                               " cannot be written (error " + std::to_string(error) + ")");
    }
}

MachineSetting::~MachineSetting() {
    if (m_bWasThere) {
        SetBytes(m_key.get(), m_pszName, m_dwTypeBefore, m_strBefore);
    } else {
        RegDeleteValueA(m_key.get(), m_pszName);
    }
}

}  // namespace pinhost
