// Byte-wise helpers for 8-bit text. None of them asks the C library's locale, so that the same
// markup reads the same in every process that loads the library.
#pragma once

#include <cstdint>
#include <string_view>

namespace mvp::richtext {

constexpr unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}
constexpr char AsciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr bool IsAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
// Space, tab, line feed, vertical tab, form feed, carriage return.
constexpr bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string_view Trim(std::string_view str);
bool EqualsNoCase(std::string_view a, std::string_view b);

// Cuts the next token off the front of rest: what stands before the first byte of separators.
// Empty tokens are skipped; an empty result means that rest is used up.
std::string_view NextToken(std::string_view& rest, std::string_view separators);

// A leading integer as C's strtol reads it: sign, then decimal, "0x" hexadecimal or (base 0) a
// leading 0 for octal; whatever follows is ignored. False when there is no digit. Values beyond
// 32 bits stop at the limit.
bool ReadCNumber(std::string_view str, std::int32_t& nValue);
// The same without a sign, up to 0xFFFFFFFF.
bool ReadUnsignedCNumber(std::string_view str, std::uint32_t& nValue);
// Decimal only, as atoi reads it.
bool ReadDecimal(std::string_view str, std::int32_t& nValue);

// a * b / c rounded half away from zero, with a 64-bit product, held within 32 bits. c must not be
// zero.
std::int32_t MulDivRounded(std::int32_t a, std::int32_t b, std::int32_t c);

}  // namespace mvp::richtext
