// Threads of a library that nobody waits for.
//
// A library must not be unloaded while a thread runs in its code, and it cannot wait for a thread
// while it is being unloaded, for the loader's lock is held then. So each thread holds a reference
// to the module, and gives it back in the same step in which it ends, outside of the module's code.
#pragma once

#include <functional>

#include "platform/handle.h"

namespace mvp {

// Runs `body` on a new thread. What it holds is destroyed on that thread. An exception ends the
// thread and is logged.
// Null when the thread could not be started; may throw std::bad_alloc.
KernelHandle StartModuleThread(std::function<void()> body);

}  // namespace mvp
