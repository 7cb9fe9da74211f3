// How the unlock dialog shows a card that takes a fixed code: the part of the challenge goes, and
// what stands below it moves up into its room.
#pragma once

#include "resources/resource_numbers.h"

namespace mvp {

// By how many pixels of 96 dpi, and by how many the dialog gets shorter.
inline constexpr int kChallengePartHeight = 100;

inline constexpr int kChallengePart[] = {
    IDC_UNLOCK_CARD_CHALLENGE_LABEL,
    IDC_UNLOCK_CARD_HELP_DESK,
    IDC_UNLOCK_CARD_CHALLENGE_NOTE,
    IDC_UNLOCK_CARD_CHALLENGE,
};

inline constexpr int kBelowChallengePart[] = {
    IDC_UNLOCK_CARD_INSTRUCTION,
    IDC_UNLOCK_CARD_CODE_BOX,
    IDC_UNLOCK_CARD_CODE_LABEL,
    IDC_UNLOCK_CARD_CODE_EDIT,
    IDC_UNLOCK_CARD_PIN_BOX,
    IDC_UNLOCK_CARD_NEW_LABEL,
    IDC_UNLOCK_CARD_CONFIRM_LABEL,
    IDC_UNLOCK_CARD_CODE_NOTE,
    IDC_UNLOCK_CARD_NEW_EDIT,
    IDC_UNLOCK_CARD_CONFIRM_EDIT,
    IDC_UNLOCK_CARD_POLICIES_PLACE,
    1,  // OK
    2,  // Cancel
};

}  // namespace mvp
