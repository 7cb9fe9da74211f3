// The text of a card operation's result code.
#pragma once

#include <cstdint>

namespace mvp {

// The code's text in the library's own buffer, which the next call overwrites; a code that has no
// text leaves there what was there. Without the resource module the text is empty. For the user
// interface's thread alone.
const char* ErrorText(std::int32_t nCode) noexcept;

}  // namespace mvp
