// The document that tells what to do about an expiry.
#pragma once

#include <windows.h>

namespace mvp {

// Opens the document that the configuration names. False when it names none or the shell cannot
// open it; the log says why. On the thread of the dialog that asks.
bool OpenValidityHelp();

// The shell's function. Tests put their own in its place; null restores the system's.
using ShellOpener = HINSTANCE(WINAPI*)(HWND hOwner, LPCSTR pszVerb, LPCSTR pszFile,
                                       LPCSTR pszParameters, LPCSTR pszFolder, INT nShow);
void SetShellOpener(ShellOpener pOpener) noexcept;

}  // namespace mvp
