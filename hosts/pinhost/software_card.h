// A smart card in software: what the middleware would ask a real one.
//
// A plain value: a program reads it from a file (card_file.h), asks it, and writes it back.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "pinhost/secret.h"

namespace pinhost {

// The longest PIN or code that a card stores, in bytes; the shortest has one.
constexpr std::size_t kMaxSecretLength = 255;

// The card's rules for a new PIN.
struct CardPolicy {
    bool bPreventAlphaPin = false;  // digits only
    bool bPreventWeakPin = false;
    bool bPreventSamePin = false;
    std::uint32_t dwMinPinLength = 4;  // in bytes, inclusive
    std::uint32_t dwMaxPinLength = 8;

    friend bool operator==(const CardPolicy&, const CardPolicy&) = default;
};

enum class Verdict { Accepted, Wrong, Blocked };

struct SoftwareCard {
    // A new card: PIN 1234, unlock code 12345678.
    SoftwareCard();

    std::string strReader;
    Secret pin;
    Secret unlockCode;
    std::uint32_t nTriesLeft = 3;
    std::uint32_t nMaxTries = 3;
    CardPolicy policy;

    bool IsBlocked() const noexcept { return nTriesLeft == 0; }
    bool IsLastTry() const noexcept { return nTriesLeft == 1; }

    // The right PIN gives all tries back. A wrong one costs a try: kBlocked when it was the last. A
    // blocked card compares nothing.
    Verdict Verify(std::span<const char> candidate) noexcept;

    // False, with nothing changed, when the card has no room for such a PIN. The rules of `policy`
    // are the caller's affair.
    bool SetPin(std::span<const char> newPin);
};

}  // namespace pinhost
