// Threads of a library that nobody waits for.
//
// A library must not be unloaded while a thread runs in its code, and it cannot wait for a thread
// while it is being unloaded, for the loader's lock is held then. So each thread holds a reference
// to the module, and gives it back in the same step in which it ends, outside of the module's code.
#pragma once

#include <functional>

#include "platform/handle.h"

namespace mvp {

// Runs `body` on a new thread, and `onError` after an exception of it, which ends the thread. What
// both hold is destroyed on that thread.
// Null when the thread could not be started, and GetLastError tells why; may throw std::bad_alloc.
KernelHandle StartModuleThread(std::function<void()> body, std::function<void()> onError);

}  // namespace mvp
