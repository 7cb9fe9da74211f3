// Dates of the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pinhost {

// The moment that a text stands for, in seconds since 1970-01-01 00:00 UTC: "2031-05-17" is noon of
// that day, UTC, so that it is the same day nearly everywhere; "+30" and "-3" are so many days
// after and before `nNow`; "@1234" is that moment itself. Nothing for any other text.
std::optional<std::int64_t> MomentOf(std::string_view text, std::int64_t nNow);

}  // namespace pinhost
