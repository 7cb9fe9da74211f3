/* The card operations that a caller passes to the card dialogs.
 *
 * The library never talks to a card: it calls these, with the context that it was given and does
 * not look at, on the thread that runs the dialog. A callback may take long, show windows, serve
 * messages and call the library; the dialog takes no other OK meanwhile.
 *
 * Strings cross the module boundary as the framework's CString, whose storage belongs to dlgfw.dll:
 * the caller and the library must use the same dlgfw.dll, but may have different C and C++
 * runtimes. A string that comes by value is the callback's own copy of a secret: its storage is
 * overwritten when it goes, and whatever the callback copies out of it is the callback's to wipe.
 *
 * A callback returns MVPINGUI_CARD_OK, or an error code; GetErrorString knows the texts of 1 to 12
 * and 14. One that throws counts as one that returned MVPINGUI_CARD_FAILED; the exception goes no
 * further, which takes a caller whose exceptions the library's compiler can catch: a caller built
 * by another compiler, or for 32 bits, lets none out. The functions are __cdecl. */
#pragma once

#include <dlgfw/string.h>

/* The operation succeeded: VK_OBJ_API_OK. */
constexpr int MVPINGUI_CARD_OK = 0;
/* The general failure, which has a text: GetErrorString(1). */
constexpr int MVPINGUI_CARD_FAILED = 1;
/* Of an unlock callback: the unlock code is wrong. It has a text of its own in the dialog. */
constexpr int MVPINGUI_CARD_WRONG_UNLOCK_CODE = 5;

/* Unblocks the card with `strUnlockCode`, which holds no dashes, and gives it `strNewPin`. */
using MvpUnlockCallback = int(__cdecl*)(void* pContext, CString strUnlockCode, CString strNewPin);

/* Asks the card for a challenge. Success: `strChallenge`, which comes empty, holds it, and the
 * unlock code is its response. Anything else: the card takes a fixed unlock code. */
using MvpChallengeCallback = int(__cdecl*)(void* pContext, CString& strChallenge);

/* Gives the card its first PIN, with the policy values that it is to keep. */
using MvpInitializeCallback = int(__cdecl*)(void* pContext, CString strNewPin,
                                            int nMinimumPINLength, int nMaximumPINLength,
                                            int nMaxPINTries, int nWeakPINAllowed,
                                            int nForceChangePIN, int nMaxPINUnlock);

/* Fetches the card's unlock code. Success with an empty `strCode`: the card has none. */
using MvpGetUnlockCodeCallback = int(__cdecl*)(void* pContext, CString& strCode);

/* The unlock code need not be shown again. What it returns is ignored. */
using MvpNeverDisplayCallback = int(__cdecl*)(void* pContext);
