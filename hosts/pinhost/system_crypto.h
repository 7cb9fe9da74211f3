// The system's random source and keyed hash, for the software card.
#pragma once

#include <array>
#include <span>

#include "pinhost/software_card.h"

namespace pinhost {

// A KeyedFunction: HMAC-SHA256. Throws EnvironmentError.
std::array<unsigned char, 32> HmacSha256(std::span<const char> key, std::span<const char> message);

// Throws EnvironmentError.
std::array<unsigned char, kChallengeBytes> RandomChallenge();

}  // namespace pinhost
