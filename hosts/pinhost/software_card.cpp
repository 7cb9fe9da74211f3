#include "pinhost/software_card.h"

#include <string_view>

namespace pinhost {
namespace {

Secret MakeSecret(std::string_view text) {
    return {text.begin(), text.end()};
}

}  // namespace

SoftwareCard::SoftwareCard()
    : strReader("Veskara Software Reader 0"),
      pin(MakeSecret("1234")),
      unlockCode(MakeSecret("12345678")) {}

Verdict SoftwareCard::Verify(std::span<const char> candidate) noexcept {
    if (IsBlocked()) {
        return Verdict::Blocked;
    }
    // The try is taken before the comparison, so that no way out of it leaves it untaken.
    --nTriesLeft;
    if (SameSecret(candidate, pin)) {
        nTriesLeft = nMaxTries;
        return Verdict::Accepted;
    }
    return IsBlocked() ? Verdict::Blocked : Verdict::Wrong;
}

bool SoftwareCard::SetPin(std::span<const char> newPin) {
    if (newPin.empty() || newPin.size() > kMaxSecretLength) {
        return false;
    }
    pin = Secret(newPin.begin(), newPin.end());
    return true;
}

}  // namespace pinhost
