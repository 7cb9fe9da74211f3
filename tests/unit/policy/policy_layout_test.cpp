#include "policy/policy_layout.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace mvp {
namespace {

constexpr std::uint32_t kNone = MVP_NO_PIN_LENGTH_RULE;

// A template whose six lines all differ, so that a number taken from the wrong line shows.
PolicyBox Template() {
    PolicyBox box;
    box.nGroupTop = 7;
    box.nGroupHeight = 200;
    box.lines[IndexOf(PinRule::MinLength)] = {41, 13, 11};
    box.lines[IndexOf(PinRule::MaxLength)] = {42, 14, 12};
    box.lines[IndexOf(PinRule::NotWeak)] = {43, 26, 13};
    box.lines[IndexOf(PinRule::NotSame)] = {44, 16, 14};
    box.lines[IndexOf(PinRule::DigitsOnly)] = {45, 17, 15};
    box.lines[IndexOf(PinRule::Confirmation)] = {46, 18, 16};
    return box;
}

TEST(PolicyLayout, PutsTheLinesWhereTheHostsMarginsSay) {
    // All rules, with the margins of the initialize-PIN dialog.
    const PwdRuleArgs all = {0, 1, 1, 1, 4, 8, 0};
    const PolicyLayout full = LayOutPolicies(Template(), PinRules(&all), {10, 20, 10});
    const std::vector<PlacedPolicyLine> expected = {
        {PinRule::MinLength, 61, 27, 31, 26},    {PinRule::MaxLength, 62, 50, 32, 49},
        {PinRule::NotWeak, 63, 74, 33, 73},      {PinRule::NotSame, 64, 110, 34, 109},
        {PinRule::DigitsOnly, 65, 136, 35, 135}, {PinRule::Confirmation, 66, 163, 36, 162},
    };
    ASSERT_EQ(full.Lines().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const PlacedPolicyLine& line = full.Lines()[i];
        EXPECT_EQ(line.rule, expected[i].rule) << i;
        EXPECT_EQ(line.nTextX, expected[i].nTextX) << i;
        EXPECT_EQ(line.nTextY, expected[i].nTextY) << i;
        EXPECT_EQ(line.nIconX, expected[i].nIconX) << i;
        EXPECT_EQ(line.nIconY, expected[i].nIconY) << i;
    }
    // 200 - 10 - (5 + 2) * 10 - 104
    EXPECT_EQ(full.Spare(), 16);

    // Only the confirmation, with the margins of the unlock dialog: 200 - 10 - (0 + 2) * 6 - 18.
    const PolicyLayout single = LayOutPolicies(Template(), PinRules(nullptr), {10, 3, 6});
    ASSERT_EQ(single.Lines().size(), 1u);
    EXPECT_EQ(single.Lines()[0].rule, PinRule::Confirmation);
    EXPECT_EQ(single.Lines()[0].nTextX, 49);
    EXPECT_EQ(single.Lines()[0].nTextY, 23);
    EXPECT_EQ(single.Spare(), 160);

    // A box too small for its lines grows.
    PolicyBox small = Template();
    small.nGroupHeight = 50;
    EXPECT_EQ(LayOutPolicies(small, PinRules(&all), {15, 0, 6}).Spare(), -111);
}

TEST(PolicyLayout, PacksEverySubsetOfTheRules) {
    const PolicyBox box = Template();
    for (const PolicyMargins& margins :
         {PolicyMargins{15, 0, 6}, PolicyMargins{10, 3, 6}, PolicyMargins{10, 20, 10}}) {
        for (unsigned subset = 0; subset < 32; ++subset) {
            SCOPED_TRACE("subset " + std::to_string(subset));
            const auto has = [subset](unsigned bit) { return (subset >> bit & 1u) != 0; };
            const PwdRuleArgs record = {
                0, has(4), has(2), has(3), has(0) ? 4u : kNone, has(1) ? 8u : kNone, 0};
            std::vector<PinRule> wanted;
            for (unsigned bit = 0; bit < 5; ++bit) {
                if (has(bit))
                    wanted.push_back(kPinScreenOrder[bit]);
            }
            wanted.push_back(PinRule::Confirmation);

            const PolicyLayout layout = LayOutPolicies(box, PinRules(&record), margins);
            std::vector<PinRule> placed;
            int free = box.nGroupTop + margins.nTopMargin;
            for (const PlacedPolicyLine& line : layout.Lines()) {
                const PolicyLineControls& controls = box.lines[IndexOf(line.rule)];
                placed.push_back(line.rule);
                EXPECT_EQ(line.nTextY, free + margins.nLineSpacing);
                EXPECT_EQ(line.nIconY, line.nTextY - 1);
                EXPECT_EQ(line.nTextX - controls.nTextLeft, margins.nLeftIndent);
                EXPECT_EQ(line.nIconX - controls.nIconLeft, margins.nLeftIndent);
                free = line.nTextY + controls.nTextHeight;
            }
            EXPECT_EQ(placed, wanted);
            EXPECT_EQ(box.nGroupTop + box.nGroupHeight - layout.Spare(),
                      free + margins.nLineSpacing);
        }
    }
}

TEST(PolicyLayout, TakesAnyMargins) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int most = std::numeric_limits<int>::max();
    const PwdRuleArgs all = {0, 1, 1, 1, 4, 8, 0};
    PolicyBox box = Template();
    box.nGroupTop = most;
    for (const int extreme : {least, most}) {
        // The sums wrap; the sanitizer watches that none of them overflows before.
        const PolicyLayout layout =
            LayOutPolicies(box, PinRules(&all), {extreme, extreme, extreme});
        EXPECT_EQ(layout.Lines().size(), kPinRuleCount);
    }
    EXPECT_EQ(LayOutPolicies(box, PinRules(nullptr), {0, 0, -9}).Spare(), 200 - 18 + 18);
}

}  // namespace
}  // namespace mvp
