// What a window looks like, as numbers and texts: its controls with their places in pixels and in
// dialog units, their texts and how much room these need in their fonts, styles, tab order, and the
// contrast of what is drawn. Everything is read from the live windows and their pixels.
//
// Must be called on the window's own thread, with all of it painted.
#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>

namespace looks {

nlohmann::ordered_json Walk(HWND hWindow);

}  // namespace looks
