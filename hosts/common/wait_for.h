// Waiting for a condition with a deadline.
#pragma once

#include <windows.h>

#include <chrono>

namespace mvp {

// Asks `condition` every few milliseconds until it holds. False when it did not within `timeout`.
template <class Condition>
bool WaitFor(std::chrono::milliseconds timeout, Condition&& condition) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        Sleep(2);
    }
    return true;
}

}  // namespace mvp
