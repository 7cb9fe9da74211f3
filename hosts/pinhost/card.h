// What the commands ask of a card, whichever it is: one in software (file_card.h) or a real one
// (piv_card.h).
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "pinhost/secret.h"

namespace pinhost {

// The card's rules for a new PIN.
struct CardPolicy {
    bool bPreventAlphaPin = false;  // digits only
    bool bPreventWeakPin = false;
    bool bPreventSamePin = false;
    std::uint32_t dwMinPinLength = 4;  // in bytes, inclusive
    std::uint32_t dwMaxPinLength = 8;
    bool bForceChangePin = false;  // of the first PIN, which somebody else may have chosen

    friend bool operator==(const CardPolicy&, const CardPolicy&) = default;
};

// What the library hands to a card with its first PIN.
struct FirstPinRules {
    std::uint32_t dwMinPinLength;
    std::uint32_t dwMaxPinLength;
    std::uint32_t nMaxTries;
    std::uint32_t nMaxUnlocks;
    bool bPreventWeakPin;
    bool bForceChangePin;
};

enum class Verdict {
    Accepted,
    Wrong,    // what was to be proved; it has cost a try if it could be right at all
    Blocked,  // no try was left, or the last one was lost
    Refused,  // the card does not take the new PIN; nothing has changed
};

class FileCard;

// All functions are for one thread. A PIN or code is the caller's, and is overwritten wherever the
// card copied it to. All but InFile throw CardError (apdu_channel.h) or CardFileError when the card
// cannot be asked or kept, CardGone when it is not in its reader any more.
class ICard {
public:
    ICard() = default;
    ICard(const ICard&) = delete;
    ICard& operator=(const ICard&) = delete;
    virtual ~ICard() = default;

    virtual CardPolicy Policy() const = 0;
    virtual bool IsInitialized() const = 0;

    // Without a value where the card does not tell.
    virtual std::optional<std::uint32_t> TriesLeft() = 0;
    virtual std::optional<std::uint32_t> UnlocksLeft() const = 0;

    // Whether the card has left its reader, even if one is in it again.
    virtual bool WasRemoved() = 0;

    // The right PIN gives all tries back. A blocked card compares nothing.
    virtual Verdict Verify(std::span<const char> pin) = 0;
    virtual Verdict Change(std::span<const char> oldPin, std::span<const char> newPin) = 0;

    // A new PIN, and all its tries, for the unlock code or the response to a challenge.
    virtual Verdict Unlock(std::span<const char> code, std::span<const char> newPin) = 0;

    virtual Verdict Initialize(std::span<const char> newPin, const FirstPinRules& rules) = 0;

    // Puts the card back to where it can be initialized, for its PIN or for a code as of Unlock.
    virtual Verdict Reset(std::span<const char> proof, bool bByPin) = 0;

    // Where a card in software can do more than others; null: it is none.
    virtual FileCard* InFile() noexcept { return nullptr; }
};

}  // namespace pinhost
