// Waiting for a condition: nothing in a test waits without a deadline.
#pragma once

#include <chrono>

#include "common/wait_for.h"

namespace mvp::test {

using mvp::WaitFor;

// Runs the calling thread's messages, as many as there are.
inline void DispatchAll() {
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

// Runs the calling thread's messages until the condition holds; false after half a minute.
template <class Condition>
bool PumpUntil(Condition&& condition) {
    return WaitFor(std::chrono::seconds(30), [&] {
        DispatchAll();
        return condition();
    });
}

}  // namespace mvp::test
