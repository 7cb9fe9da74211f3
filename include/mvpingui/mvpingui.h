/* The C interface of mvpingui, the PIN user interface of the Veskara suite.
 *
 * A host loads the library, calls InitGUIDll once, and then calls the functions below from the one
 * thread that runs its user interface: none of them is safe to call from two threads at once. A
 * function that shows a dialog returns when the dialog has ended, and serves the calling thread's
 * messages meanwhile. Texts are zero-terminated 8-bit strings in the system's ANSI code page.
 *
 * All of them are __cdecl, and so are the functions that a host gives, whatever the host's compiler
 * takes for granted.
 *
 * No function throws. Unless its comment says otherwise a function returns MVPINGUI_OK or
 * MVPINGUI_REFUSED; what failed is told by the suite's log under the tag "MVPINGUI".
 */
#ifndef MVPINGUI_MVPINGUI_H
#define MVPINGUI_MVPINGUI_H

#include <windows.h>

#include <mvpingui/export.h>
#include <mvpingui/pwd_rule_args.h>
/* NOLINTBEGIN(modernize-deprecated-headers): a C compiler reads this file too */
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
/* NOLINTEND(modernize-deprecated-headers) */

/* The user confirmed. */
#define MVPINGUI_OK 0u
/* The user cancelled, the card was removed, or the request was refused or failed. */
#define MVPINGUI_REFUSED 0xFFFFFFFFu

/* What expires: card_expiry.h, for hosts in C++. */
#ifdef __cplusplus
class VKExpiryNotificationInfo;
#else
typedef struct VKExpiryNotificationInfo VKExpiryNotificationInfo;
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Makes the library's classes and resources (its strings, templates, icons) available to the
 * calling application's dialog framework, whose resource search then finds them. Call once, after
 * loading, from the application's own framework context. What it allocates belongs to the
 * framework. When memory is short nothing happens: dialogs still work, the application just does
 * not find the resources. */
MVPINGUI_API void __cdecl InitGUIDll(void);

/* The text for a card operation's result code, in the language of the resource module.
 *
 * nCode  the result code; 1 to 12 and 14 have a text of their own.
 *
 * Returns a pointer into the library: the text is valid until the next call, and is never null. For
 * a code without a text it is that of the previous call (empty before the first). */
MVPINGUI_API const char* __cdecl GetErrorString(int32_t nCode);

/* Asks the user for a card's PIN. The dialog's OK button is enabled while the PIN's length lies
 * within the bounds, and the dialog closes when the card leaves its reader.
 *
 * hParent       parent window; may be null. It is disabled while the dialog is up
 * pszReader     the reader that holds the card; null or empty: a card in any reader
 * bShowLastTry  nonzero: DisplayLastPINTry comes first, and its refusal is this call's
 * dwMinLength, dwMaxLength  bounds of the PIN's length in bytes, inclusive
 * ppPin         receives a buffer that holds exactly the PIN's bytes, without a terminator, or null
 *               for an empty PIN. It belongs to the caller until it is given to FreeGetPinBuffer
 * pcbPin        receives the PIN's length in bytes. Neither of the two may be null: the request is
 *               refused before anything is shown
 *
 * A minimum above the maximum is logged; the dialog opens, and no PIN enables its OK button.
 *
 * Returns MVPINGUI_OK when the user confirmed. Otherwise MVPINGUI_REFUSED, and the two out
 * arguments are as they were: the user cancelled or declined the last try, the card was removed,
 * the dialog could not be shown, memory is short, or an earlier request is still outstanding. One
 * PIN is in flight at a time: after every call, whatever its result, call FreeGetPinBuffer (with a
 * null buffer when there is none) before the next. */
MVPINGUI_API uint32_t __cdecl GetPINFromUser(HWND hParent, const char* pszReader,
                                             int32_t bShowLastTry, uint32_t dwMinLength,
                                             uint32_t dwMaxLength, char** ppPin, uint32_t* pcbPin);

/* Warns that the next wrong PIN blocks the card, and lets the user go on or step back.
 *
 * pszReader  the reader's name, shown with the warning; may be null or empty.
 *
 * Returns MVPINGUI_OK when the user accepted the warning, MVPINGUI_REFUSED otherwise. */
