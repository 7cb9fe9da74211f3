// The flow of the expiry notice.
#pragma once

#include "pinhost/flows/flows.h"

namespace pinhost {

// True when the user has chosen another number of days, which `expiry` then holds.
bool TellExpiry(PinHostExpiry& expiry);

}  // namespace pinhost
