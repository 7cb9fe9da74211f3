// Waiting for what other threads do, with a deadline.
#pragma once

#include <windows.h>

#include <functional>

// Whether `holds` became true within `nDeadlineMs`.
inline bool WaitUntil(const std::function<bool()>& holds, ULONGLONG nDeadlineMs = 20000) {
    const ULONGLONG nEnd = GetTickCount64() + nDeadlineMs;
    while (!holds()) {
        if (GetTickCount64() > nEnd)
            return false;
        Sleep(2);
    }
    return true;
}
