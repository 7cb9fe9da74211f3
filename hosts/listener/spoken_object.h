// What a screen reader of another process gets of an object of a window: through the system's
// interface to it, completed for the system's own controls (stock_controls.h).
//
// An object is a JSON object:
//
//     window, child   which it is; the window as a number, 0 for the window itself
//     class           of the window
//     role            in the system's words
//     name, shortcut, value, description, action   where there are such; a value that was refused
//                     is null
//     states          in the system's words
//     rect            left, top, width and height on the screen
#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>

namespace listener {

// The object that an event tells of; null when it has gone.
nlohmann::ordered_json ObjectOfEvent(HWND hWnd, long nObject, long nChild);

// The window's client area, with its visible children, and so on, as "children".
nlohmann::ordered_json TreeOf(HWND hWnd);

}  // namespace listener
