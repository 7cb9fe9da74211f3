#include "services/format_check.h"

#include <algorithm>

namespace mvp {
namespace {

constexpr std::string_view kFlags = "-+ #0";
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kIntegerConversions = "diuxXo";
constexpr std::size_t kWidthDigits = 2;

std::string_view Without(std::string_view text, std::string_view leading) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(leading), text.size()));
    return text;
}

// What follows the conversion that `text` begins with, behind its percent sign; a null view when it
// does not convert an int.
std::string_view AfterIntegerConversion(std::string_view text) noexcept {
    text = Without(text, kFlags);
    std::string_view conversion = Without(text, kDigits);
    if (text.size() - conversion.size() > kWidthDigits) {
        return {};
    }
    if (conversion.starts_with('l')) {
        conversion.remove_prefix(1);
    }
    if (conversion.empty() ||
        kIntegerConversions.find(conversion.front()) == std::string_view::npos) {
        return {};
    }
    return conversion.substr(1);
}

std::string_view AfterTextConversion(std::string_view text) noexcept {
    return text.starts_with('s') ? text.substr(1) : std::string_view();
}

// Whether there is exactly one conversion, and `after` finds its end.
bool TakesOne(std::string_view format,
              std::string_view (*after)(std::string_view) noexcept) noexcept {
    int count = 0;
    for (std::size_t at = format.find('%'); at != std::string_view::npos; at = format.find('%')) {
        format.remove_prefix(at + 1);
        if (format.starts_with('%')) {
            format.remove_prefix(1);
            continue;
        }
        format = after(format);
        if (format.data() == nullptr) {
            return false;
        }
        ++count;
    }
    return count == 1;
}

}  // namespace

bool TakesOneInteger(std::string_view format) noexcept {
    return TakesOne(format, AfterIntegerConversion);
}

bool TakesOneText(std::string_view format) noexcept {
    return TakesOne(format, AfterTextConversion);
}

}  // namespace mvp
