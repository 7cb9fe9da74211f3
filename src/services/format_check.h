// Whether a text of the resource module may be given to a printf-style function.
//
// The module is a file of its own, which can be of another version or translated carelessly: a
// conversion that asks for more than it is given would read whatever lies on the stack.
#pragma once

#include <string_view>

namespace mvp {

// True when `format` has exactly one conversion, of an int (or a long, which is no larger on
// Windows) in a field of at most 99 characters, and any number of "%%".
bool TakesOneInteger(std::string_view format) noexcept;

// The same of a zero-terminated text, which must be a plain "%s".
bool TakesOneText(std::string_view format) noexcept;

}  // namespace mvp
