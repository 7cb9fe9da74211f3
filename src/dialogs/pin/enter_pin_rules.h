// What the enter-PIN dialog decides.
#pragma once

#include <cstddef>
#include <cstdint>

namespace mvp {

// Whether a PIN of `cbPin` bytes can be confirmed; both bounds are inclusive, in bytes.
constexpr bool IsPinLengthAllowed(std::size_t cbPin, std::uint32_t dwMinLength,
                                  std::uint32_t dwMaxLength) {
    return dwMinLength <= cbPin && cbPin <= dwMaxLength;
}

// From so many bits per pixel on a screen gets the high-resolution pictures.
constexpr int kHighColorBitsPerPixel = 8;

}  // namespace mvp
