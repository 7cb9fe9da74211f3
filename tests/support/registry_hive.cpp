#include "support/registry_hive.h"

#include <stdexcept>

namespace mvp::test {
namespace {

void Check(LSTATUS nStatus, const std::string& strWhat) {
    if (nStatus != ERROR_SUCCESS) {
        throw std::runtime_error(strWhat + ": error " + std::to_string(nStatus));
    }
}

RegistryKey CreateVolatile(HKEY hParent, const std::string& strPath) {
    RegistryKey key;
    Check(RegCreateKeyExA(hParent, strPath.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                          nullptr, key.put(), nullptr),
          "creating the key " + strPath);
    return key;
}

}  // namespace

RegistryHive::RegistryHive(HKEY hReplaced)
    : m_hReplaced(hReplaced),
      m_strRoot("Software\\MvpTestHive" + std::to_string(GetCurrentProcessId()) + "-" +
                std::to_string(reinterpret_cast<UINT_PTR>(hReplaced) & 0xF)) {
    // What a crashed run with this process number may have left.
    RegDeleteTreeA(HKEY_CURRENT_USER, m_strRoot.c_str());
    m_root = CreateVolatile(HKEY_CURRENT_USER, m_strRoot);
    Check(RegOverridePredefKey(m_hReplaced, m_root.get()), "taking the hive's place");
}

RegistryHive::~RegistryHive() {
    RegOverridePredefKey(m_hReplaced, nullptr);
    m_root.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, m_strRoot.c_str());
}

RegistryKey RegistryHive::Open(const std::string& strPath) {
    return CreateVolatile(m_root.get(), strPath);
}

void RegistryHive::SetRaw(const std::string& strPath, const std::string& strName, DWORD dwType,
                          std::string_view bytes) {
    const void* data = bytes.data();
    size_t size = bytes.size();
    std::wstring wide(size, L'\0');
    if (dwType == REG_SZ || dwType == REG_EXPAND_SZ || dwType == REG_MULTI_SZ) {
        // The registry keeps text as 16-bit characters. When it stores them it looks at the
        // character behind the given ones and takes a terminator that it finds there along: there
        // must be none.
        const int length = MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(size),
                                               wide.data(), static_cast<int>(size));
        wide.resize(static_cast<size_t>(length));
        wide.push_back(L'#');
        data = wide.data();
        size = static_cast<size_t>(length) * sizeof(wchar_t);
    }
    Check(RegSetValueExW(Open(strPath).get(), std::wstring(strName.begin(), strName.end()).c_str(),
                         0, dwType, static_cast<const BYTE*>(data), static_cast<DWORD>(size)),
          "setting " + strName);
}

void RegistryHive::DeleteValue(const std::string& strPath, const std::string& strName) {
    Check(RegDeleteValueA(Open(strPath).get(), strName.c_str()), "deleting " + strName);
}

void RegistryHive::DeleteKey(const std::string& strPath) {
    Check(RegDeleteTreeA(m_root.get(), strPath.c_str()), "deleting the key " + strPath);
}

}  // namespace mvp::test
