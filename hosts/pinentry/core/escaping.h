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

// Which bytes are escaped: those that a line cannot hold or, in an inquiry, those as well that some
// clients take for others.
enum class Escapes { Line, Inquiry };

// Appends the bytes, escaped, from `nFrom` on, as long as they fit `nRoom` bytes. Returns where to
// go on.
std::size_t AppendEscaped(std::span<const char> text, std::size_t nFrom, std::size_t nRoom,
                          Secret& escaped, Escapes escapes = Escapes::Line);

bool IsUtf8(std::string_view text);

}  // namespace pinentry
