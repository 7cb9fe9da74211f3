#include "policy/policy_layout.h"

#include <limits>
#include <string>

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

// Every subset of the rules is laid out in the panel's own test, with other margins as well.
TEST(PolicyLayout, PutsTheLinesWhereTheHostsMarginsSay) {
    const PolicyLayout layout = LayOutPolicies(Template(), PinRules(&kAllRules), {10, 20, 10});
    std::string places;
    for (const PlacedPolicyLine& line : layout.Lines()) {
        places += std::to_string(static_cast<int>(line.rule)) + ": " + std::to_string(line.nTextX) +
                  "," + std::to_string(line.nTextY) + " " + std::to_string(line.nIconX) + "," +
                  std::to_string(line.nIconY) + "; ";
    }
    EXPECT_EQ(places,
              "0: 61,27 31,26; 1: 62,50 32,49; 2: 63,74 33,73; 3: 64,110 34,109; "
              "4: 65,136 35,135; 5: 66,163 36,162; ");
    EXPECT_EQ(layout.Spare(), 200 - 10 - (5 + 2) * 10 - 104);
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
