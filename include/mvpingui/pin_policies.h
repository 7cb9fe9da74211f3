/* The policy record of the dialog that gives a card its first PIN. */
#ifndef MVPINGUI_PIN_POLICIES_H
#define MVPINGUI_PIN_POLICIES_H

#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C reads this header too */

/* In a field of PINPolicies: the configured value holds, or the built-in default. */
#define MVP_POLICY_FROM_CONFIGURATION UINT32_C(0xFFFFFFFF)

struct PINPolicies {
    uint32_t MinimumPINLength; /* shortest PIN, in characters; default 4 */
    uint32_t MaximumPINLength; /* longest PIN, in characters; default 25 */
    uint32_t MaxPINTries;      /* wrong PINs before the card blocks; default 6 */
    uint32_t dwUnused4;        /* carried, not used; default 0 */
    uint32_t MaxPINUnlock;     /* unlock attempts that the card allows; default 6 */
    uint32_t dwUnused6;        /* carried, not used; default 0 */
    /* 1: the card is told to accept weak PINs, while the dialog's rule against them is in force.
     * Any other value: the dialog has no such rule, and the card is told the value. Default 0. */
    uint32_t WeakPINAllowed;
    uint32_t ForceChangePIN;  /* 1: the PIN must be changed at its first use; default 0 */
    uint32_t AlphaPINAllowed; /* 1: letters are allowed in the PIN, else not; default 1 */
};

#ifndef __cplusplus
typedef struct PINPolicies PINPolicies;
#endif

#endif
