// The readers of the suite's configuration, which lies under the local-machine hive and is never
// written here. A value is read at the moment it is needed. A failure is told by the log and by the
// result, memory that is short included; a value that is there and is not followed gets a line of
// its own that names it. Nothing is shown to the user. All of them may be called from any thread.
#pragma once

#include <windows.h>

#include <dlgfw/string.h>

// Reads a REG_DWORD. Stores `dwDefault` first, so that every failure leaves it there. Returns 0, or
// -1 on any failure, a null `pdwValue` among them.
int readDWORDFromRegistry_sz(const char* pszKeyPath, const char* pszValueName, DWORD* pdwValue,
                             DWORD dwDefault);

// Reads a REG_SZ of at most 260 bytes with its terminator. On success sets `*pstrValue` (may be
// null: the value is only checked) and returns 0; on any failure leaves it as it was and returns
// -1.
int readStringFromRegistry_sz(const char* pszKeyPath, const char* pszValueName, CString* pstrValue);

// Reads the suite's install path into `pszBuffer` of `*pdwCapacity` bytes. Always returns 0;
// success is told by `*pdwCapacity`, which becomes the value's size in bytes, or 0 when there is no
// path. The text need not be terminated when it fills the buffer.
int ReadInstallPath(char* pszBuffer, DWORD* pdwCapacity);
