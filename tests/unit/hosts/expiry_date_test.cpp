#include "pinhost/expiry_date.h"

#include <gtest/gtest.h>

namespace pinhost {
namespace {

TEST(ExpiryDate, IsADayOrSoManyDaysFromNow) {
    constexpr std::int64_t kNow = 1'000'000;
    constexpr std::int64_t kDay = 86'400;
    using Case = std::pair<const char*, std::optional<std::int64_t>>;
    for (const auto& [text, moment] : {Case{"1970-01-01", kDay / 2},
                                       {"1969-12-31", -kDay / 2},
                                       {"2024-02-29", 1'709'208'000},
                                       {"2023-02-29", {}},
                                       {"2031-13-01", {}},
                                       {"2031-5-17", {}},
                                       {"2031/05/17", {}},
                                       {"2031-05-17x", {}},
                                       {"-031-05-17", {}},
                                       {"+0", kNow},
                                       {"+30", kNow + 30 * kDay},
                                       {"-3", kNow - 3 * kDay},
                                       {"+1000001", {}},
                                       {"--3", {}},
                                       {"+", {}},
                                       {"@-5", -5},
                                       {"@9223372036854775807", INT64_MAX},
                                       {"@9223372036854775808", {}},
                                       {"@", {}},
                                       {"", {}}}) {
        EXPECT_EQ(MomentOf(text, kNow), moment) << text;
    }
}

}  // namespace
}  // namespace pinhost