MVPINGUI_API uint32_t __cdecl DisplayLastPINTry(const char* pszReader);

/* Shows the about box: the installed product's name and version, as the Windows Installer tells
 * them, and a button for the credits document that the configuration names. It opens whatever of
 * that is missing.
 *
 * nColorMode  0: the system's dialog colours; otherwise a background in its window colour
 * pIgnored    whatever it holds
 * pszCaption  shown below the version, copied; may be null or empty.
 *
 * Returns IDOK (1), IDCANCEL (2) when the user closed it otherwise, or MVPINGUI_REFUSED when it
 * could not be shown. */
MVPINGUI_API uint32_t __cdecl ShowAbout(int32_t nColorMode, const void* pIgnored,
                                        const char* pszCaption);

/* Sets the text that every later enter-PIN dialog shows above its edit, until it is set again.
 *
 * pszPrompt  the text, copied; null or empty restores the dialog's own text. */
MVPINGUI_API void __cdecl SetPinPromptString(const char* pszPrompt);

/* Asks the user for a new PIN that the card's rules allow, and for the current one.
 *
 * When the window `hEmbeddingHost` embeds a CChangePINDialog (the one made last, if several), no
 * dialog appears: its edits are checked and read. Otherwise the library shows a dialog of its own,
 * which closes when the card is removed.
 *
 * pRules          the card's rules, copied; null: only the confirmation is checked
 * bShowLastTry    nonzero: DisplayLastPINTry comes first; what it answers other than MVPINGUI_OK is
 *                 this call's result
 * pszNewPin, pcbNewPin  receive the new PIN, zero-terminated, and its length without the terminator
 * pszOldPin, pcbOldPin  likewise the current PIN; an empty text when it was not asked for. Each may
 *                 be null with bAskCurrentPin false, and nothing is written there then
 * pszReader       the reader that holds the card; null or empty: a card in any reader
 * hEmbeddingHost  see above; null: none
 * bAskCurrentPin  false: the dialog asks for the new PIN only
 *
 * Any other null among these four is refused before anything is shown. A minimum length above the
 * maximum is logged; the dialog opens, and no PIN enables its OK button.
 *
 * The two buffers belong to the caller, who makes them large enough for the longest PIN and
 * overwrites them after use: the library knows no bound but the rules' own maximum. Returns
 * MVPINGUI_OK, or MVPINGUI_REFUSED with nothing written: the user cancelled, the card was removed,
 * the embedded panel's PINs break a rule, or the dialog could not be shown. */
MVPINGUI_API uint32_t __cdecl GetChangePINInfoFromUser(const PwdRuleArgs* pRules,
                                                       int32_t bShowLastTry, char* pszNewPin,
                                                       uint32_t* pcbNewPin, char* pszOldPin,
                                                       uint32_t* pcbOldPin, const char* pszReader,
                                                       HWND hEmbeddingHost, bool bAskCurrentPin);

/* Gives back what GetPINFromUser handed out: overwrites the PIN with zeros, frees the buffer, and
 * allows the next GetPINFromUser.
 *
 * pBuffer  the buffer that GetPINFromUser stored, or null when it stored none;
 * cbPin    the length in bytes that came with it, which must not be larger than the buffer. */
MVPINGUI_API void __cdecl FreeGetPinBuffer(char* pBuffer, size_t cbPin);

/* Tells the user that the card, or certificates on it, expire soon or have expired, and asks how
 * many days before an expiry to remind him. Nothing is asked when something has expired already.
 *
 * hParent  parent window; may be null. It is disabled while the notice is up
 * pInfo    what is told, and how it is closed from outside; stays the caller's, unchanged. Null is
 *          refused
 *
 * The spin button of the notice goes from 0 to the current number of days. What is typed is not
 * held to that: the result is the decimal number that the typed text begins with, 0 for a text
 * without one.
 *
 * Returns the new number of days, 0 when the user wants no more reminders. -1 when nothing changes:
 * there was nothing to tell, the number stayed the same, the user closed the notice or the info's
 * event did, or the notice could not be shown. */
MVPINGUI_API int32_t __cdecl DisplayCardExpiryNotification(HWND hParent,
                                                           VKExpiryNotificationInfo* pInfo);

#ifdef __cplusplus
}
#endif

#endif
