// The machine's configuration in the registry.
//
// A 64-bit system keeps two views of the local machine's software keys, and shows a 32-bit process
// the other one. Administrators, their policies and the package write the 64-bit view alone, and
// what they write goes for a card's user in every host: so 32-bit libraries read it there, too. To
// a 32-bit system the flag says nothing, and it goes with every access.
#pragma once

#include <windows.h>

#include "platform/handle.h"

namespace mvp {

constexpr REGSAM kMachineView = KEY_WOW64_64KEY;

// Opens a key below HKEY_LOCAL_MACHINE; returns the system's error.
inline LSTATUS OpenMachineKey(const char* pszKey, REGSAM access, RegistryKey& key) noexcept {
    return RegOpenKeyExA(HKEY_LOCAL_MACHINE, pszKey, 0, access | kMachineView, key.put());
}

}  // namespace mvp
