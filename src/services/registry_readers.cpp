#include "services/registry_readers.h"

#include <algorithm>
#include <array>

#include "platform/barrier.h"
#include "platform/handle.h"
#include "services/log.h"

namespace {

// The longest text a value may hold, its terminator included.
constexpr DWORD kTextCapacity = MAX_PATH;

constexpr int kSuccess = 0;
constexpr int kFailure = -1;

// A value by its two names, null counting as empty. They are not copied: a reader has to answer
// when memory is short, too.
struct ValueName {
    constexpr ValueName(const char* pszKeyPath, const char* pszValueName) noexcept
        : pszKey(pszKeyPath != nullptr ? pszKeyPath : ""),
          pszValue(pszValueName != nullptr ? pszValueName : "") {}
    const char* pszKey;
    const char* pszValue;
};

struct OpenedValue {
    mvp::RegistryKey key;
    DWORD type = REG_NONE;
    DWORD size = 0;
};

void LogIgnored(const ValueName& name, const char* pszReason) noexcept {
    mvp::LogIgnoredSetting(name.pszKey, name.pszValue, pszReason);
}

// A value that is missing is no mistake; one that is there and cannot be had may be.
void LogUnlessMissing(const ValueName& name, LSTATUS error) noexcept {
    if (error != ERROR_FILE_NOT_FOUND)
        LogIgnored(name, "cannot be read");
}

// Opens the key and asks for the value's type and size; logs what fails and returns no key then.
OpenedValue OpenValue(const ValueName& name, REGSAM access) noexcept {
    if (*name.pszKey == '\0') {
        vklogLog(g_szLogTag, kLogError, "Could not read registry path name");
        return {};
    }
    if (*name.pszValue == '\0') {
        vklogLog(g_szLogTag, kLogError, "Could not read registry key name");
        return {};
    }
    OpenedValue value;
    const LSTATUS opened =
        RegOpenKeyExA(HKEY_LOCAL_MACHINE, name.pszKey, 0, access, value.key.put());
    if (opened != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogError, "RegOpenKeyEx returns the error %d",
                 static_cast<int>(opened));
        LogUnlessMissing(name, opened);
        return {};
    }
    const LSTATUS queried = RegQueryValueExA(value.key.get(), name.pszValue, nullptr, &value.type,
                                             nullptr, &value.size);
    if (queried != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogError, "RegQueryValueEx returns the error %d",
                 static_cast<int>(queried));
        LogUnlessMissing(name, queried);
        return {};
    }
    return value;
}

void LogSecondQuery(const ValueName& name, LSTATUS error, const char* pszReason) noexcept {
    vklogLog(g_szLogTag, kLogError, "RegQueryValueEx (2) returns the error %d",
             static_cast<int>(error));
    LogIgnored(name, error == ERROR_MORE_DATA ? pszReason : "cannot be read");
}

// Reads the value's data, never more than `capacity` bytes whatever size was reported before.
// `pszTooLong` says what is wrong with a value that has more.
bool ReadData(const OpenedValue& value, const ValueName& name, void* pData, DWORD capacity,
              const char* pszTooLong) noexcept {
    DWORD size = std::min(value.size, capacity);
    const LSTATUS error = RegQueryValueExA(value.key.get(), name.pszValue, nullptr, nullptr,
                                           static_cast<BYTE*>(pData), &size);
    if (error != ERROR_SUCCESS)
        LogSecondQuery(name, error, pszTooLong);
    return error == ERROR_SUCCESS;
}

int ReadDword(const ValueName& name, DWORD* pdwValue, DWORD dwDefault) noexcept {
    if (pdwValue == nullptr) {
        vklogLog(g_szLogTag, kLogError, "pdwValue == NULL");
        return kFailure;
    }
    *pdwValue = dwDefault;
    const OpenedValue value = OpenValue(name, KEY_READ);
    if (!value.key)
        return kFailure;
    if (value.type != REG_DWORD) {
        vklogLog(g_szLogTag, kLogError, "dwType(%d) <> REG_DWORD", static_cast<int>(value.type));
        LogIgnored(name, "the type is not REG_DWORD");
        return kFailure;
    }
    const bool read = ReadData(value, name, pdwValue, sizeof *pdwValue, "longer than 4 bytes");
    return read ? kSuccess : kFailure;
}

