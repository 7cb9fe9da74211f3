/* Hosts written in C use the record too, and every host relies on where its fields lie. */
#include "mvpingui/pwd_rule_args.h"

#include <stddef.h>

_Static_assert(offsetof(PwdRuleArgs, dwUnused) == 0, "field 0");
_Static_assert(offsetof(PwdRuleArgs, bPreventAlphaPIN) == 4, "field 1");
_Static_assert(offsetof(PwdRuleArgs, bPreventWeakPIN) == 8, "field 2");
_Static_assert(offsetof(PwdRuleArgs, bPreventSamePIN) == 12, "field 3");
_Static_assert(offsetof(PwdRuleArgs, dwMinPINLen) == 16, "field 4");
_Static_assert(offsetof(PwdRuleArgs, dwMaxPINLen) == 20, "field 5");
_Static_assert(offsetof(PwdRuleArgs, bCancelDisabled) == 24, "field 6");
_Static_assert(sizeof(PwdRuleArgs) == 28, "seven fields of 32 bits");
