// Documents that the system's shell opens.
#pragma once

#include <windows.h>
#include <shellapi.h>

#include "platform/system_library.h"

namespace mvp {

// What the shell answers at most when it has not opened a document.
constexpr INT_PTR kLastShellError = 32;

// Opens the document at `pszPath`, shown normally, and returns the shell's answer; 0 when the
// system has no shell. A null verb is the document's default one.
inline INT_PTR OpenDocument(const char* pszVerb, const char* pszPath) noexcept {
    // Loaded when first asked for. Given up to the process, as the shell may go on working after
    // the call.
    static const HMODULE shell = LoadSystemLibrary("shell32.dll").release();
    const auto execute = FindFunction<decltype(&ShellExecuteA)>(shell, "ShellExecuteA");
    return execute != nullptr ? reinterpret_cast<INT_PTR>(execute(nullptr, pszVerb, pszPath,
                                                                  nullptr, nullptr, SW_SHOWNORMAL))
                              : 0;
}

}  // namespace mvp