int ReadString(const ValueName& name, CString* pstrValue) {
    constexpr char kTooLong[] = "longer than 260 bytes with its terminator";
    const OpenedValue value = OpenValue(name, KEY_QUERY_VALUE);
    if (!value.key)
        return kFailure;
    if (value.type != REG_SZ) {
        vklogLog(g_szLogTag, kLogError, "dwType(%d) <> REG_SZ", static_cast<int>(value.type));
        LogIgnored(name, "the type is not REG_SZ");
        return kFailure;
    }
    std::array<char, kTextCapacity> buffer{};
    if (!ReadData(value, name, buffer.data(), kTextCapacity, kTooLong))
        return kFailure;
    // A text that fills the buffer has lost its terminator on the way into the registry.
    if (buffer.back() != '\0') {
        LogSecondQuery(name, ERROR_MORE_DATA, kTooLong);
        return kFailure;
    }
    if (pstrValue != nullptr)
        *pstrValue = buffer.data();
    return kSuccess;
}

constexpr ValueName kInstallPath("Software\\Quillon\\Veskara", "VeskaraInstallPath");

// The value's size, or 0 when there is no usable path.
DWORD ReadInstallPathValue(char* pszBuffer, DWORD capacity) {
    mvp::RegistryKey key;
    LSTATUS error = RegOpenKeyExA(HKEY_LOCAL_MACHINE, kInstallPath.pszKey, 0, KEY_READ, key.put());
    if (error != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogInfo, "Warning : RegOpenKeyEx returns %d",
                 static_cast<int>(error));
        return 0;
    }
    DWORD type = REG_NONE;
    DWORD size = 0;
    error = RegQueryValueExA(key.get(), kInstallPath.pszValue, nullptr, &type, nullptr, &size);
    if (error != ERROR_SUCCESS) {
        vklogLog(g_szLogTag, kLogInfo, "Warning : RegQueryValueEx returns %d",
                 static_cast<int>(error));
        return 0;
    }
    if (type != REG_SZ) {
        vklogLog(g_szLogTag, kLogError, "dwType(%d) <> REG_SZ", static_cast<int>(type));
        LogIgnored(kInstallPath, "the type is not REG_SZ");
        return 0;
    }
    if (size > capacity) {
        vklogLog(g_szLogTag, kLogError, "size (%d) > %d ", static_cast<int>(size),
                 static_cast<int>(capacity));
        LogIgnored(kInstallPath, "too long");
        return 0;
    }
    DWORD read = size;
    error = RegQueryValueExA(key.get(), kInstallPath.pszValue, nullptr, nullptr,
                             reinterpret_cast<BYTE*>(pszBuffer), &read);
    if (error != ERROR_SUCCESS)
        vklogLog(g_szLogTag, kLogInfo, "Warning : RegQueryValueEx returns %d",
                 static_cast<int>(error));
    return size;
}

}  // namespace

int readDWORDFromRegistry_sz(const char* pszKeyPath, const char* pszValueName, DWORD* pdwValue,
                             DWORD dwDefault) {
    const ValueName name(pszKeyPath, pszValueName);
    vklogLog(g_szLogTag, kLogEntry, "readDWORDFromRegistry_sz (Key=%s)", name.pszValue);
    const int result = ReadDword(name, pdwValue, dwDefault);
    vklogLog(g_szLogTag, kLogExit, "readDWORDFromRegistry_sz (%d)", result);
    return result;
}

int readStringFromRegistry_sz(const char* pszKeyPath, const char* pszValueName,
                              CString* pstrValue) {
    vklogLog(g_szLogTag, kLogEntry, "readStringFromRegistry_sz");
    const int result = mvp::Guarded(
        kFailure,
        [=] {
            return ReadString({pszKeyPath, pszValueName}, pstrValue);
        },
        mvp::LogException("readStringFromRegistry_sz"));
    vklogLog(g_szLogTag, kLogExit, "readStringFromRegistry_sz ! %d", result);
    return result;
}

int ReadInstallPath(char* pszBuffer, DWORD* pdwCapacity) {
    vklogLog(g_szLogTag, kLogDetail, "ReadInstallPath begins");
    *pdwCapacity = ReadInstallPathValue(pszBuffer, *pdwCapacity);
    vklogLog(g_szLogTag, kLogDetail, "ReadInstallPath ends");
    return 0;
}
