// Real key strokes: they go through the system's input queue to the window in the foreground, as a
// user's do.
//
// The system delivers input when it pleases. Whoever needs a stroke's effect waits for it with
// WaitForKeys, which returns once the thread of the foreground window has taken everything sent
// before:
//
//     mvp::SendText("1234");
//     mvp::WaitForKeys(GetWindowThreadProcessId(hDlg, nullptr), std::chrono::seconds(10));
//     mvp::SendKey(VK_RETURN);
#pragma once

#include <windows.h>

#include <chrono>
#include <initializer_list>
#include <string_view>

namespace mvp {

// Presses and releases one key while the modifiers (VK_SHIFT, VK_CONTROL, VK_MENU) are held. False
// when the system refused the input.
bool SendKey(WORD vk, std::initializer_list<WORD> modifiers = {});

// Types `text`, in the system's ANSI code page: by the keys of the keyboard layout where it has
// them, else as characters. Caps Lock and held modifiers act on it as on a user's typing. False
// when the system refused some of it.
bool SendText(std::string_view text);

// Waits until the thread, which must belong to this process and have the foreground, has taken all
// key strokes sent so far. False when it has not within `timeout`. One caller at a time.
bool WaitForKeys(DWORD dwThreadId, std::chrono::milliseconds timeout);

}  // namespace mvp
