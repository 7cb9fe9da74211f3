/* The PIN rules of a card, as a host hands them to the library. C and C++.
 *
 * A host fills one record per card and passes its address; the library reads it during the call
 * and keeps copies of its own. All fields are unsigned 32-bit numbers, in this order, without
 * padding. A flag counts as set when it is not zero. That the confirmation matches the new PIN is
 * always demanded and has no field.
 */
#ifndef MVPINGUI_PWD_RULE_ARGS_H
#define MVPINGUI_PWD_RULE_ARGS_H

#include <stdint.h> /* NOLINT(modernize-deprecated-headers): C reads this header too */

/* In dwMinPINLen or dwMaxPINLen: no such rule. (0 is a real minimum, which every PIN meets, and a
 * real maximum, which only the empty PIN meets.) */
#define MVP_NO_PIN_LENGTH_RULE UINT32_C(0xFFFFFFFF)

struct PwdRuleArgs {
    uint32_t dwUnused;         /* never read by the library; any value */
    uint32_t bPreventAlphaPIN; /* flag: the PIN is made of decimal digits only */
    uint32_t bPreventWeakPIN;  /* flag: the PIN is no progression such as 1234, 9999 or 2468, and
                                  has at least 3 characters */
    uint32_t bPreventSamePIN;  /* flag: the new PIN differs from the current one */
    uint32_t dwMinPINLen;      /* fewest characters, or MVP_NO_PIN_LENGTH_RULE */
    uint32_t dwMaxPINLen;      /* most characters, or MVP_NO_PIN_LENGTH_RULE */
    uint32_t bCancelDisabled;  /* flag: the change-PIN dialog cannot be cancelled */
};

#ifndef __cplusplus
typedef struct PwdRuleArgs PwdRuleArgs;
#endif

#endif
