// Tells the suite's tray agent and user console that something happened to a card.
#pragma once

#include <windows.h>

#include <cstdint>

// The events that the receivers know.
constexpr std::uint32_t kEventUnlockCodeShown = 78945;
constexpr std::uint32_t kEventCardUnlocked = 78946;

// Sends WM_COPYDATA to the top-level windows of class "VkTrayHandlerClass" and "VKUserConsoleCL":
// data word `dwEventCode`, data the reader's name with its terminator, first parameter
// `hSenderWnd`. A receiver that is not running is skipped.
//
// The notice goes out on a thread of its own with its own copy of the name, so the caller may end
// or close its window at once. The call itself returns when the notice is in the receivers' queues:
// a receiver that hangs delays nobody, and gets the notice when it comes back within five seconds.
void NotifyEvent(std::uint32_t dwEventCode, const char* pszReader, HWND hSenderWnd);
