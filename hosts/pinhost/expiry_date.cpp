#include "pinhost/expiry_date.h"

#include <charconv>
#include <chrono>

namespace pinhost {
namespace {

constexpr std::int64_t kDay = 86'400;  // in seconds
constexpr std::int64_t kNoon = kDay / 2;
constexpr std::int64_t kMostDays = 1'000'000;

// The whole of `text` as a number.
template <class Integer>
std::optional<Integer> NumberOf(std::string_view text) {
    Integer value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(value) : std::nullopt;
}

std::optional<std::int64_t> NoonOf(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') {
        return {};
    }
    const auto year = NumberOf<unsigned>(text.substr(0, 4));
    const auto month = NumberOf<unsigned>(text.substr(5, 2));
    const auto day = NumberOf<unsigned>(text.substr(8));
    if (!year || !month || !day) {
        return {};
    }
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(*month), std::chrono::day(*day));
    if (!date.ok()) {
        return {};
    }
    return std::chrono::sys_days(date).time_since_epoch().count() * kDay + kNoon;
}

}  // namespace

std::optional<std::int64_t> MomentOf(std::string_view text, std::int64_t nNow) {
    if (text.starts_with('@')) {
        return NumberOf<std::int64_t>(text.substr(1));
    }
    if (!text.starts_with('+') && !text.starts_with('-')) {
        return NoonOf(text);
    }
    const auto days = NumberOf<std::int64_t>(text.substr(1));
    if (!days || *days < 0 || *days > kMostDays) {
        return {};
    }
    return nNow + (text.starts_with('-') ? -*days : *days) * kDay;
}

}  // namespace pinhost
