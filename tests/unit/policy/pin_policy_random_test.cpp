// The checker against a second statement of the rules, on random PINs.
//
// The second statement is a table of sentences, each turned into the plainest code that says it;
// it shares nothing with the checker but the record.
#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "policy/pin_policy.h"

namespace mvp {
namespace {

struct Attempt {
    bool bHasRecord = true;
    PwdRuleArgs record{};
    std::string oldPin, pin, newPin, confirmation;
};

std::string Progression(char first, int step, std::size_t length) {
    std::string text;
    int code = static_cast<unsigned char>(first);
    while (text.size() < length) {
        text.push_back(static_cast<char>(code % 256));
        code = code + 256 + step % 256;
    }
    return text;
}

// "A PIN shorter than three characters is weak; a longer one is weak when it is the progression
// that its first two characters begin."
bool SaysWeak(const std::string& pin) {
    return pin.length() <= 2 || pin == Progression(pin[0], pin[1] - pin[0], pin.length());
}

struct Sentence {
    PinRule rule;
    bool (*isDemanded)(const PwdRuleArgs&);
    bool (*isBroken)(const Attempt&);
};

const std::array<Sentence, kPinRuleCount> kSentences = {{
    {PinRule::Confirmation, [](const PwdRuleArgs&) { return true; },
     [](const Attempt& a) { return a.newPin != a.confirmation; }},
    {PinRule::DigitsOnly, [](const PwdRuleArgs& r) { return r.bPreventAlphaPIN != 0; },
     [](const Attempt& a) { return a.pin.find_first_not_of("0123456789") != std::string::npos; }},
    {PinRule::NotSame, [](const PwdRuleArgs& r) { return r.bPreventSamePIN != 0; },
     [](const Attempt& a) { return a.oldPin == a.newPin; }},
    {PinRule::NotWeak, [](const PwdRuleArgs& r) { return r.bPreventWeakPIN != 0; },
     [](const Attempt& a) { return SaysWeak(a.pin); }},
    {PinRule::MaxLength, [](const PwdRuleArgs& r) { return ~r.dwMaxPINLen != 0; },
     [](const Attempt& a) { return !(a.pin.length() <= a.record.dwMaxPINLen); }},
    {PinRule::MinLength, [](const PwdRuleArgs& r) { return ~r.dwMinPINLen != 0; },
     [](const Attempt& a) { return !(a.pin.length() >= a.record.dwMinPINLen); }},
}};

class Dice {
public:
    std::size_t Below(std::size_t bound) { return m_engine() % bound; }
    bool OneIn(std::size_t bound) { return Below(bound) == 0; }
    char Byte() { return static_cast<char>(Below(256)); }

    std::uint32_t Flag() {
        static constexpr std::array<std::uint32_t, 6> flags = {0, 0, 1, 2, 0x10000, 0xFFFFFFFF};
        return flags[Below(flags.size())];
    }
    std::uint32_t Bound() {
        static constexpr std::array<std::uint32_t, 4> odd = {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFE,
                                                             0x80000000};
        return OneIn(3) ? odd[Below(odd.size())] : static_cast<std::uint32_t>(Below(42));
    }

    // Lengths 0 to 40; half of the texts are progressions or one byte away from one.
    std::string Text() {
        const std::size_t length = Below(41);
        std::string text;
        switch (Below(4)) {
            case 0:
                while (text.size() < length)
                    text.push_back(Byte());
                return text;
            case 1:
                while (text.size() < length)
                    text.push_back(static_cast<char>('0' + Below(10)));
                return text;
            case 2:
                return Progression(OneIn(2) ? '7' : Byte(), OneIn(2) ? 0 : Byte(), length);
            default:
                return Near(Progression(Byte(), Byte(), length));
        }
    }

    // `text`, or it with one byte changed, added or taken away at the end.
    std::string Near(std::string text) {
        switch (Below(4)) {
            case 0:
                if (!text.empty())
                    text[Below(text.size())] = Byte();
                break;
            case 1:
                if (text.size() < 40)
                    text.push_back(OneIn(2) ? ' ' : Byte());
                break;
            case 2:
                if (!text.empty())
                    text.pop_back();
                break;
            default:
                break;
        }
        return text;
    }

    Attempt NextAttempt() {
        Attempt a;
        a.bHasRecord = !OneIn(50);
        a.record = {Flag(), Flag(), Flag(), Flag(), Bound(), Bound(), Flag()};
        a.pin = Text();
        a.newPin = OneIn(2) ? a.pin : Text();
        a.oldPin = OneIn(3) ? Text() : Near(a.newPin);
        a.confirmation = OneIn(3) ? Text() : Near(a.newPin);
        return a;
    }

private:
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): every run asks the same
    std::mt19937_64 m_engine{20'240'611};
};

RuleState Expected(const Sentence& sentence, const Attempt& a) {
    static constexpr PwdRuleArgs nothing = {
        0, 0, 0, 0, MVP_NO_PIN_LENGTH_RULE, MVP_NO_PIN_LENGTH_RULE, 0};
    if (!sentence.isDemanded(a.bHasRecord ? a.record : nothing))
        return RuleState::NotInForce;
    return sentence.isBroken(a) ? RuleState::Violated : RuleState::Satisfied;
}

TEST(CheckPin, AgreesWithTheSentencesOnAMillionAttempts) {
    constexpr int attempts = 1'000'000;
    Dice dice;
    std::map<std::pair<PinRule, RuleState>, int> seen;
    std::map<bool, int> verdicts;
    std::array<int, 256> bytes{};
    for (int i = 0; i < attempts; ++i) {
        const Attempt a = dice.NextAttempt();
        const PinCheck check = CheckPin(PinRules(a.bHasRecord ? &a.record : nullptr),
                                        {a.oldPin, a.pin, a.newPin, a.confirmation});
        bool allowed = true;
        for (const Sentence& sentence : kSentences) {
            const RuleState expected = Expected(sentence, a);
            ASSERT_EQ(check.State(sentence.rule), expected)
                << "attempt " << i << ", rule " << static_cast<int>(sentence.rule);
            allowed = allowed && expected != RuleState::Violated;
            ++seen[{sentence.rule, expected}];
        }
        ASSERT_EQ(check.Verdict(), allowed) << "attempt " << i;
        ++verdicts[allowed];
        for (const char c : a.pin)
            ++bytes[static_cast<unsigned char>(c)];
    }

    // The agreement is worth something only if every branch was taken often.
    for (const Sentence& sentence : kSentences) {
        EXPECT_GT((seen[{sentence.rule, RuleState::Satisfied}]), attempts / 20)
            << static_cast<int>(sentence.rule);
        EXPECT_GT((seen[{sentence.rule, RuleState::Violated}]), attempts / 20)
            << static_cast<int>(sentence.rule);
    }
    EXPECT_GT(verdicts[true], attempts / 50);
    EXPECT_GT(verdicts[false], attempts / 50);
    EXPECT_GT(*std::min_element(bytes.begin(), bytes.end()), attempts / 100);
}

}  // namespace
}  // namespace mvp
