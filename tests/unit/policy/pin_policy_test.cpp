#include "policy/pin_policy.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <random>
#include <string>
#include <utility>
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
        {true, true, {"\xFE\xFF\x00\x01"s, "\x01\x00\xFF\xFE"s, "\x00\x80\x00\x80"s}},
        {true, true, {"\x7F\x80\x81"s}},
        {false, true, {"\x00\xFF\x00"s}},
        // Superscript digits of the Western code page are digits for some locales, never here.
        {false, true, {"1234\xB2", "\xB2\xB3\xB9"}},
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
        {{0, 0, 0, 0, none, none, 0}, {"", "", "", "1"}, "-----V"},
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

TEST(CheckPin, WithoutARecordDemandsOnlyTheConfirmation) {
    EXPECT_EQ(Letters(CheckPin(PinRules(nullptr), {"", "a", "a", "a"})), "-----s");
    EXPECT_EQ(Letters(CheckPin(PinRules(nullptr), {"", "a", "a", ""})), "-----V");
}

TEST(CheckPin, ReadsLongTextsToTheirEnd) {
    const PwdRuleArgs record = {0, 1, 1, 1, 100'000, 100'000, 0};
    const std::string even(100'000, '7');
    std::string odd = even;
    odd.back() = 'x';
    EXPECT_EQ(Letters(CheckPin(PinRules(&record), {even, even, even, odd})), "ssVVsV");
    EXPECT_EQ(Letters(CheckPin(PinRules(&record), {even, odd, odd, odd})), "ssssVs");
}

std::string Progression(int first, int step, std::size_t length) {
    std::string text;
    for (; text.size() < length; first += step) {
        text.push_back(static_cast<char>(first));
    }
    return text;
}

// The letters by a second statement of the rules, each the plainest code that says it.
std::string ExpectedLetters(const PwdRuleArgs& rules, const PinTexts& texts) {
    const auto letter = [](bool demanded, bool broken) {
        const char state = broken ? 'V' : 's';
        return demanded ? state : '-';
    };
    const std::string pin(texts.value);
    const bool strange = pin.find_first_not_of("0123456789") != std::string::npos;
    // A PIN shorter than three characters is weak; a longer one is weak when it is the progression
    // that its first two characters begin.
    const bool weak =
        pin.length() <= 2 || pin == Progression(pin[0], pin[1] - pin[0], pin.length());
    return {letter(~rules.dwMinPINLen != 0, !(pin.length() >= rules.dwMinPINLen)),
            letter(~rules.dwMaxPINLen != 0, !(pin.length() <= rules.dwMaxPINLen)),
            letter(rules.bPreventWeakPIN != 0, weak),
            letter(rules.bPreventSamePIN != 0, texts.oldValue == texts.newValue),
            letter(rules.bPreventAlphaPIN != 0, strange),
            letter(true, texts.newValue != texts.confirmValue)};
}

class Dice {
public:
    std::uint32_t Below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(m_engine() % bound);
    }
    int Byte() { return static_cast<int>(Below(256)); }
    std::uint32_t OneOf(std::initializer_list<std::uint32_t> values) {
        return values.begin()[m_engine() % values.size()];
    }
    std::uint32_t Flag() { return OneOf({0, 0, 1, 2, 0x10000, 0xFFFFFFFF}); }
    std::uint32_t Bound() {
        return OneOf({0xFFFFFFFF, 0xFFFFFFFE, 0x80000000, Below(42), Below(42), Below(42)});
    }
    // Lengths 0 to 40: digits, or a progression, or one byte away from that.
    std::string Text() {
        std::string text = Progression(Byte(), Byte(), Below(41));
        if (Below(2) == 0) {
            std::ranges::generate(text, [this] { return static_cast<char>('0' + Below(10)); });
        }
        return Near(text);
    }
    // `text`, or it with one byte changed, added or taken away at the end.
    std::string Near(std::string text) {
        const std::uint32_t change = Below(4);
        if (change == 0 && text.size() < 40) {
            text.push_back(static_cast<char>(Below(2) == 0 ? ' ' : Byte()));
        } else if (change == 1 && !text.empty()) {
            text.pop_back();
        } else if (change == 2 && !text.empty()) {
            text[m_engine() % text.size()] = static_cast<char>(Byte());
        }
        return text;
    }

private:
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): every run asks the same
    std::mt19937_64 m_engine{20'240'611};
};

TEST(CheckPin, AgreesWithTheSecondStatementOnAMillionAttempts) {
    constexpr int attempts = 1'000'000;
    Dice dice;
    std::map<std::pair<std::size_t, char>, int> seen;
    int allowedOnes = 0;
    for (int i = 0; i < attempts; ++i) {
        const PwdRuleArgs rules = {dice.Flag(),  dice.Flag(),  dice.Flag(), dice.Flag(),
                                   dice.Bound(), dice.Bound(), dice.Flag()};
        const std::string pin = dice.Text();
        const std::string newPin = dice.Below(2) == 0 ? pin : dice.Text();
        const std::string oldPin = dice.Near(newPin);
        const std::string confirmation = dice.Near(newPin);
        const PinTexts texts = {oldPin, pin, newPin, confirmation};
        const PinCheck check = CheckPin(PinRules(&rules), texts);
        const std::string expected = ExpectedLetters(rules, texts);
        ASSERT_EQ(Letters(check), expected) << "attempt " << i;
        const bool allowed = expected.find('V') == std::string::npos;
        ASSERT_EQ(check.Verdict(), allowed) << "attempt " << i;
        allowedOnes += allowed ? 1 : 0;
        for (std::size_t rule = 0; rule < expected.size(); ++rule) {
            ++seen[{rule, expected[rule]}];
        }
    }
    // The agreement is worth something only if every branch was taken often.
    for (std::size_t rule = 0; rule < kPinRuleCount; ++rule) {
        for (const char state : {'s', 'V'}) {
            EXPECT_GT((seen[{rule, state}]), attempts / 20) << rule << state;
        }
    }
    EXPECT_GT(allowedOnes, attempts / 50);
}

}  // namespace
}  // namespace mvp
