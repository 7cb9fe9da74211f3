// Distances that are given in pixels of a screen of 96 dots per inch, as they are on others.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace mvp {

inline constexpr int kDesignDpi = 96;

// `nPixels` of such a screen on one of `nDpi`, to the nearest pixel, halves away from zero: at 96
// it is what it is. What an int cannot hold stops at its limit.
constexpr int PixelsAt(int nDpi, int nPixels) noexcept {
    using Limits = std::numeric_limits<int>;
    constexpr std::int64_t kHalf = kDesignDpi / 2;
    const std::int64_t scaled = std::int64_t{nPixels} * nDpi;
    return static_cast<int>(std::clamp<std::int64_t>(
        (scaled + (scaled < 0 ? -kHalf : kHalf)) / kDesignDpi, Limits::min(), Limits::max()));
}

// Whether a picture that is drawn for 100 % and for 200 % is taken as the latter: from 150 % on.
constexpr bool TakesLargePicture(int nDpi) noexcept {
    constexpr int kFirstLarge = kDesignDpi * 3 / 2;
    return nDpi >= kFirstLarge;
}

}  // namespace mvp
