// Pictures in other sizes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace mvp {

// In pixels; both sides are at least 1.
struct PixelSize {
    int nWidth = 0;
    int nHeight = 0;
};

enum class Scaling {
    Smooth,  // a pixel has the mean colour of what it covers
    Exact,   // a pixel has the colour of what lies under its middle: there are no new colours
};

// The rows of `pixels`, of size `from`, in size `to`. A pixel is four bytes, each scaled like the
// others. Time and memory grow with the larger of the sizes. Throws std::bad_alloc.
std::vector<std::uint32_t> ScalePixels(std::span<const std::uint32_t> pixels, PixelSize from,
                                       PixelSize to, Scaling scaling);

}  // namespace mvp
