#include "policy/pin_policy.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace mvp {
namespace {

using namespace std::string_literals;

// The state of every rule as one letter, in screen order: minimum, maximum, weak, same, digits,
// confirmation. '-' not in force, 's' satisfied, 'V' violated.
std::string Letters(const PinCheck& check) {
    std::string letters;
    for (const PinRule rule : kPinScreenOrder) {
        letters += "-sV"[static_cast<int>(check.State(rule))];
    }
    return letters;
}

TEST(PinPredicates, JudgeEdgeCases) {
    const struct {
        bool weak, alpha;
        std::vector<std::string> pins;
    } groups[] = {
        {true, false, {"", "1", "12", "19", "111", "135", "2468", "9876", "0123456789"}},
        {false, false, {"121", "7890", "1235", "01234567890"}},
        {true, true, {"a", "zyx", "abc", "aceg", "/0123456789:"}},
        {false, true, {"123 ", " 123", "12/4", "12:4"}},
        // Steps wrap modulo 256, on the whole byte range.
        {true, true, {"\xFE\xFF\x00\x01"s, "\x01\x00\xFF\xFE"s, "\x7F\x80\x81"s}},
        {false, true, {"\x00\xFF\x00"s}},
    };
    for (const auto& group : groups) {
        for (const std::string& pin : group.pins) {
            EXPECT_EQ(IsPinWeak(pin), group.weak) << '"' << pin << '"';
            EXPECT_EQ(IsAlphaPinWeak(pin), group.alpha) << '"' << pin << '"';
        }
    }
}

TEST(CheckPin, GivesEveryRulesState) {
    constexpr std::uint32_t none = MVP_NO_PIN_LENGTH_RULE;
    const struct {
        PwdRuleArgs rules;  // unused, alpha, weak, same, minimum, maximum, no-cancel
        PinTexts texts;     // old, value, new, confirmation
        std::string letters;
    } cases[] = {
        // Nothing demanded but the confirmation, which is exact.
        {{1, 0, 0, 0, none, none, 1}, {"", "", "", ""}, "-----s"},
        {{0, 0, 0, 0, none, none, 0}, {"", "", "1234", "1234 "}, "-----V"},
        {{0, 0, 0, 0, none, none, 0}, {"", "", "abcd", "abcD"}, "-----V"},
        // Both bounds belong to what is allowed.
        {{0, 0, 0, 0, 4, 8, 0}, {"", "123", "", ""}, "Vs---s"},
        {{0, 0, 0, 0, 4, 8, 0}, {"", "1234", "", ""}, "ss---s"},
        {{0, 0, 0, 0, 4, 8, 0}, {"", "12345678", "", ""}, "ss---s"},
        {{0, 0, 0, 0, 4, 8, 0}, {"", "123456789", "", ""}, "sV---s"},
        {{0, 0, 0, 0, 8, 4, 0}, {"", "123456", "", ""}, "VV---s"},
        // 0 is a bound, only the all-ones value is none, and large bounds are not negative.
        {{0, 0, 0, 0, 0, none, 0}, {"", "", "", ""}, "s----s"},
        {{0, 0, 0, 0, none, 0, 0}, {"", "", "", ""}, "-s---s"},
        {{0, 0, 0, 0, none, 0, 0}, {"", "1", "", ""}, "-V---s"},
        {{0, 0, 0, 0, 0xFFFFFFFEu, 0xFFFFFFFEu, 0}, {"", "1", "", ""}, "Vs---s"},
        {{0, 0, 0, 0, 0x80000000u, 0x80000000u, 0}, {"", "1", "", ""}, "Vs---s"},
        // Any bit sets a flag; each flag is its own rule.
        {{0, 0x80000000u, 0, 0, none, none, 0}, {"", "12a", "", ""}, "----Vs"},
        {{0, 0, 0x100u, 0, none, none, 0}, {"", "123", "", ""}, "--V--s"},
        {{0, 0, 0, none, none, none, 0}, {"7", "", "7", "7"}, "---V-s"},
        // Which rule looks at which value.
        {{0, 1, 1, 1, 2, 2, 0}, {"1357a", "77", "1357a", "1357a"}, "ssVVss"},
        {{0, 1, 1, 1, 4, 5, 0}, {"x", "1357a", "88", "88"}, "ssssVs"},
        {{0, 1, 1, 1, 3, 4, 0}, {"1357", "1352", "1357", "1352"}, "sssVsV"},
        {{0, 1, 1, 1, 3, 4, 0}, {"135", "abc", "1357", "1357"}, "ssVsVs"},
        {{0, 0, 0, 1, none, none, 0}, {"pin", "", "Pin", "Pin"}, "---s-s"},
        // Empty texts: weak, same, digits only, confirmed.
        {{0, 1, 1, 1, 1, 8, 0}, {"", "", "", ""}, "VsVVss"},
    };
    for (const auto& c : cases) {
        const PinCheck check = CheckPin(PinRules(&c.rules), c.texts);
        EXPECT_EQ(Letters(check), c.letters) << c.texts.oldValue << '|' << c.texts.value << '|'
                                             << c.texts.newValue << '|' << c.texts.confirmValue;
        EXPECT_EQ(check.Verdict(), c.letters.find('V') == std::string::npos) << c.letters;
    }
}

// A progression with every byte and step is weak, with one byte of it changed it is not; a
// text of digits is not one with any other byte in any place.
TEST(PinPredicates, JudgeEveryByte) {
    for (int n = 0; n < 256 * 256; ++n) {
        const int first = n / 256;
        const int step = n % 256;
        std::string pin;
        const int length = 3 + first % 2;
        for (int i = 0; i < length; ++i) {
            pin += static_cast<char>(first + i * step);
        }
        ASSERT_TRUE(IsPinWeak(pin)) << first << " and on by " << step;
        const auto at = static_cast<std::size_t>(n % 3 + length - 3);
        pin[at] = static_cast<char>(pin[at] + 1 + first % 127);
        ASSERT_FALSE(IsPinWeak(pin)) << first << " and on by " << step << ", changed at " << at;
        std::string digits = "0950";
        digits[at] = static_cast<char>(first);
        ASSERT_EQ(IsAlphaPinWeak(digits), first < '0' || first > '9') << first << " at " << at;
    }
}

TEST(CheckPin, ReadsLongTextsToTheirEnd) {
    const PwdRuleArgs record = {0, 1, 1, 1, 100'000, 100'000, 0};
    const std::string even(100'000, '7');
    std::string odd = even;
    odd.back() = 'x';
    EXPECT_EQ(Letters(CheckPin(PinRules(&record), {even, even, even, odd})), "ssVVsV");
    EXPECT_EQ(Letters(CheckPin(PinRules(&record), {even, odd, odd, odd})), "ssssVs");
    EXPECT_EQ(Letters(CheckPin(PinRules(nullptr), {"", "a", "a", ""})), "-----V");
}

}  // namespace
}  // namespace mvp
