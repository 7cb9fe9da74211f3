// One call of GetPINFromUser, and what came of it.
#pragma once

#include <string>

#include "mvpingui/mvpingui.h"

namespace mvp::test {

struct PinRequest {
    static inline char* const kUntouchedBuffer = reinterpret_cast<char*>(UINT_PTR{0x1234});
    static constexpr uint32_t kUntouchedLength = 0xCAFE;

    HWND hParent = nullptr;
    const char* pszReader = "Reader A";
    int bShowLastTry = 0;
    uint32_t dwMin = 4;
    uint32_t dwMax = 8;

    char* pPin = kUntouchedBuffer;
    uint32_t cbPin = kUntouchedLength;

    bool bNullPin = false;
    bool bNullLength = false;

    uint32_t Call() {
        return GetPINFromUser(hParent, pszReader, bShowLastTry, dwMin, dwMax,
                              bNullPin ? nullptr : &pPin, bNullLength ? nullptr : &cbPin);
    }
    bool IsUntouched() const { return pPin == kUntouchedBuffer && cbPin == kUntouchedLength; }
    std::string Pin() const { return {pPin, cbPin}; }
    // Gives back what the call handed out, or nothing.
    void Free() { FreeGetPinBuffer(IsUntouched() ? nullptr : pPin, IsUntouched() ? 0 : cbPin); }
};

}  // namespace mvp::test
