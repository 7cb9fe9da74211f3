// The library and the flows of its classes, loaded at run time: under the settings that are there
// by then, and from any folder.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include <mvpingui/mvpingui.h>

#include "pinhost/flows/flows.h"
#include "platform/handle.h"
#include "platform/system_library.h"

namespace governed {

class Library {
public:
    // From that folder. Throws std::runtime_error.
    explicit Library(const std::string& strFolder);
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    decltype(&::GetPINFromUser) GetPINFromUser = nullptr;
    decltype(&::FreeGetPinBuffer) FreeGetPinBuffer = nullptr;
    decltype(&::DisplayLastPINTry) DisplayLastPINTry = nullptr;
    decltype(&::ShowAbout) ShowAbout = nullptr;
    decltype(&::PinHostChangePinEmbedded) ChangePinEmbedded = nullptr;
    decltype(&::PinHostUnlockCard) UnlockCard = nullptr;
    decltype(&::PinHostInitializePin) InitializePin = nullptr;
    decltype(&::PinHostShowUnlockCode) ShowUnlockCode = nullptr;
    decltype(&::PinHostCardManagerLocked) CardManagerLocked = nullptr;
    decltype(&::PinHostShowPopup) ShowPopup = nullptr;
    decltype(&::PinHostTellExpiry) TellExpiry = nullptr;

private:
    mvp::ModuleHandle m_library;
    mvp::ModuleHandle m_flows;
};

}  // namespace governed
