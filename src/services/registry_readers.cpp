#include "services/registry_readers.h"

#include <array>
#include <cstdio>

#include "platform/barrier.h"
#include "services/log.h"
#include "services/registry_value.h"
#include "settings/settings.h"

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

void LogIgnored(const ValueName& name, const char* pszReason) noexcept {
    mvp::LogIgnoredSetting({name.pszKey, name.pszValue}, pszReason);
}

// What is particular to a reader.
struct Kind {
    DWORD type;
    const char* pszType;
    REGSAM access;
    const char* pszTooLong;  // what is wrong with a value that has more than the capacity
};
constexpr Kind kDword{REG_DWORD, "REG_DWORD", KEY_READ, "longer than 4 bytes"};
constexpr Kind kText{REG_SZ, "REG_SZ", KEY_QUERY_VALUE,
                     "longer than 260 bytes with its terminator"};

void LogWrongType(const ValueName& name, DWORD found, const char* pszType) noexcept {
    vklogLog(g_szLogTag, kLogError, "dwType(%d) <> %s", static_cast<int>(found), pszType);
    std::array<char, 32> reason{};
    std::snprintf(reason.data(), reason.size(), "the type is not %s", pszType);
    LogIgnored(name, reason.data());
}

void LogUnreadData(const ValueName& name, LSTATUS error, const Kind& kind) noexcept {
    vklogLog(g_szLogTag, kLogError, "RegQueryValueEx (2) returns the error %d",
             static_cast<int>(error));
    LogIgnored(name, error == ERROR_MORE_DATA ? kind.pszTooLong : "cannot be read");
}

void LogFailure(const ValueName& name, const mvp::RegistryRead& read, const Kind& kind) noexcept {
    switch (read.failed) {
        case mvp::RegistryStep::OpenKey:
        case mvp::RegistryStep::QueryValue:
            vklogLog(g_szLogTag, kLogError,
                     read.failed == mvp::RegistryStep::OpenKey
                         ? "RegOpenKeyEx returns the error %d"
                         : "RegQueryValueEx returns the error %d",
                     static_cast<int>(read.error));
            // A value that is missing is no mistake; one that is there and cannot be had may be.
            if (read.error != ERROR_FILE_NOT_FOUND) {
                LogIgnored(name, "cannot be read");
            }
            break;
        case mvp::RegistryStep::CheckType:
            LogWrongType(name, read.type, kind.pszType);
            break;
        case mvp::RegistryStep::ReadData:
            LogUnreadData(name, read.error, kind);
            break;
        case mvp::RegistryStep::None:
            break;
    }
}

// Reads the value, and logs what fails.
bool ReadValue(const ValueName& name, const Kind& kind, void* pData, DWORD capacity) noexcept {
    if (*name.pszKey == '\0' || *name.pszValue == '\0') {
        vklogLog(g_szLogTag, kLogError,
                 *name.pszKey == '\0' ? "Could not read registry path name"
                                      : "Could not read registry key name");
        return false;
    }
    const mvp::RegistryRead read =
        mvp::ReadRegistry({name.pszKey, name.pszValue, kind.access}, pData, capacity, kind.type);
    LogFailure(name, read, kind);
    return static_cast<bool>(read);
}

int ReadDword(const ValueName& name, DWORD* pdwValue, DWORD dwDefault) noexcept {
    if (pdwValue == nullptr) {
        vklogLog(g_szLogTag, kLogError, "pdwValue == NULL");
        return kFailure;
    }
    *pdwValue = dwDefault;
    return ReadValue(name, kDword, pdwValue, sizeof *pdwValue) ? kSuccess : kFailure;
}

int ReadString(const ValueName& name, CString* pstrValue) {
    std::array<char, kTextCapacity> buffer{};
    if (!ReadValue(name, kText, buffer.data(), kTextCapacity)) {
        return kFailure;
    }
    // A text that fills the buffer has lost its terminator on the way into the registry.
    if (buffer.back() != '\0') {
        LogUnreadData(name, ERROR_MORE_DATA, kText);
        return kFailure;
    }
    if (pstrValue != nullptr) {
        *pstrValue = buffer.data();
    }
    return kSuccess;
}

constexpr ValueName kInstallPath(mvp::settings::kInstallPath.pszKey,
                                 mvp::settings::kInstallPath.pszName);

// The value's size, or 0 when there is no usable path.
DWORD ReadInstallPathValue(char* pszBuffer, DWORD capacity) noexcept {
    const mvp::RegistryRead read = mvp::ReadRegistry({kInstallPath.pszKey, kInstallPath.pszValue},
                                                     pszBuffer, capacity, REG_SZ);
    switch (read.failed) {
        case mvp::RegistryStep::OpenKey:
            vklogLog(g_szLogTag, kLogInfo, "Warning : RegOpenKeyEx returns %d",
                     static_cast<int>(read.error));
            return 0;
        case mvp::RegistryStep::QueryValue:
            vklogLog(g_szLogTag, kLogInfo, "Warning : RegQueryValueEx returns %d",
                     static_cast<int>(read.error));
            return 0;
        case mvp::RegistryStep::CheckType:
            LogWrongType(kInstallPath, read.type, "REG_SZ");
            return 0;
        case mvp::RegistryStep::ReadData:
            if (read.size > capacity) {
                vklogLog(g_szLogTag, kLogError, "size (%d) > %d ", static_cast<int>(read.size),
                         static_cast<int>(capacity));
                LogIgnored(kInstallPath, "too long");
                return 0;
            }
            vklogLog(g_szLogTag, kLogInfo, "Warning : RegQueryValueEx returns %d",
                     static_cast<int>(read.error));
            break;
        case mvp::RegistryStep::None:
            break;
    }
    return read.size;
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
