// The form of an unlock code as it is typed.
#pragma once

#include <string_view>

namespace mvp {

// 16 hexadecimal digits in either case, with dashes anywhere among them and nothing else.
bool IsUnlockCode(std::string_view typed) noexcept;

}  // namespace mvp
