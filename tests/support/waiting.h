// Waiting for a condition: nothing in a test waits without a deadline.
#pragma once

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

}  // namespace mvp::test
