// The flows of the card dialogs. Each returns true when the user has confirmed.
#pragma once

#include "pinhost/flows/flows.h"

namespace pinhost {

bool UnlockCard(const PinHostCard& card, const PwdRuleArgs& rules);
bool InitializePin(const PinHostCard& card, const PINPolicies& policies);
bool ShowUnlockCode(const PinHostCard& card);
bool ShowCardManagerLocked(const PinHostCard& card);
bool ShowToolAtWork(const PinHostCard& card, bool bUnlocking);
bool ResetCard(const PinHostCard& card, PinHostReset& reset);

}  // namespace pinhost
