// A window of the host's own that embeds the library's change-PIN panel, beside an OK and a Cancel
// button: pinhost_embed.dll.
//
// The host loads the PIN library at run time, with the language's folder current. What embeds a
// class of the library is linked to it, and so stands in a module of its own that is loaded after.
#pragma once

#include <cstdint>

#include <mvpingui/pwd_rule_args.h>

#if defined(PINHOST_EMBED_EXPORTS)
#define PINHOST_EMBED_API __declspec(dllexport)
#else
#define PINHOST_EMBED_API __declspec(dllimport)
#endif

struct PinHostChangePin {
    const PwdRuleArgs* pRules;
    const char* pszReader;  // ANSI; the card whose removal closes the window
    bool bAskCurrentPin;
    // As for GetChangePINInfoFromUser.
    char* pszNewPin;
    std::uint32_t* pcbNewPin;
    char* pszOldPin;
    std::uint32_t* pcbOldPin;
};

// Shows the window until the user is through. Returns MVPINGUI_OK with the PINs that
// GetChangePINInfoFromUser read out of the panel, otherwise MVPINGUI_REFUSED.
extern "C" PINHOST_EMBED_API std::uint32_t PinHostChangePinEmbedded(
    const PinHostChangePin* pRequest);
