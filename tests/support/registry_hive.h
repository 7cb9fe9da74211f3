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

#include <string>
#include <string_view>

#include "platform/handle.h"

namespace mvp::test {

class RegistryHive {
public:
    explicit RegistryHive(HKEY hReplaced = HKEY_LOCAL_MACHINE);
    ~RegistryHive();

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
                std::string_view bytes);

    void DeleteValue(const std::string& strPath, const std::string& strName);
    void DeleteKey(const std::string& strPath);  // with all below it

private:
    RegistryKey Open(const std::string& strPath);

    HKEY m_hReplaced;
    std::string m_strRoot;  // below HKEY_CURRENT_USER
    RegistryKey m_root;
};

}  // namespace mvp::test
