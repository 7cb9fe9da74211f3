// Overwrites a secret's text before it is dropped.
#pragma once

#include <windows.h>

#include <dlgfw/string.h>

namespace mvp {

// Overwrites every byte with zero and empties the text. Asks for no memory.
inline void Wipe(CString& strSecret) {
    const int length = strSecret.GetLength();
    if (length == 0) {
        return;
    }
    // The text has a buffer of that size.
    SecureZeroMemory(strSecret.GetBuffer(length), static_cast<SIZE_T>(length));
    strSecret.ReleaseBuffer();
}

}  // namespace mvp
