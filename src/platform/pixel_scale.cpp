#include "platform/pixel_scale.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace mvp {
namespace {

// A row or a column among pixels.
struct Line {
    std::size_t nFirst;
    std::size_t nStep;

    std::size_t At(std::int64_t n) const noexcept {
        return nFirst + static_cast<std::size_t>(n) * nStep;
    }
};

// The mean of pixels, each with a weight.
class Mean {
public:
    void Add(std::uint32_t nPixel, std::int64_t nWeight) noexcept {
        for (std::size_t i = 0; i < m_sums.size(); ++i) {
            m_sums[i] += nWeight * (nPixel >> 8 * i & 0xFF);
        }
    }
    std::uint32_t Pixel(std::int64_t nWeights) const noexcept {
        std::uint32_t pixel = 0;
        for (std::size_t i = 0; i < m_sums.size(); ++i) {
            pixel |= static_cast<std::uint32_t>((m_sums[i] + nWeights / 2) / nWeights) << 8 * i;
        }
        return pixel;
    }

private:
    std::array<std::int64_t, 4> m_sums{};
};

// One line of `nFrom` pixels as one of `nTo`. Counted so finely that every pixel of the one is
// `nTo` long, and every pixel of the other `nFrom`.
void ScaleLine(std::span<const std::uint32_t> source, Line from, std::int64_t nFrom,
               std::span<std::uint32_t> target, Line to, std::int64_t nTo, Scaling scaling) {
    for (std::int64_t i = 0; i < nTo; ++i) {
        const std::int64_t begin = i * nFrom;
        const std::int64_t end = begin + nFrom;
        if (scaling == Scaling::Exact) {
            target[to.At(i)] = source[from.At((begin + end) / 2 / nTo)];
            continue;
        }
        Mean mean;
        for (std::int64_t at = begin / nTo; at * nTo < end; ++at) {
            mean.Add(source[from.At(at)],
                     std::min(end, (at + 1) * nTo) - std::max(begin, at * nTo));
        }
        target[to.At(i)] = mean.Pixel(nFrom);
    }
}

}  // namespace

std::vector<std::uint32_t> ScalePixels(std::span<const std::uint32_t> pixels, PixelSize from,
                                       PixelSize to, Scaling scaling) {
    const auto width = static_cast<std::size_t>(from.nWidth);
    const auto height = static_cast<std::size_t>(from.nHeight);
    const auto newWidth = static_cast<std::size_t>(to.nWidth);
    const auto newHeight = static_cast<std::size_t>(to.nHeight);
    std::vector<std::uint32_t> rows(newWidth * height);
    for (std::size_t y = 0; y < height; ++y) {
        ScaleLine(pixels, {y * width, 1}, from.nWidth, rows, {y * newWidth, 1}, to.nWidth, scaling);
    }
    std::vector<std::uint32_t> scaled(newWidth * newHeight);
    for (std::size_t x = 0; x < newWidth; ++x) {
        ScaleLine(rows, {x, newWidth}, from.nHeight, scaled, {x, newWidth}, to.nHeight, scaling);
    }
    return scaled;
}

}  // namespace mvp
