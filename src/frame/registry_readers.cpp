#include "frame/registry_readers.h"

#include <algorithm>
#include <array>

#include "frame/log.h"
#include "platform/handle.h"

namespace {

// The longest text a value may hold, its terminator included.
constexpr DWORD kTextCapacity = MAX_PATH;

constexpr int kSuccess = 0;
constexpr int kFailure = -1;

constexpr char kInstallKey[] = "Software\\Quillon\\Veskara";

struct OpenedValue {
    mvp::RegistryKey key;
    DWORD type = REG_NONE;
    DWORD size = 0;
};

// Opens the key and asks for the value's type and size; logs what fails and returns no key then.
OpenedValue OpenValue(const CString& strKeyPath, const CString& strValueName, REGSAM access) {
    if (strKeyPath.IsEmpty()) {
        vklogLog(g_szLogTag, kLogError, "Could not read registry path name");
        return {};
    }
    if (strValueName.IsEmpty()) {
        vklogLog(g_szLogTag, kLogError, "Could not read registry key name");
        return {};
    }
    OpenedValue value;
    const LSTATUS opened =
        RegOpenKeyExA(HKEY_LOCAL_MACHINE, strKeyPath, 0, access, value.key.put());
    if (opened != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogError, "RegOpenKeyEx returns the error %d",
                 static_cast<int>(opened));
        return {};
    }
    const LSTATUS queried =
        RegQueryValueExA(value.key.get(), strValueName, nullptr, &value.type, nullptr, &value.size);
    if (queried != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogError, "RegQueryValueEx returns the error %d",
                 static_cast<int>(queried));
        return {};
    }
    return value;
}

// Reads the value's data, never more than `capacity` bytes whatever size was reported before.
bool ReadData(const OpenedValue& value, const CString& strValueName, void* pData, DWORD capacity) {
    DWORD size = std::min(value.size, capacity);
    const LSTATUS error = RegQueryValueExA(value.key.get(), strValueName, nullptr, nullptr,
                                           static_cast<BYTE*>(pData), &size);
    if (error == ERROR_SUCCESS)
        return true;
    vklogLog(g_szLogTag, kLogError, "RegQueryValueEx (2) returns the error %d",
             static_cast<int>(error));
    return false;
}

int ReadDword(const CString& strKeyPath, const CString& strValueName, DWORD* pdwValue,
              DWORD dwDefault) {
    if (pdwValue == nullptr) {
        vklogLog(g_szLogTag, kLogError, "pdwValue == NULL");
        return kFailure;
    }
    *pdwValue = dwDefault;
    const OpenedValue value = OpenValue(strKeyPath, strValueName, KEY_READ);
    if (!value.key)
        return kFailure;
    if (value.type != REG_DWORD) {
        vklogLog(g_szLogTag, kLogError, "dwType(%d) <> REG_DWORD", static_cast<int>(value.type));
        return kFailure;
    }
    return ReadData(value, strValueName, pdwValue, sizeof *pdwValue) ? kSuccess : kFailure;
}

int ReadString(const CString& strKeyPath, const CString& strValueName, CString* pstrValue) {
    const OpenedValue value = OpenValue(strKeyPath, strValueName, KEY_QUERY_VALUE);
    if (!value.key)
        return kFailure;
    if (value.type != REG_SZ) {
        vklogLog(g_szLogTag, kLogError, "dwType(%d) <> REG_SZ", static_cast<int>(value.type));
        return kFailure;
    }
    std::array<char, kTextCapacity> buffer{};
    if (!ReadData(value, strValueName, buffer.data(), kTextCapacity))
        return kFailure;
    // A text that fills the buffer has lost its terminator on the way into the registry.
    if (buffer.back() != '\0') {
        vklogLog(g_szLogTag, kLogError, "RegQueryValueEx (2) returns the error %d",
                 static_cast<int>(ERROR_MORE_DATA));
        return kFailure;
    }
    if (pstrValue != nullptr)
        *pstrValue = buffer.data();
    return kSuccess;
}

// The value's size, or 0 when there is no usable path.
DWORD ReadInstallPathValue(char* pszBuffer, DWORD capacity) {
    mvp::RegistryKey key;
    LSTATUS error = RegOpenKeyExA(HKEY_LOCAL_MACHINE, kInstallKey, 0, KEY_READ, key.put());
    if (error != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogInfo, "Warning : RegOpenKeyEx returns %d",
                 static_cast<int>(error));
        return 0;
    }
    DWORD type = REG_NONE;
    DWORD size = 0;
    error = RegQueryValueExA(key.get(), "VeskaraInstallPath", nullptr, &type, nullptr, &size);
    if (error != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogInfo, "Warning : RegQueryValueEx returns %d",
                 static_cast<int>(error));
        return 0;
    }
    if (type != REG_SZ) {
        vklogLog(g_szLogTag, kLogError, "dwType(%d) <> REG_SZ", static_cast<int>(type));
        return 0;
    }
    if (size > capacity) {
        vklogLog(g_szLogTag, kLogError, "size (%d) > %d ", static_cast<int>(size),
                 static_cast<int>(capacity));
        return 0;
    }
    DWORD read = size;
    error = RegQueryValueExA(key.get(), "VeskaraInstallPath", nullptr, nullptr,
                             reinterpret_cast<BYTE*>(pszBuffer), &read);
    if (error != ERROR_SUCCESS)
        vklogLog(g_szLogTag, kLogInfo, "Warning : RegQueryValueEx returns %d",
                 static_cast<int>(error));
    return size;
}

}  // namespace

int readDWORDFromRegistry_sz(const char* pszKeyPath, const char* pszValueName, DWORD* pdwValue,
                             DWORD dwDefault) {
    const CString strKeyPath(pszKeyPath);
    const CString strValueName(pszValueName);
    vklogLog(g_szLogTag, kLogEntry, "readDWORDFromRegistry_sz (Key=%s)",
             static_cast<LPCSTR>(strValueName));
    const int result = ReadDword(strKeyPath, strValueName, pdwValue, dwDefault);
    vklogLog(g_szLogTag, kLogExit, "readDWORDFromRegistry_sz (%d)", result);
    return result;
}

int readStringFromRegistry_sz(const char* pszKeyPath, const char* pszValueName,
                              CString* pstrValue) {
    const CString strKeyPath(pszKeyPath);
    const CString strValueName(pszValueName);
    vklogLog(g_szLogTag, kLogEntry, "readStringFromRegistry_sz");
    const int result = ReadString(strKeyPath, strValueName, pstrValue);
    vklogLog(g_szLogTag, kLogExit, "readStringFromRegistry_sz ! %d", result);
    return result;
}

int ReadInstallPath(char* pszBuffer, DWORD* pdwCapacity) {
    vklogLog(g_szLogTag, kLogDetail, "ReadInstallPath begins");
    *pdwCapacity = ReadInstallPathValue(pszBuffer, *pdwCapacity);
    vklogLog(g_szLogTag, kLogDetail, "ReadInstallPath ends");
    return 0;
}
