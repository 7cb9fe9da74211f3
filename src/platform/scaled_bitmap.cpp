#include "platform/scaled_bitmap.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/barrier.h"
#include "platform/bitmap_image.h"
#include "platform/bitmap_pixels.h"
#include "platform/resolution.h"

namespace mvp {
namespace {

constexpr WORD kBits = 32;

bool IsPicture(PixelSize size) {
    return size.nWidth > 0 && size.nHeight > 0 && size.nWidth <= kMaxBitmapSide &&
           size.nHeight <= kMaxBitmapSide &&
           std::int64_t{size.nWidth} * size.nHeight <= kMaxBitmapPixels;
}

// Empty on failure.
Bitmap Copied(HBITMAP hBitmap, PixelSize from, PixelSize to, Scaling scaling) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(from.nWidth) *
                                      static_cast<std::size_t>(from.nHeight));
    if (!ReadBitmapPixels(hBitmap, TopDownPixels(from.nWidth, from.nHeight, kBits),
                          pixels.data())) {
        return {};
    }
    const BITMAPINFO info = TopDownPixels(to.nWidth, to.nHeight, kBits);
    void* bytes = nullptr;
    Bitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bytes, nullptr, 0));
    if (bitmap) {
        std::ranges::copy(ScalePixels(pixels, from, to, scaling),
                          static_cast<std::uint32_t*>(bytes));
    }
    return bitmap;
}

}  // namespace

PixelSize SizeOf(const Bitmap& bitmap) noexcept {
    BITMAP size{};
    GetObjectA(bitmap.get(), sizeof size, &size);
    return {size.bmWidth, size.bmHeight};
}

Bitmap Scaled(Bitmap bitmap, PixelSize size, Scaling scaling) noexcept {
    const PixelSize from = SizeOf(bitmap);
    const bool same = from.nWidth == size.nWidth && from.nHeight == size.nHeight;
    if (same || !IsPicture(from) || !IsPicture(size)) {
        return bitmap;
    }
    Bitmap scaled = Guarded(
        Bitmap(), [&] { return Copied(bitmap.get(), from, size, scaling); }, [] {});
    return scaled ? std::move(scaled) : std::move(bitmap);
}

Bitmap ScaledTo(int nDpi, Bitmap bitmap, Scaling scaling) noexcept {
    const PixelSize size = SizeOf(bitmap);
    return Scaled(std::move(bitmap), {PixelsAt(nDpi, size.nWidth), PixelsAt(nDpi, size.nHeight)},
                  scaling);
}

}  // namespace mvp
