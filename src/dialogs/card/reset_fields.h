// Which field of the reset-card panel is the one that counts.
#pragma once

#include <cstdint>

namespace mvp {

enum class ResetField : std::uint8_t { Pin, Response, UnlockCode };

// `bPinMode`: the route of the PIN is chosen; `bChallenge`: a challenge is shown.
constexpr ResetField ActiveResetField(bool bPinMode, bool bChallenge) noexcept {
    if (bPinMode) {
        return ResetField::Pin;
    }
    return bChallenge ? ResetField::Response : ResetField::UnlockCode;
}

}  // namespace mvp
