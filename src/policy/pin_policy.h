// Whether a new PIN satisfies the rules of its card.
//
// The rules come from the host's PwdRuleArgs record; a check of four texts against them gives the
// state of every rule and the verdict over all of them:
//
//     const mvp::PinRules rules(pRules);
//     const mvp::PinCheck check = mvp::CheckPin(rules, {oldPin, newPin, newPin, confirmation});
//     if (check.Verdict()) ...
//     if (check.State(mvp::PinRule::MinLength) == mvp::RuleState::Violated) ...
//
// Lengths are in bytes, which are characters here: texts are 8-bit and any byte value may occur.
// Nothing allocates, copies a text or keeps a reference to one; time is linear in the texts.
// Functions may be called from any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mvpingui/pwd_rule_args.h"

namespace mvp {

enum class PinRule : std::uint8_t {
    MinLength,
    MaxLength,
    NotWeak,
    NotSame,
    DigitsOnly,
    Confirmation,
};
inline constexpr std::size_t kPinRuleCount = 6;

constexpr std::size_t IndexOf(PinRule rule) noexcept {
    return static_cast<std::size_t>(rule);
}

// The order in which the lines of the rule panel are brought up to date and logged...
inline constexpr std::array<PinRule, kPinRuleCount> kPinCheckingOrder = {
    PinRule::MinLength, PinRule::MaxLength,  PinRule::NotSame,
    PinRule::NotWeak,   PinRule::DigitsOnly, PinRule::Confirmation,
};
// ...and the order in which they stand on the screen, from the top.
inline constexpr std::array<PinRule, kPinRuleCount> kPinScreenOrder = {
    PinRule::MinLength, PinRule::MaxLength,  PinRule::NotWeak,
    PinRule::NotSame,   PinRule::DigitsOnly, PinRule::Confirmation,
};

// The part of the record that PINs are checked against, with the flags as booleans. Without a
// record only the confirmation rule is in force.
struct PinRules {
    PinRules() noexcept = default;
    // `pRules` may be null; it is not kept.
    explicit PinRules(const PwdRuleArgs* pRules) noexcept;

    bool InForce(PinRule rule) const noexcept;

    std::uint32_t dwMinPINLen = MVP_NO_PIN_LENGTH_RULE;
    std::uint32_t dwMaxPINLen = MVP_NO_PIN_LENGTH_RULE;
    bool bPreventWeakPIN = false;
    bool bPreventAlphaPIN = false;
    bool bPreventSamePIN = false;
};

// What is checked. Length, weakness and digits are judged on `value`, sameness and confirmation on
// `newValue`; most hosts pass the new PIN in both.
struct PinTexts {
    std::string_view oldValue;
    std::string_view value;
    std::string_view newValue;
    std::string_view confirmValue;
};

enum class RuleState : std::uint8_t { NotInForce, Satisfied, Violated };

class PinCheck {
public:
    RuleState State(PinRule rule) const noexcept { return m_states[IndexOf(rule)]; }
    // True when every rule in force is satisfied.
    bool Verdict() const noexcept;

private:
    friend PinCheck CheckPin(const PinRules& rules, const PinTexts& texts) noexcept;

    std::array<RuleState, kPinRuleCount> m_states{};
};

PinCheck CheckPin(const PinRules& rules, const PinTexts& texts) noexcept;

// True when `pin` has fewer than 3 characters, or each of its characters differs from the one
// before by the same step modulo 256: 0000, 1234, 9876, 2468, aceg. Nothing wraps from 9 to 0.
bool IsPinWeak(std::string_view pin) noexcept;

// True when some character of `pin` is not one of 0 to 9. The empty PIN has no such character.
bool IsAlphaPinWeak(std::string_view pin) noexcept;

}  // namespace mvp
