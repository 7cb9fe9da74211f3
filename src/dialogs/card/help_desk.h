// What the configuration says of the help desk.
#pragma once

#include <dlgfw/string.h>

namespace mvp {

// The help desk's telephone number of the configuration; empty when there is none, and when it has
// a single character.
CString HelpDeskNumber();

}  // namespace mvp
