// The host's window around the library's change-PIN panel.
#pragma once

#include "pinhost/flows/flows.h"

namespace pinhost {

// Shows the window until the user is through; true with the PINs handed out when they confirmed.
bool ChangePinEmbedded(PinHostChangePin& request);

}  // namespace pinhost
