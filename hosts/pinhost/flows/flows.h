// The flows that need the library's exported classes, a function each: pinhost_flows.dll.
//
// The host loads the PIN library at run time, with the language's folder current. What uses a class
// of the library is linked to it, and so stands in a module of its own that is loaded after.
//
// Every function returns 0 (MVPINGUI_OK) when the user has confirmed, and otherwise
// MVPINGUI_REFUSED; no exception leaves one. Texts are ANSI. All are called on the thread that runs
// the host's user interface.
#pragma once

#include <cstdint>

#include <mvpingui/pwd_rule_args.h>

#if defined(PINHOST_FLOWS_EXPORTS)
#define PINHOST_FLOWS_API __declspec(dllexport)
#else
#define PINHOST_FLOWS_API __declspec(dllimport)
#endif

struct PinHostChangePin {
    const PwdRuleArgs* pRules;
    const char* pszReader;  // the card whose removal closes the window
    bool bAskCurrentPin;
    // As for GetChangePINInfoFromUser.
    char* pszNewPin;
    std::uint32_t* pcbNewPin;
    char* pszOldPin;
    std::uint32_t* pcbOldPin;
};

// Shows a window of the host's own that embeds the change-PIN panel beside an OK and a Cancel
// button, and hands out the PINs that GetChangePINInfoFromUser reads out of the panel.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostChangePinEmbedded(
    const PinHostChangePin* pRequest);
