#include "dialogs/card/policy_values.h"

namespace mvp {

PwdRuleArgs RulesOf(const PINPolicies& policies) noexcept {
    PwdRuleArgs rules{};
    rules.bPreventAlphaPIN = policies.AlphaPINAllowed != 1 ? 1 : 0;
    rules.bPreventWeakPIN = policies.WeakPINAllowed == 1 ? 1 : 0;
    rules.dwMinPINLen = policies.MinimumPINLength;
    rules.dwMaxPINLen = policies.MaximumPINLength;
    return rules;
}

}  // namespace mvp
