// Libraries of the system that are loaded at run time, because they may be absent or are seldom
// needed.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdio>

#include "platform/handle.h"

namespace mvp {

// Loads `name` (such as "UxTheme.dll") from the system folder and from nowhere else: a bare name
// would find a file of that name beside the host program first. Null when it is not there.
inline UniqueHandle<ModuleTraits> LoadSystemLibrary(const char* name) noexcept {
    char path[MAX_PATH];
    const UINT length = GetSystemDirectoryA(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return {};
    }
    const int room = MAX_PATH - static_cast<int>(length);
    const int needed = std::snprintf(path + length, static_cast<std::size_t>(room), "\\%s", name);
    if (needed < 0 || needed >= room) {
        return {};
    }
    return UniqueHandle<ModuleTraits>(LoadLibraryA(path));
}

// The function `name` of `hModule` as a pointer of type Function, or null.
template <class Function>
Function FindFunction(HMODULE hModule, const char* name) noexcept {
    // By way of void*, as the types differ on purpose.
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(hModule, name)));
}

}  // namespace mvp
