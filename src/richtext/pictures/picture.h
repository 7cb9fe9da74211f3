// A picture with transparency: 32-bit pixels, colours already multiplied by their alpha, the way
// the system blends them. Bitmaps, icons and the images of image lists all become one of these, so
// that there is one way of drawing them.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <span>

#include "platform/handle.h"
#include "richtext/style/colour_table.h"

namespace mvp::richtext {

// No side and no whole of a picture is larger; what is counts as missing.
constexpr std::int32_t kMaxPictureSide = 8192;
constexpr std::int64_t kMaxPicturePixels = std::int64_t{4} << 20;

constexpr bool IsPictureSize(std::int64_t nWidth, std::int64_t nHeight) {
    return nWidth > 0 && nHeight > 0 && nWidth <= kMaxPictureSide && nHeight <= kMaxPictureSide &&
           nWidth * nHeight <= kMaxPicturePixels;
}

class Picture {
public:
    Picture() = default;
    // Empty when there is no memory or the size is out of bounds; otherwise transparent.
    Picture(std::int32_t nWidth, std::int32_t nHeight);

    // A copy of the bitmap, which must not be selected anywhere. Pixels of the colour `mask` become
    // transparent; kNoColour: none. The alpha of a 32-bit bitmap that has any is kept.
    static Picture FromBitmap(HBITMAP hBitmap, Colour mask);
    // What `draw` draws on a background that shows through. Called twice.
    static Picture FromDrawing(std::int32_t nWidth, std::int32_t nHeight,
                               const std::function<void(HDC)>& draw);

    explicit operator bool() const { return static_cast<bool>(m_bitmap); }
    std::int32_t Width() const { return m_nWidth; }
    std::int32_t Height() const { return m_nHeight; }
    HBITMAP Get() const { return m_bitmap.get(); }
    // Row by row from the top: blue, green, red, alpha from the low byte.
    std::span<std::uint32_t> Pixels() { return {m_pPixels, PixelCount()}; }
    std::span<const std::uint32_t> Pixels() const { return {m_pPixels, PixelCount()}; }

    // The same in grey and half faded, as a disabled control shows it.
    Picture Disabled() const;

    // A part of it into a rectangle. Alpha is the opacity of the whole.
    void Draw(HDC hDC, const RECT& place, const RECT& part, BYTE nAlpha = 255) const;

private:
    std::size_t PixelCount() const {
        return static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight);
    }

    Bitmap m_bitmap;
    std::uint32_t* m_pPixels = nullptr;  // the bitmap's
    std::int32_t m_nWidth = 0;
    std::int32_t m_nHeight = 0;
};

}  // namespace mvp::richtext
