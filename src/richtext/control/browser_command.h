// The command line that opens a target when the shell's own way has failed.
#pragma once

#include <string>
#include <string_view>

namespace mvp::richtext {

// Cuts the command of a file association at its placeholder "%1" (at the quotation mark before it
// when the placeholder stands in quotation marks; a command without one is kept whole) and appends
// a space and the target.
std::string BrowserCommandLine(std::string_view command, std::string_view target);

}  // namespace mvp::richtext
