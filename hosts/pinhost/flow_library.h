// The module of the flows that need the PIN library's exported classes, for as long as one runs.
//
//     const FlowLibrary flows;
//     flows.ChangePinEmbedded(&request);
#pragma once

#include "pinhost/flows/flows.h"
#include "pinhost/pin_library.h"

namespace pinhost {

class FlowLibrary {
public:
    // Loads the module; the PIN library is there already. Throws EnvironmentError.
    FlowLibrary() : m_module(LoadOwnModule("pinhost_flows.dll")) {
        Find(m_module, "PinHostChangePinEmbedded", ChangePinEmbedded);
        Find(m_module, "PinHostUnlockCard", UnlockCard);
        Find(m_module, "PinHostInitializePin", InitializePin);
        Find(m_module, "PinHostShowUnlockCode", ShowUnlockCode);
        Find(m_module, "PinHostCardManagerLocked", CardManagerLocked);
        Find(m_module, "PinHostToolAtWork", ToolAtWork);
        Find(m_module, "PinHostResetCard", ResetCard);
        Find(m_module, "PinHostShowPopup", ShowPopup);
        Find(m_module, "PinHostTellExpiry", TellExpiry);
    }

private:
    mvp::ModuleHandle m_module;

public:
    decltype(&::PinHostChangePinEmbedded) ChangePinEmbedded = nullptr;
    decltype(&::PinHostUnlockCard) UnlockCard = nullptr;
    decltype(&::PinHostInitializePin) InitializePin = nullptr;
    decltype(&::PinHostShowUnlockCode) ShowUnlockCode = nullptr;
    decltype(&::PinHostCardManagerLocked) CardManagerLocked = nullptr;
    decltype(&::PinHostToolAtWork) ToolAtWork = nullptr;
    decltype(&::PinHostResetCard) ResetCard = nullptr;
    decltype(&::PinHostShowPopup) ShowPopup = nullptr;
    decltype(&::PinHostTellExpiry) TellExpiry = nullptr;
};

}  // namespace pinhost
