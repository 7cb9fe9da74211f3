// What somebody does who hears and types: each flow opens a dialog of the one table and goes
// through it by real keys. A step is called by its key.
//
// What is secret in them is typed in the characters 5, 7 and 9 alone, which no text of theirs has.
#pragma once

#include <vector>

#include "looks/dialogs.h"

namespace looks {

// The step in which a second process types into the control with the focus.
inline constexpr char kManyKeys[] = "many keys";

std::vector<Entry> Flows();

}  // namespace looks
