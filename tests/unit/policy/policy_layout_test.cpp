#include "policy/policy_layout.h"

#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace mvp {
namespace {

constexpr PwdRuleArgs kAllRules = {0, 1, 1, 1, 4, 8, 0};

// Where the lines go, the panel's own test holds, for every subset of the rules.
TEST(PolicyLayout, TakesAnyMargins) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    PolicyBox box{most, 200, {}};
    box.lines.fill({46, 18, 16});
    for (const int extreme : {least, most}) {
        // The sums wrap; the sanitizer watches that none of them overflows before.
        const PolicyLayout layout =
            LayOutPolicies(box, PinRules(&kAllRules), {extreme, extreme, extreme}, 192);
        EXPECT_EQ(layout.Lines().size(), kPinRuleCount);
    }
    EXPECT_EQ(LayOutPolicies(box, PinRules(nullptr), {0, 0, -9}, 96).Spare(), 200 - 18 + 18);
}

}  // namespace
}  // namespace mvp
