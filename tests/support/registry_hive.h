// A machine-wide registry hive of the test's own, or one of classes: empty at first, gone
// afterwards.
//
//     RegistryHive hive;
//     hive.SetString("Software\\Quillon\\Veskara", "VeskaraInstallPath", "C:\\veskara\\");
//     ...  // the library now reads what the test has set
//
// While it lives, the whole process sees it in place of HKEY_LOCAL_MACHINE, or of the root it is
// given. It stands on a volatile key of the current user, unique for the process and the root, so
// that tests need no rights and leave nothing behind. One of a root at a time; whoever opened keys
// below the root keeps those he opened.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/handle.h"

namespace mvp::test {

class RegistryHive {
public:
    explicit RegistryHive(HKEY hReplaced = HKEY_LOCAL_MACHINE)
        : m_hReplaced(hReplaced),
          m_strRoot("Software\\MvpTestHive" + std::to_string(GetCurrentProcessId()) + "-" +
                    std::to_string(reinterpret_cast<UINT_PTR>(hReplaced) & 0xF)) {
        // What a crashed run with this process number may have left.
        RegDeleteTreeA(HKEY_CURRENT_USER, m_strRoot.c_str());
        m_root = CreateVolatile(HKEY_CURRENT_USER, m_strRoot);
        Check(RegOverridePredefKey(m_hReplaced, m_root.get()), "taking the hive's place");
    }
    ~RegistryHive() {
        RegOverridePredefKey(m_hReplaced, nullptr);
        m_root.reset();
        RegDeleteTreeA(HKEY_CURRENT_USER, m_strRoot.c_str());
    }

    // Each makes the key when it is missing. Paths are relative to the root. The default value has
    // no name.
    void CreateKey(const std::string& strPath) { Open(strPath); }
    void SetString(const std::string& strPath, const std::string& strName, std::string_view text) {
        SetRaw(strPath, strName, REG_SZ, std::string(text) + '\0');
    }
    void SetDword(const std::string& strPath, const std::string& strName, DWORD dwValue) {
        SetRaw(strPath, strName, REG_DWORD, {reinterpret_cast<char*>(&dwValue), sizeof dwValue});
    }
    // A string value whose stored bytes end with the text: no terminator.
    void SetUnterminated(const std::string& strPath, const std::string& strName,
                         std::string_view text) {
        SetRaw(strPath, strName, REG_SZ, text);
    }
    // Bytes of any type and size. An ANSI reader of the string types gets `bytes` as they stand.
    void SetRaw(const std::string& strPath, const std::string& strName, DWORD dwType,
                std::string_view bytes) {
        const void* data = bytes.data();
        size_t size = bytes.size();
        std::wstring wide(size, L'\0');
        if (dwType == REG_SZ || dwType == REG_EXPAND_SZ || dwType == REG_MULTI_SZ) {
            // The registry keeps text as 16-bit characters. When it stores them it looks at the
            // character behind the given ones and takes a terminator that it finds there along:
            // there must be none.
            const int length = MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(size),
                                                   wide.data(), static_cast<int>(size));
            wide.resize(static_cast<size_t>(length));
            wide.push_back(L'#');
            data = wide.data();
            size = static_cast<size_t>(length) * sizeof(wchar_t);
        }
        Check(RegSetValueExW(Open(strPath).get(),
                             std::wstring(strName.begin(), strName.end()).c_str(), 0, dwType,
                             static_cast<const BYTE*>(data), static_cast<DWORD>(size)),
              "setting " + strName);
    }

    void DeleteValue(const std::string& strPath, const std::string& strName) {
        Check(RegDeleteValueA(Open(strPath).get(), strName.c_str()), "deleting " + strName);
    }
    void DeleteKey(const std::string& strPath) {  // with all below it
        Check(RegDeleteTreeA(m_root.get(), strPath.c_str()), "deleting the key " + strPath);
    }

private:
    static void Check(LSTATUS nStatus, const std::string& strWhat) {
        if (nStatus != ERROR_SUCCESS) {
            throw std::runtime_error(strWhat + ": error " + std::to_string(nStatus));
        }
    }
    static RegistryKey CreateVolatile(HKEY hParent, const std::string& strPath) {
        RegistryKey key;
        Check(RegCreateKeyExA(hParent, strPath.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, key.put(), nullptr),
              "creating the key " + strPath);
        return key;
    }
    RegistryKey Open(const std::string& strPath) { return CreateVolatile(m_root.get(), strPath); }

    HKEY m_hReplaced;
    std::string m_strRoot;  // below HKEY_CURRENT_USER
    RegistryKey m_root;
};

}  // namespace mvp::test
