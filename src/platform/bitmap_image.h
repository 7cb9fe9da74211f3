// Checks a bitmap before the system is given it. Files and resources come from anywhere, and the
// system's own loader believes what their headers say: a picture that claims more rows than it has,
// or pixels beyond its end, ends the process there.
//
//     const std::optional<BitmapImage> image = ReadBitmapFile(bytes);
//     if (image) ...  // every field holds, image->pixels lies in `bytes`
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace mvp {

// What a checked bitmap is. A side has at least one pixel and at most kMaxBitmapSide, the whole at
// most kMaxBitmapPixels.
struct BitmapImage {
    enum class Packing : std::uint32_t { None = 0, Rle8 = 1, Rle4 = 2, Masks = 3 };

    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    bool bTopDown = false;    // the first row of the pixels is the top one; never with run lengths
    std::uint16_t nBits = 0;  // of a pixel: 1, 4, 8, 16, 24 or 32
    Packing packing = Packing::None;
    std::array<std::uint32_t, 3> aMasks = {};      // red, green, blue, with Packing::Masks
    std::uint32_t nColours = 0;                    // of aColours, up to 8 bits a pixel
    std::array<std::uint32_t, 256> aColours = {};  // blue in the low byte, green, red, 0
    // The rows, each padded to 4 bytes: as many as the height says. Run lengths: all there is.
    std::span<const std::uint8_t> pixels;
};

constexpr std::int32_t kMaxBitmapSide = 32767;
constexpr std::int64_t kMaxBitmapPixels = std::int64_t{16} << 20;

// Of a file. Nothing when it is no bitmap or does not hold what its headers promise: headers and
// colours must end where the pixels begin, and these within the file.
std::optional<BitmapImage> ReadBitmapFile(std::span<const std::uint8_t> bytes);

// Of a resource, which is a file without its first header: the pixels follow the colours.
std::optional<BitmapImage> ReadBitmapResource(std::span<const std::uint8_t> bytes);

}  // namespace mvp
