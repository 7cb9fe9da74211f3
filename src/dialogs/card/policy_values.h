// The policy of a card that gets its first PIN, and what the rules of the PIN come of it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "mvpingui/pin_policies.h"
#include "mvpingui/pwd_rule_args.h"

namespace mvp {

struct PolicyField {
    const char* pszName;  // of the configuration's value; null: the field is only carried
    std::uint32_t PINPolicies::*pField;
    std::uint32_t dwDefault;
};

// In the order of the record.
inline constexpr std::array<PolicyField, 9> kPolicyFields{{
    {"MinimumPINLength", &PINPolicies::MinimumPINLength, 4},
    {"MaximumPINLength", &PINPolicies::MaximumPINLength, 25},
    {"MaxPINTries", &PINPolicies::MaxPINTries, 6},
    {nullptr, &PINPolicies::dwUnused4, 0},
    {"MaxPINUnlock", &PINPolicies::MaxPINUnlock, 6},
    {nullptr, &PINPolicies::dwUnused6, 0},
    {"WeakPINAllowed", &PINPolicies::WeakPINAllowed, 0},
    {"ForceChangePIN", &PINPolicies::ForceChangePIN, 0},
    {"AlphaPINAllowed", &PINPolicies::AlphaPINAllowed, 1},
}};

// What holds: the caller's value, else the configured one, else the default. `read` is called with
// the name of every configured value and a place for it, and tells whether it is there.
template <class Read>
PINPolicies EffectivePolicies(const PINPolicies* pCallers, Read&& read) {
    PINPolicies effective{};
    for (const PolicyField& field : kPolicyFields) {
        std::uint32_t& value = effective.*field.pField;
        if (field.pszName == nullptr || !read(field.pszName, value)) {
            value = field.dwDefault;
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
