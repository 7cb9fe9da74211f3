// The software card's file: a JSON object that a person can read and edit.
//
//     {
//       "reader": "Veskara Software Reader 0",
//       "pin": "1234",
//       "unlockCode": "0123456789ABCDEF",
//       "unlockCodeSeen": false,
//       "challengeKey": "Key of the software card",
//       "challenge": "",
//       "triesLeft": 3,
//       "maxTries": 3,
//       "unlocksLeft": 6,
//       "maxUnlocks": 6,
//       "policy": {"minLength": 4, "maxLength": 8, "digitsOnly": false, "notWeak": false,
//                  "notSame": false, "forceChange": false}
//     }
//
// "pin" is null on a card that is not initialized, "unlockCode" on one without. Older files lack
// "unlockCodeSeen", "challengeKey", "challenge", "unlocksLeft" with "maxUnlocks", and
// "forceChange": these have the values above then. Every other field is needed. A PIN is bytes:
// each character of its text stands for one, so characters beyond U+00FF are refused.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "pinhost/software_card.h"

namespace pinhost {

// A card file that cannot be read, written or understood. The text, in UTF-8, names file and
// fault, never a PIN.
class CardFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The card in the file, or a new one when there is no file. Throws CardFileError.
SoftwareCard ReadCard(const std::filesystem::path& file);

// Replaces the file whole or leaves it as it was. Throws CardFileError.
void WriteCard(const std::filesystem::path& file, const SoftwareCard& card);

// The file's contents alone. Throws CardFileError, its text without the file's name.
SoftwareCard ParseCard(std::string_view text);
Secret FormatCard(const SoftwareCard& card);

}  // namespace pinhost
