#include "policy/policy_layout.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace mvp {
namespace {

constexpr PwdRuleArgs kAllRules = {0, 1, 1, 1, 4, 8, 0};

// A template whose six lines all differ, so that a number taken from the wrong line shows.
PolicyBox Template() {
    PolicyBox box{7, 200, {}};
    box.lines[IndexOf(PinRule::MinLength)] = {41, 13, 11};
    box.lines[IndexOf(PinRule::MaxLength)] = {42, 14, 12};
    box.lines[IndexOf(PinRule::NotWeak)] = {43, 26, 13};
    box.lines[IndexOf(PinRule::NotSame)] = {44, 16, 14};
    box.lines[IndexOf(PinRule::DigitsOnly)] = {45, 17, 15};
    box.lines[IndexOf(PinRule::Confirmation)] = {46, 18, 16};
    return box;
}

void ExpectLayout(const PwdRuleArgs& record, const PolicyMargins& margins,
                  const std::vector<PlacedPolicyLine>& expected, int nSpare) {
    const PolicyLayout layout = LayOutPolicies(Template(), PinRules(&record), margins);
    ASSERT_EQ(layout.Lines().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const PlacedPolicyLine& line = layout.Lines()[i];
        EXPECT_EQ(line.rule, expected[i].rule) << i;
        EXPECT_EQ(line.nTextX, expected[i].nTextX) << i;
        EXPECT_EQ(line.nTextY, expected[i].nTextY) << i;
        EXPECT_EQ(line.nIconX, expected[i].nIconX) << i;
        EXPECT_EQ(line.nIconY, expected[i].nIconY) << i;
    }
    EXPECT_EQ(layout.Spare(), nSpare);
}

// Every subset of the rules is laid out in the panel's own test.
TEST(PolicyLayout, PutsTheLinesWhereTheHostsMarginsSay) {
    constexpr std::uint32_t none = MVP_NO_PIN_LENGTH_RULE;
    ExpectLayout(kAllRules, {10, 20, 10},
                 {{PinRule::MinLength, 61, 27, 31, 26},
                  {PinRule::MaxLength, 62, 50, 32, 49},
                  {PinRule::NotWeak, 63, 74, 33, 73},
                  {PinRule::NotSame, 64, 110, 34, 109},
                  {PinRule::DigitsOnly, 65, 136, 35, 135},
                  {PinRule::Confirmation, 66, 163, 36, 162}},
                 200 - 10 - (5 + 2) * 10 - 104);
    ExpectLayout({0, 0, 0, 1, none, 8, 0}, {10, 3, 6},
                 {{PinRule::MaxLength, 45, 23, 15, 22},
                  {PinRule::NotSame, 47, 43, 17, 42},
                  {PinRule::Confirmation, 49, 65, 19, 64}},
                 200 - 10 - (2 + 2) * 6 - 48);
    // A box too small for its lines grows.
    PolicyBox small = Template();
    small.nGroupHeight = 50;
    EXPECT_EQ(LayOutPolicies(small, PinRules(&kAllRules), {15, 0, 6}).Spare(), -111);
}

TEST(PolicyLayout, TakesAnyMargins) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    PolicyBox box = Template();
    box.nGroupTop = most;
    for (const int extreme : {least, most}) {
        // The sums wrap; the sanitizer watches that none of them overflows before.
        const PolicyLayout layout =
            LayOutPolicies(box, PinRules(&kAllRules), {extreme, extreme, extreme});
        EXPECT_EQ(layout.Lines().size(), kPinRuleCount);
    }
    EXPECT_EQ(LayOutPolicies(box, PinRules(nullptr), {0, 0, -9}).Spare(), 200 - 18 + 18);
}

}  // namespace
}  // namespace mvp
