#include "services/error_strings.h"

#include <climits>

#include <gtest/gtest.h>

namespace {

TEST(ErrorText, EveryCodeHasTheStringItAlwaysHad) {
    const unsigned expected[] = {3059, 3060, 3061, 3062, 3063, 3064,
                                 3065, 3066, 3067, 3068, 3071, 3069};
    for (int code = 1; code <= 12; ++code) {
        EXPECT_EQ(mvp::ErrorStringNumber(code), expected[code - 1]) << "code " << code;
    }
    EXPECT_EQ(mvp::ErrorStringNumber(14), 3070u);
}

TEST(ErrorText, OtherCodesHaveNone) {
    for (const int code : {0, -1, 13, 15, 100, INT_MAX, INT_MIN}) {
        EXPECT_FALSE(mvp::ErrorStringNumber(code)) << "code " << code;
    }
}

}  // namespace
