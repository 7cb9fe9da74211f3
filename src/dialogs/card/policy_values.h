// The policy of a card that gets its first PIN, and what the rules of the PIN come of it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "mvpingui/pin_policies.h"
#include "mvpingui/pwd_rule_args.h"
#include "settings/settings.h"

namespace mvp {

struct PolicyField {
    std::uint32_t PINPolicies::*pField;
    const NumberSetting* pSetting;  // null: the field is only carried, and 0
};

// In the order of the record.
inline constexpr std::array<PolicyField, 9> kPolicyFields{{
    {&PINPolicies::MinimumPINLength, &settings::kMinimumPinLength},
    {&PINPolicies::MaximumPINLength, &settings::kMaximumPinLength},
    {&PINPolicies::MaxPINTries, &settings::kMaxPinTries},
    {&PINPolicies::dwUnused4, nullptr},
    {&PINPolicies::MaxPINUnlock, &settings::kMaxPinUnlock},
    {&PINPolicies::dwUnused6, nullptr},
    {&PINPolicies::WeakPINAllowed, &settings::kWeakPinAllowed},
    {&PINPolicies::ForceChangePIN, &settings::kForceChangePin},
    {&PINPolicies::AlphaPINAllowed, &settings::kAlphaPinAllowed},
}};

// What holds: the caller's value, else the configured one, else the default. `read` is called with
// every setting and a place for its value, and tells whether it is there.
template <class Read>
PINPolicies EffectivePolicies(const PINPolicies* pCallers, Read&& read) {
    PINPolicies effective{};
    for (const PolicyField& field : kPolicyFields) {
        std::uint32_t& value = effective.*field.pField;
        if (field.pSetting != nullptr && !read(*field.pSetting, value)) {
            value = field.pSetting->nDefault;
        }
        if (pCallers != nullptr && pCallers->*field.pField != MVP_POLICY_FROM_CONFIGURATION) {
            value = pCallers->*field.pField;
        }
    }
    return effective;
}

// The rules of the panel. Weak PINs are refused exactly when WeakPINAllowed is 1: cards in the
// field are personalised by that, whatever the name says. The alpha rule follows its name.
PwdRuleArgs RulesOf(const PINPolicies& policies) noexcept;

}  // namespace mvp
