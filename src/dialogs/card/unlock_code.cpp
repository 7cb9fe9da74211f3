#include "dialogs/card/unlock_code.h"

#include <algorithm>

namespace mvp {
namespace {

constexpr std::ptrdiff_t kUnlockCodeLength = 16;

// Not isxdigit, which depends on the locale.
constexpr bool IsHexDigit(char ch) noexcept {
    return (ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'F') || (ch >= 'a' && ch <= 'f');
}

}  // namespace

bool IsUnlockCode(std::string_view typed) noexcept {
    return std::ranges::all_of(typed, [](char ch) { return ch == '-' || IsHexDigit(ch); }) &&
           std::ranges::count_if(typed, IsHexDigit) == kUnlockCodeLength;
}

}  // namespace mvp
