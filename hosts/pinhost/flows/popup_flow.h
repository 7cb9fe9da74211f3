// The flow of the notice that slides in.
#pragma once

#include "pinhost/flows/flows.h"

namespace pinhost {

// True when the notice was shown and has closed.
bool ShowPopup(PinHostPopup& request);

}  // namespace pinhost
