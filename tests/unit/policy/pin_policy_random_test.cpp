// The checker against a second statement of the rules, on random PINs.
//
// The second statement is a table of sentences, each turned into the plainest code that says it;
// it shares nothing with the checker but the record.
#include <array>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "policy/pin_policy.h"

namespace mvp {
namespace {

struct Attempt {
    PwdRuleArgs record{};
    std::string oldPin, pin, newPin, confirmation;
};

std::string Progression(int first, int step, std::size_t length) {
    std::string text;
    for (; text.size() < length; first += step)
        text.push_back(static_cast<char>(first));
    return text;
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
    // A PIN shorter than three characters is weak; a longer one is weak when it is the progression
    // that its first two characters begin.
    {PinRule::NotWeak, [](const PwdRuleArgs& r) { return r.bPreventWeakPIN != 0; },
     [](const Attempt& a) {
         return a.pin.length() <= 2 ||
                a.pin == Progression(a.pin[0], a.pin[1] - a.pin[0], a.pin.length());
     }},
    {PinRule::MaxLength, [](const PwdRuleArgs& r) { return ~r.dwMaxPINLen != 0; },
     [](const Attempt& a) { return !(a.pin.length() <= a.record.dwMaxPINLen); }},
    {PinRule::MinLength, [](const PwdRuleArgs& r) { return ~r.dwMinPINLen != 0; },
     [](const Attempt& a) { return !(a.pin.length() >= a.record.dwMinPINLen); }},
}};

class Dice {
public:
    std::uint32_t Below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(m_engine() % bound);
    }
    int Byte() { return static_cast<int>(Below(256)); }
    std::uint32_t OneOf(std::initializer_list<std::uint32_t> values) {
        return values.begin()[Below(static_cast<std::uint32_t>(values.size()))];
    }
    std::uint32_t Flag() { return OneOf({0, 0, 1, 2, 0x10000, 0xFFFFFFFF}); }
    std::uint32_t Bound() {
        return OneOf({0xFFFFFFFF, 0xFFFFFFFE, 0x80000000, Below(42), Below(42), Below(42)});
    }

    // Lengths 0 to 40: digits, or a progression, or one byte away from that.
    std::string Text() {
        std::string text = Progression(Byte(), Byte(), Below(41));
        if (Below(2) == 0)
            for (char& c : text)
                c = static_cast<char>('0' + Below(10));
        return Near(text);
    }

    // `text`, or it with one byte changed, added or taken away at the end.
    std::string Near(std::string text) {
        const std::uint32_t change = Below(4);
        if (change == 0 && text.size() < 40)
            text.push_back(static_cast<char>(Below(2) == 0 ? ' ' : Byte()));
        else if (change == 1 && !text.empty())
            text.pop_back();
        else if (change == 2 && !text.empty())
            text[m_engine() % text.size()] = static_cast<char>(Byte());
        return text;
    }

    Attempt NextAttempt() {
        Attempt a;
        a.record = {Flag(), Flag(), Flag(), Flag(), Bound(), Bound(), Flag()};
        a.pin = Text();
        a.newPin = Below(2) == 0 ? a.pin : Text();
        a.oldPin = Near(a.newPin);
        a.confirmation = Near(a.newPin);
        return a;
    }

private:
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): every run asks the same
    std::mt19937_64 m_engine{20'240'611};
};

TEST(CheckPin, AgreesWithTheSentencesOnAMillionAttempts) {
    constexpr int attempts = 1'000'000;
    Dice dice;
    std::map<std::pair<PinRule, RuleState>, int> seen;
    int allowedOnes = 0;
    for (int i = 0; i < attempts; ++i) {
        const Attempt a = dice.NextAttempt();
        const PinCheck check =
            CheckPin(PinRules(&a.record), {a.oldPin, a.pin, a.newPin, a.confirmation});
        bool allowed = true;
        for (const Sentence& sentence : kSentences) {
            const RuleState violated =
                sentence.isBroken(a) ? RuleState::Violated : RuleState::Satisfied;
            const RuleState expected =
                sentence.isDemanded(a.record) ? violated : RuleState::NotInForce;
            ASSERT_EQ(check.State(sentence.rule), expected)
                << "attempt " << i << ", rule " << static_cast<int>(sentence.rule);
            allowed = allowed && expected != RuleState::Violated;
            ++seen[{sentence.rule, expected}];
        }
        ASSERT_EQ(check.Verdict(), allowed) << "attempt " << i;
        allowedOnes += allowed ? 1 : 0;
    }
    // The agreement is worth something only if every branch was taken often.
    for (const Sentence& sentence : kSentences)
        for (const RuleState state : {RuleState::Satisfied, RuleState::Violated})
            EXPECT_GT((seen[{sentence.rule, state}]), attempts / 20)
                << static_cast<int>(sentence.rule);
    EXPECT_GT(allowedOnes, attempts / 50);
}

}  // namespace
}  // namespace mvp
