// Percent escapes: a line holds neither line ends nor a percent sign that begins no escape.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "pinhost/secret.h"

namespace pinentry {

using pinhost::Secret;

// What the escaped text stands for; a percent sign without two hexadecimal digits stands for
// itself. False, and an empty text, when the result holds a zero byte or is no UTF-8.
bool Unescape(std::string_view escaped, std::string& strText);

// Appends the bytes, escaped, from `nFrom` on, as long as they fit `nRoom` bytes. Returns where to
// go on.
std::size_t AppendEscaped(std::span<const char> text, std::size_t nFrom, std::size_t nRoom,
                          Secret& escaped);

bool IsUtf8(std::string_view text);

}  // namespace pinentry
