#include "richtext/pictures/picture.h"

#include <algorithm>

namespace mvp::richtext {
namespace {

constexpr std::uint32_t kAlpha = 0xFF000000;
constexpr std::uint32_t kColours = 0x00FFFFFF;

BITMAPINFO InfoOf(std::int32_t nWidth, std::int32_t nHeight) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = nWidth;
    info.bmiHeader.biHeight = -nHeight;  // from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

std::uint32_t Channel(std::uint32_t nPixel, unsigned nShift) {
    return nPixel >> nShift & 0xFF;
}

std::uint32_t Multiplied(std::uint32_t nPixel) {
    const std::uint32_t nAlpha = nPixel >> 24;
    std::uint32_t nResult = nPixel & kAlpha;
    for (unsigned nShift = 0; nShift < 24; nShift += 8) {
        nResult |= (Channel(nPixel, nShift) * nAlpha + 127) / 255 << nShift;
    }
    return nResult;
}

bool IsMultiplied(std::uint32_t nPixel) {
    const std::uint32_t nAlpha = nPixel >> 24;
    return Channel(nPixel, 0) <= nAlpha && Channel(nPixel, 8) <= nAlpha &&
           Channel(nPixel, 16) <= nAlpha;
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
    std::uint32_t nThrough = 0;
    for (unsigned nShift = 0; nShift < 24; nShift += 8) {
        const std::uint32_t nBlack = Channel(nOnBlack, nShift);
        const std::uint32_t nWhite = Channel(nOnWhite, nShift);
        nThrough = std::max(nThrough, nWhite > nBlack ? nWhite - nBlack : 0);
    }
    const std::uint32_t nAlpha = 255 - nThrough;
    std::uint32_t nResult = nAlpha << 24;
    for (unsigned nShift = 0; nShift < 24; nShift += 8) {
        nResult |= std::min(Channel(nOnBlack, nShift), nAlpha) << nShift;
    }
    return nResult;
}

}  // namespace

CPicture::CPicture(std::int32_t nWidth, std::int32_t nHeight) {
    if (!IsPictureSize(nWidth, nHeight)) {
        return;
    }
    const BITMAPINFO info = InfoOf(nWidth, nHeight);
    void* pPixels = nullptr;
    m_bitmap.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pPixels, nullptr, 0));
    if (m_bitmap) {
        m_pPixels = static_cast<std::uint32_t*>(pPixels);
        m_nWidth = nWidth;
        m_nHeight = nHeight;
    }
}

CPicture CPicture::FromBitmap(HBITMAP hBitmap, Colour mask) {
    BITMAP source{};
    if (GetObjectA(hBitmap, sizeof source, &source) != sizeof source) {
        return {};
    }
    CPicture picture(source.bmWidth, source.bmHeight);
    const MemoryDc dc(CreateCompatibleDC(nullptr));
    if (!picture || !dc) {
        return {};
    }
    BITMAPINFO info = InfoOf(picture.m_nWidth, picture.m_nHeight);
    if (GetDIBits(dc.get(), hBitmap, 0, static_cast<UINT>(picture.m_nHeight), picture.m_pPixels,
                  &info, DIB_RGB_COLORS) != picture.m_nHeight) {
        return {};
    }
    const auto pixels = picture.Pixels();
    const auto hasAlpha = [](std::uint32_t n) { return (n & kAlpha) != 0; };
    const bool bAlpha =
        source.bmBitsPixel == 32 && std::any_of(pixels.begin(), pixels.end(), hasAlpha);
    if (bAlpha) {
        TakeAlpha(pixels);
    }
    const std::uint32_t nMask = (mask & 0xFF) << 16 | (mask & 0xFF00) | (mask >> 16 & 0xFF);
    for (std::uint32_t& nPixel : pixels) {
        if (mask != kNoColour && (nPixel & kColours) == nMask) {
            nPixel = 0;
        } else if (!bAlpha) {
            nPixel |= kAlpha;
        }
    }
    return picture;
}

CPicture CPicture::FromDrawing(std::int32_t nWidth, std::int32_t nHeight,
                               const std::function<void(HDC)>& draw) {
    CPicture onBlack(nWidth, nHeight);
    CPicture onWhite(nWidth, nHeight);
    const MemoryDc dc(CreateCompatibleDC(nullptr));
    if (!onBlack || !onWhite || !dc) {
        return {};
    }
    std::fill(onWhite.Pixels().begin(), onWhite.Pixels().end(), kColours);
    for (const CPicture* pPicture : {&onBlack, &onWhite}) {
        const DcSelection selection(dc.get(), pPicture->Get());
        draw(dc.get());
        GdiFlush();
    }
    const auto black = onBlack.Pixels();
    const auto white = onWhite.Pixels();
    std::transform(black.begin(), black.end(), white.begin(), black.begin(), Uncovered);
    return onBlack;
}

CPicture CPicture::Disabled() const {
    CPicture grey(m_nWidth, m_nHeight);
    if (grey) {
        const auto pixels = Pixels();
        std::transform(pixels.begin(), pixels.end(), grey.Pixels().begin(), [](std::uint32_t n) {
            const std::uint32_t nLight =
                (Channel(n, 16) * 77 + Channel(n, 8) * 151 + Channel(n, 0) * 28) / 512;
            return (n >> 24) / 2 << 24 | nLight << 16 | nLight << 8 | nLight;
        });
    }
    return grey;
}

void CPicture::Draw(HDC hDC, const RECT& place, const RECT& part, BYTE nAlpha) const {
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
