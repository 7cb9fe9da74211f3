#include "richtext/markup/text_bytes.h"

#include <algorithm>
#include <limits>

namespace mvp::richtext {
namespace {

constexpr std::int64_t kBeyond32Bits = std::int64_t{1} << 33;

int DigitValue(char c) {
    if (IsDigit(c)) {
        return c - '0';
    }
    const char lower = AsciiLower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

// Digits of the given base from the front of str; stops growing beyond 32 bits.
bool ReadDigits(std::string_view str, int nBase, std::int64_t& nValue) {
    nValue = 0;
    std::size_t digits = 0;
    for (; digits < str.size() && DigitValue(str[digits]) < nBase; ++digits) {
        nValue = std::min(nValue * nBase + DigitValue(str[digits]), kBeyond32Bits);
    }
    return digits != 0;
}

bool ReadPrefixed(std::string_view str, std::int64_t& nValue) {
    if (str.size() > 2 && str[0] == '0' && AsciiLower(str[1]) == 'x' && DigitValue(str[2]) < 16) {
        return ReadDigits(str.substr(2), 16, nValue);
    }
    return ReadDigits(str, !str.empty() && str[0] == '0' ? 8 : 10, nValue);
}

std::string_view TrimLeft(std::string_view str) {
    while (!str.empty() && IsSpace(str.front())) {
        str.remove_prefix(1);
    }
    return str;
}

bool ReadSigned(std::string_view str, bool bPrefixed, std::int32_t& nResult) {
    str = TrimLeft(str);
    const bool negative = !str.empty() && str.front() == '-';
    if (negative || (!str.empty() && str.front() == '+')) {
        str.remove_prefix(1);
    }
    std::int64_t value = 0;
    if (!(bPrefixed ? ReadPrefixed(str, value) : ReadDigits(str, 10, value))) {
        return false;
    }
    using Limits = std::numeric_limits<std::int32_t>;
    nResult = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(negative ? -value : value, Limits::min(), Limits::max()));
    return true;
}

}  // namespace

std::string_view Trim(std::string_view str) {
    str = TrimLeft(str);
    while (!str.empty() && IsSpace(str.back())) {
        str.remove_suffix(1);
    }
    return str;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return AsciiLower(x) == AsciiLower(y);
           });
}

std::string_view NextToken(std::string_view& rest, std::string_view separators) {
    const std::size_t start = rest.find_first_not_of(separators);
    if (start == std::string_view::npos) {
        rest = {};
        return {};
    }
    rest.remove_prefix(start);
    const std::string_view token = rest.substr(0, rest.find_first_of(separators));
    rest.remove_prefix(token.size());
    return token;
}

bool ReadCNumber(std::string_view str, std::int32_t& nValue) {
    return ReadSigned(str, true, nValue);
}

bool ReadUnsignedCNumber(std::string_view str, std::uint32_t& nValue) {
    std::int64_t read = 0;
    if (!ReadPrefixed(str, read)) {
        return false;
    }
    nValue = static_cast<std::uint32_t>(
        std::min<std::int64_t>(read, std::numeric_limits<std::uint32_t>::max()));
    return true;
}

bool ReadDecimal(std::string_view str, std::int32_t& nValue) {
    return ReadSigned(str, false, nValue);
}

std::int32_t MulDivRounded(std::int32_t a, std::int32_t b, std::int32_t c) {
    const std::int64_t product = std::int64_t{a} * b;
    const std::int64_t half = (c < 0 ? -std::int64_t{c} : std::int64_t{c}) / 2;
    const std::int64_t rounded = (product < 0 ? product - half : product + half) / c;
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(rounded, Limits::min(), Limits::max()));
}

}  // namespace mvp::richtext
