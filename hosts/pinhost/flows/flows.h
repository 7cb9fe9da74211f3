// The flows that need the library's exported classes, a function each: pinhost_flows.dll.
//
// The host loads the PIN library at run time, with the language's folder current. What uses a class
// of the library is linked to it, and so stands in a module of its own that is loaded after.
//
// Every function returns 0 (MVPINGUI_OK) when the user has confirmed, and otherwise
// MVPINGUI_REFUSED; no exception leaves one. Texts are ANSI. All are called on the thread that runs
// the host's user interface, and they call the card's functions there.
#pragma once

#include <windows.h>

#include <cstdint>

#include <mvpingui/pin_policies.h>
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
    // What comes back: the panel's SmallPinEntryPrevention, which is left to its host to follow.
    std::uint32_t nSmallPinEntryPrevention;
};

// Shows a window of the host's own that embeds the change-PIN panel beside an OK and a Cancel
// button, and hands out the PINs that GetChangePINInfoFromUser reads out of the panel.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostChangePinEmbedded(PinHostChangePin* pRequest);

// The longest code or challenge that the card's functions give out, in bytes with the terminator.
#define PINHOST_CODE_CAPACITY 256

// What the flows ask the card, with `pContext` handed to each: a code of the library's error texts
// comes back, 0 for success. No exception leaves one. Texts end with a zero; those that come in are
// secrets, valid for the call alone.
struct PinHostCard {
    void* pContext;
    const char* pszReader;
    // Unblocks the card with the unlock code or response, without dashes.
    std::int32_t (*pfnUnlock)(void* pContext, const char* pszUnlockCode, const char* pszNewPin);
    // Anything but 0: the unlock code is a fixed one. The buffer holds PINHOST_CODE_CAPACITY bytes.
    std::int32_t (*pfnGetChallenge)(void* pContext, char* pszChallenge);
    // Gives the card its first PIN. All but AlphaPINAllowed of the record is filled in.
    std::int32_t (*pfnInitialize)(void* pContext, const char* pszNewPin,
                                  const PINPolicies* pPolicies);
    // An empty code: the card has none. The buffer holds PINHOST_CODE_CAPACITY bytes.
    std::int32_t (*pfnGetUnlockCode)(void* pContext, char* pszCode);
    // The user need not see the unlock code again.
    void (*pfnNeverDisplay)(void* pContext);
};

// Unblocks the card by CUnlockCardDlg.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostUnlockCard(const PinHostCard* pCard,
                                                             const PwdRuleArgs* pRules);

// Gives the card its first PIN by CInitializePinDlg.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostInitializePin(const PinHostCard* pCard,
                                                                const PINPolicies* pPolicies);

// Shows the unlock code by DisplayUnlockCode. Confirmed: the user need not see it again, or the
// card has none.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostShowUnlockCode(const PinHostCard* pCard);

// Tells that the card manager is blocked, by CCMLockedDlg.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostCardManagerLocked(const PinHostCard* pCard);

// Tells that a tool is at work on the card, by CUnlockInitToolDlg.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostToolAtWork(const PinHostCard* pCard,
                                                             bool bUnlocking);

struct PinHostReset {
    const char* pszChallenge;  // empty: the unlock code is a fixed one
    bool bNoPinRoute;          // the card's PIN cannot be used
    // What comes back: the route that the user chose, and what was entered there, with its
    // terminator, at most `cbProof` bytes.
    bool bByPin;
    char* pszProof;
    std::uint32_t cbProof;
};

// Asks for the right to reset the card by CResetCardDialogMain. Refused as well when what was
// entered does not fit.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostResetCard(const PinHostCard* pCard,
                                                            PinHostReset* pReset);

struct PinHostPopup {
    HWND hParent;            // is told that the notice has closed
    int nType;               // DIALOG_POPUP_NO_READER, ..._CARD_ALERT or ..._CARD_OTP
    const char* pszReader;   // the card whose removal closes the one-time password; may be empty
    const char* pszMessage;  // what stands over its busy bar
    // Fetches the one-time password on a thread of its own; null for the other types.
    LPTHREAD_START_ROUTINE pfnFetchPassword;
    void* pContext;
    void (*pfnShow)(void* pContext, HWND hPopup);  // right before it is shown
    void (*pfnClosed)(void* pContext);             // the thread has been told that it has closed
    bool bCreated;                                 // comes back: there was a window at least
};

// Shows a notice by CPopupAlert and runs the thread's messages until it has closed. Refused: it
// could not be created, or the configuration does not ask for it.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostShowPopup(PinHostPopup* pRequest);

struct PinHostCertificate {
    const char* pszName;
    std::int64_t nExpiry;  // seconds since 1970-01-01 00:00 UTC
};

struct PinHostExpiry {
    const char* pszReader;
    void* hCancel;       // closes the notice when it is signalled, a HANDLE; null: none
    std::int32_t nDays;  // as the reminder is now
    bool bCard;          // tell of the card, too
    std::int64_t nCardExpiry;
    const PinHostCertificate* pCertificates;
    std::uint32_t nCertificates;
    // What comes back: DisplayCardExpiryNotification's result.
    std::int32_t nNewDays;
};

// Tells what expires by DisplayCardExpiryNotification. Confirmed: the number of days is a new one.
extern "C" PINHOST_FLOWS_API std::uint32_t PinHostTellExpiry(PinHostExpiry* pExpiry);
