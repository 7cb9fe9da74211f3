// One bounded read of a registry value, which every setting is read by.
//
//     DWORD value = 0;
//     const mvp::RegistryRead read =
//         mvp::ReadRegistry({kKey, kName}, &value, sizeof value, REG_DWORD);
//     if (!read)
//         Log(read.failed, read.error);
//
// Nothing is logged and nothing allocated: what a failure means and how it is told is the caller's.
// May be called from any thread.
#pragma once

#include <windows.h>

#include "settings/setting.h"

namespace mvp {

struct RegistryValue {
    const char* pszKey;
    const char* pszName;  // null: the key's default value
    REGSAM access = KEY_READ;
    HKEY hRoot = HKEY_LOCAL_MACHINE;
};

inline RegistryValue ValueOf(const SettingName& setting) noexcept {
    return {setting.pszKey, setting.pszName};
}

// The steps of a read, in their order.
enum class RegistryStep { None, OpenKey, QueryValue, CheckType, ReadData };

struct RegistryRead {
    RegistryStep failed = RegistryStep::None;
    LSTATUS error = ERROR_SUCCESS;  // of the failed step; ERROR_MORE_DATA: larger than the buffer
    DWORD type = REG_NONE;          // as found, once the value has been queried
    DWORD size = 0;                 // the value's size in bytes, once it has been queried

    explicit operator bool() const noexcept { return failed == RegistryStep::None; }
};

constexpr DWORD kAnyRegistryType = ~DWORD{0};

// Reads at most `capacity` bytes, never more than the value had when its size was asked for, and
// nothing of a value that is larger or of another type. A text need not end in a zero.
RegistryRead ReadRegistry(const RegistryValue& value, void* pData, DWORD capacity,
                          DWORD type = kAnyRegistryType) noexcept;

}  // namespace mvp
