#include "richtext/pictures/picture.h"

#include <algorithm>

#include "platform/bitmap_pixels.h"

namespace mvp::richtext {
namespace {

constexpr WORD kBits = 32;
constexpr std::uint32_t kAlpha = 0xFF000000;
constexpr std::uint32_t kColours = 0x00FFFFFF;

std::uint32_t Channel(std::uint32_t nPixel, unsigned nShift) {
    return nPixel >> nShift & 0xFF;
}

std::uint32_t Multiplied(std::uint32_t nPixel) {
    const std::uint32_t alpha = nPixel >> 24;
    std::uint32_t result = nPixel & kAlpha;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        result |= (Channel(nPixel, shift) * alpha + 127) / 255 << shift;
    }
    return result;
}

bool IsMultiplied(std::uint32_t nPixel) {
    const std::uint32_t alpha = nPixel >> 24;
    return Channel(nPixel, 0) <= alpha && Channel(nPixel, 8) <= alpha &&
           Channel(nPixel, 16) <= alpha;
}

// Files keep colours as they are, programs often multiplied already: colours brighter than their
// alpha can only be the former.
void TakeAlpha(std::span<std::uint32_t> pixels) {
    if (!std::all_of(pixels.begin(), pixels.end(), IsMultiplied)) {
        std::transform(pixels.begin(), pixels.end(), pixels.begin(), Multiplied);
    }
}

// From the same drawing on black and on white: what differs shines through.
std::uint32_t Uncovered(std::uint32_t nOnBlack, std::uint32_t nOnWhite) {
    std::uint32_t through = 0;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        const std::uint32_t black = Channel(nOnBlack, shift);
        const std::uint32_t white = Channel(nOnWhite, shift);
        through = std::max(through, white > black ? white - black : 0);
    }
    const std::uint32_t alpha = 255 - through;
    std::uint32_t result = alpha << 24;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        result |= std::min(Channel(nOnBlack, shift), alpha) << shift;
    }
    return result;
}

}  // namespace

Picture::Picture(std::int32_t nWidth, std::int32_t nHeight) {
    if (!IsPictureSize(nWidth, nHeight)) {
        return;
    }
    const BITMAPINFO info = TopDownPixels(nWidth, nHeight, kBits);
    void* pixels = nullptr;
    m_bitmap.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (m_bitmap) {
        m_pPixels = static_cast<std::uint32_t*>(pixels);
        m_nWidth = nWidth;
        m_nHeight = nHeight;
    }
}

Picture Picture::FromBitmap(HBITMAP hBitmap, Colour mask) {
    BITMAP source{};
    if (GetObjectA(hBitmap, sizeof source, &source) != sizeof source) {
        return {};
    }
    Picture picture(source.bmWidth, source.bmHeight);
    if (!picture ||
        !ReadBitmapPixels(hBitmap, TopDownPixels(picture.m_nWidth, picture.m_nHeight, kBits),
                          picture.m_pPixels)) {
        return {};
    }
    const auto pixels = picture.Pixels();
    const auto hasAlpha = [](std::uint32_t n) { return (n & kAlpha) != 0; };
    const bool alpha =
        source.bmBitsPixel == 32 && std::any_of(pixels.begin(), pixels.end(), hasAlpha);
    if (alpha) {
        TakeAlpha(pixels);
    }
    const std::uint32_t maskPixel = (mask & 0xFF) << 16 | (mask & 0xFF00) | (mask >> 16 & 0xFF);
    for (std::uint32_t& pixel : pixels) {
        if (mask != kNoColour && (pixel & kColours) == maskPixel) {
            pixel = 0;
        } else if (!alpha) {
            pixel |= kAlpha;
        }
    }
    return picture;
}

Picture Picture::FromDrawing(std::int32_t nWidth, std::int32_t nHeight,
                             const std::function<void(HDC)>& draw) {
    Picture onBlack(nWidth, nHeight);
    Picture onWhite(nWidth, nHeight);
    const MemoryDc dc(CreateCompatibleDC(nullptr));
    if (!onBlack || !onWhite || !dc) {
        return {};
    }
    std::fill(onWhite.Pixels().begin(), onWhite.Pixels().end(), kColours);
    for (const Picture* picture : {&onBlack, &onWhite}) {
        const DcSelection selection(dc.get(), picture->Get());
        draw(dc.get());
        GdiFlush();
    }
    const auto black = onBlack.Pixels();
    const auto white = onWhite.Pixels();
    std::transform(black.begin(), black.end(), white.begin(), black.begin(), Uncovered);
    return onBlack;
}

Picture Picture::Disabled() const {
    Picture grey(m_nWidth, m_nHeight);
    if (grey) {
        const auto pixels = Pixels();
        std::transform(pixels.begin(), pixels.end(), grey.Pixels().begin(), [](std::uint32_t n) {
            const std::uint32_t light =
                (Channel(n, 16) * 77 + Channel(n, 8) * 151 + Channel(n, 0) * 28) / 512;
            return (n >> 24) / 2 << 24 | light << 16 | light << 8 | light;
        });
    }
    return grey;
}

void Picture::Draw(HDC hDC, const RECT& place, const RECT& part, BYTE nAlpha) const {
    const MemoryDc source(CreateCompatibleDC(hDC));
    if (!m_bitmap || !source || IsRectEmpty(&place) || IsRectEmpty(&part)) {
        return;
    }
    const DcSelection selection(source.get(), m_bitmap.get());
    const BLENDFUNCTION blend = {AC_SRC_OVER, 0, nAlpha, AC_SRC_ALPHA};
    GdiAlphaBlend(hDC, place.left, place.top, place.right - place.left, place.bottom - place.top,
                  source.get(), part.left, part.top, part.right - part.left, part.bottom - part.top,
                  blend);
}

}  // namespace mvp::richtext
