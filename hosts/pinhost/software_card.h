// A smart card in software: what the middleware would ask a real one.
//
// A plain value: a program reads it from a file (card_file.h), asks it, and writes it back.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "pinhost/card.h"

namespace pinhost {

// The longest PIN or code that a card stores, in bytes; the shortest has one.
constexpr std::size_t kMaxSecretLength = 255;

// A challenge and its response are numbers of so many bytes, written in hexadecimal digits.
constexpr std::size_t kChallengeBytes = 8;
constexpr std::size_t kChallengeDigits = kChallengeBytes * 2;

// A keyed function of a message, such as an HMAC. Whoever runs the card brings one, so that the
// card needs no cryptography of its own.
using KeyedFunction = std::array<unsigned char, 32> (*)(std::span<const char> key,
                                                        std::span<const char> message);

struct SoftwareCard {
    // A new card: PIN 1234, unlock code 0123456789ABCDEF.
    SoftwareCard();

    std::string strReader;
    Secret pin;         // empty: the card is not initialized
    Secret unlockCode;  // empty: the card has none
    Secret challengeKey;
    std::string strChallenge;  // issued and not answered yet; empty: none
    std::uint32_t nTriesLeft = 3;
    std::uint32_t nMaxTries = 3;
    std::uint32_t nUnlocksLeft = 6;
    std::uint32_t nMaxUnlocks = 6;
    bool bUnlockCodeSeen = false;  // the user need not see it again
    CardPolicy policy;

    bool IsInitialized() const noexcept { return !pin.empty(); }
    bool IsBlocked() const noexcept { return nTriesLeft == 0; }
    bool IsLastTry() const noexcept { return nTriesLeft == 1; }

    // The right PIN gives all tries back. A wrong one costs a try: Blocked when it was the last. A
    // blocked card compares nothing; one that is not initialized takes no PIN.
    Verdict Verify(std::span<const char> candidate) noexcept;

    // The same for the unlock code, whose letters may be small ones, and for the response to the
    // challenge, which is then used up. Both cost the same tries.
    Verdict VerifyUnlockCode(std::span<const char> candidate);
    Verdict VerifyResponse(std::span<const char> candidate, KeyedFunction keyed);

    // The challenge that waits for its response; where there is none, one made of `random`.
    const std::string& Challenge(std::span<const unsigned char, kChallengeBytes> random);

    // What the help desk answers.
    Secret ResponseTo(std::span<const char> challenge, KeyedFunction keyed) const;

    // False, with nothing changed, when the card has no room for such a PIN. The rules of `policy`
    // are the caller's affair.
    bool SetPin(std::span<const char> newPin);

    // A new PIN and all its tries. False as SetPin.
    bool Unlock(std::span<const char> newPin);

    // Takes the PIN away and gives all tries back. The unlock code and the rules stay.
    void Reset() noexcept;

    friend bool operator==(const SoftwareCard&, const SoftwareCard&) = default;
};

}  // namespace pinhost
