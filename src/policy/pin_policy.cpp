#include "policy/pin_policy.h"

#include <algorithm>

namespace mvp {
namespace {

std::uint8_t StepTo(std::string_view pin, std::size_t i) noexcept {
    return static_cast<std::uint8_t>(pin[i] - pin[i - 1]);
}

}  // namespace

PinRules::PinRules(const PwdRuleArgs* pRules) noexcept {
    if (pRules == nullptr) {
        return;
    }
    dwMinPINLen = pRules->dwMinPINLen;
    dwMaxPINLen = pRules->dwMaxPINLen;
    bPreventWeakPIN = pRules->bPreventWeakPIN != 0;
    bPreventAlphaPIN = pRules->bPreventAlphaPIN != 0;
    bPreventSamePIN = pRules->bPreventSamePIN != 0;
}

bool PinRules::InForce(PinRule rule) const noexcept {
    switch (rule) {
        case PinRule::MinLength:
            return dwMinPINLen != MVP_NO_PIN_LENGTH_RULE;
        case PinRule::MaxLength:
            return dwMaxPINLen != MVP_NO_PIN_LENGTH_RULE;
        case PinRule::NotWeak:
            return bPreventWeakPIN;
        case PinRule::NotSame:
            return bPreventSamePIN;
        case PinRule::DigitsOnly:
            return bPreventAlphaPIN;
        case PinRule::Confirmation:
            return true;
    }
    return false;
}

bool PinCheck::Verdict() const noexcept {
    return std::find(m_states.begin(), m_states.end(), RuleState::Violated) == m_states.end();
}

PinCheck CheckPin(const PinRules& rules, const PinTexts& texts) noexcept {
    PinCheck check;
    const auto judge = [&check, &rules](PinRule rule, bool violated) {
        if (rules.InForce(rule)) {
            check.m_states[IndexOf(rule)] = violated ? RuleState::Violated : RuleState::Satisfied;
        }
    };
    judge(PinRule::MinLength, texts.value.size() < rules.dwMinPINLen);
    judge(PinRule::MaxLength, texts.value.size() > rules.dwMaxPINLen);
    judge(PinRule::NotSame, texts.newValue == texts.oldValue);
    judge(PinRule::NotWeak, IsPinWeak(texts.value));
    judge(PinRule::DigitsOnly, IsAlphaPinWeak(texts.value));
    judge(PinRule::Confirmation, texts.newValue != texts.confirmValue);
    return check;
}

bool IsPinWeak(std::string_view pin) noexcept {
    if (pin.size() < 3) {
        return true;
    }
    const std::uint8_t step = StepTo(pin, 1);
    for (std::size_t i = 2; i < pin.size(); ++i) {
        if (StepTo(pin, i) != step) {
            return false;
        }
    }
    return true;
}

bool IsAlphaPinWeak(std::string_view pin) noexcept {
    // Not isdigit: its answer for bytes above 127 depends on the locale, and a negative argument is
    // outside its domain.
    return std::any_of(pin.begin(), pin.end(), [](char c) { return c < '0' || c > '9'; });
}

}  // namespace mvp
