#include "pinhost/software_card.h"

#include <string_view>

namespace pinhost {
namespace {

Secret MakeSecret(std::string_view text) {
    return {text.begin(), text.end()};
}

template <class Text>
void AppendHex(Text& text, std::span<const unsigned char> bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    for (const unsigned char byte : bytes) {
        text.push_back(kDigits[byte >> 4]);
        text.push_back(kDigits[byte & 15]);
    }
}

Secret UpperCase(std::span<const char> text) {
    Secret upper(text.begin(), text.end());
    for (char& ch : upper) {
        if (ch >= 'a' && ch <= 'z') {
            ch = static_cast<char>(ch - 'a' + 'A');
        }
    }
    return upper;
}

// An empty secret is one that the card does not have.
Verdict Compare(std::span<const char> candidate, std::span<const char> secret,
                std::uint32_t& nTriesLeft, std::uint32_t nMaxTries) noexcept {
    if (nTriesLeft == 0) {
        return Verdict::Blocked;
    }
    // The try is taken before the comparison, so that no way out of it leaves it untaken.
    --nTriesLeft;
    if (!secret.empty() && SameSecret(candidate, secret)) {
        nTriesLeft = nMaxTries;
        return Verdict::Accepted;
    }
    return nTriesLeft == 0 ? Verdict::Blocked : Verdict::Wrong;
}

}  // namespace

SoftwareCard::SoftwareCard()
    : strReader("Veskara Software Reader 0"),
      pin(MakeSecret("1234")),
      unlockCode(MakeSecret("0123456789ABCDEF")),
      challengeKey(MakeSecret("Key of the software card")) {}

Verdict SoftwareCard::Verify(std::span<const char> candidate) noexcept {
    return Compare(candidate, pin, nTriesLeft, nMaxTries);
}

Verdict SoftwareCard::VerifyUnlockCode(std::span<const char> candidate) {
    return Compare(UpperCase(candidate), UpperCase(unlockCode), nUnlocksLeft, nMaxUnlocks);
}

Verdict SoftwareCard::VerifyResponse(std::span<const char> candidate, KeyedFunction keyed) {
    const Secret expected = strChallenge.empty() ? Secret() : ResponseTo(strChallenge, keyed);
    const Verdict verdict = Compare(UpperCase(candidate), expected, nUnlocksLeft, nMaxUnlocks);
    if (verdict == Verdict::Accepted) {
        strChallenge.clear();
    }
    return verdict;
}

const std::string& SoftwareCard::Challenge(std::span<const unsigned char, kChallengeBytes> random) {
    if (strChallenge.empty()) {
        AppendHex(strChallenge, random);
    }
    return strChallenge;
}

Secret SoftwareCard::ResponseTo(std::span<const char> challenge, KeyedFunction keyed) const {
    const auto hash = keyed(challengeKey, challenge);
    Secret response;
    AppendHex(response, std::span(hash).first(kChallengeBytes));
    return response;
}

bool SoftwareCard::SetPin(std::span<const char> newPin) {
    if (newPin.empty() || newPin.size() > kMaxSecretLength) {
        return false;
    }
    pin = Secret(newPin.begin(), newPin.end());
    policy.bForceChangePin = false;
    return true;
}

bool SoftwareCard::Unlock(std::span<const char> newPin) {
    if (!SetPin(newPin)) {
        return false;
    }
    nTriesLeft = nMaxTries;
    return true;
}

void SoftwareCard::Reset() noexcept {
    pin = Secret();
    nTriesLeft = nMaxTries;
    nUnlocksLeft = nMaxUnlocks;
    bUnlockCodeSeen = false;
}

}  // namespace pinhost
