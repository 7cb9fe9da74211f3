// A wait that keeps serving the messages that other threads send to windows of the waiting one.
#pragma once

#include <windows.h>

#include <initializer_list>

namespace mvp {

// Whether one of the (at most two) objects was signalled in time. Posted messages stay in the
// queue, WM_QUIT among them.
bool WaitServingSentMessages(std::initializer_list<HANDLE> objects, DWORD nTimeoutMs) noexcept;

// If this thread is handling a message that another thread sent and waits for: lets that thread go
// on, with 0 as the message's result.
void ReplyToSender() noexcept;

}  // namespace mvp
