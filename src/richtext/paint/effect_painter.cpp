#include "richtext/paint/effect_painter.h"

#include <algorithm>
#include <array>
#include <vector>

#include "platform/bitmap_pixels.h"
#include "richtext/paint/background_effects.h"
#include "richtext/paint/border_painter.h"

namespace mvp::richtext {
namespace {

// The system's gradients count with 16 bits of colour times the length; longer ones are computed
// here.
constexpr int kMaxGradient = 8192;

TRIVERTEX VertexAt(LONG x, LONG y, Colour colour) {
    const auto channel = [&](unsigned nShift) {
        return static_cast<COLOR16>((colour >> nShift & 0xFF) << 8);
    };
    return {x, y, channel(0), channel(8), channel(16), 0};
}

// From the start colour at `from` to the end colour at `to`, one behind the last pixel.
struct Ramp {
    LONG from;
    LONG to;
    Colour start;
    Colour end;
};

void DrawRamp(HDC hDC, const RECT& block, const Ramp& ramp, bool bAcross) {
    std::array<TRIVERTEX, 2> vertex = bAcross
                                          ? std::array{VertexAt(ramp.from, block.top, ramp.start),
                                                       VertexAt(ramp.to, block.bottom, ramp.end)}
                                          : std::array{VertexAt(block.left, ramp.from, ramp.start),
                                                       VertexAt(block.right, ramp.to, ramp.end)};
    GRADIENT_RECT whole = {0, 1};
    GdiGradientFill(hDC, vertex.data(), 2, &whole, 1,
                    bAcross ? GRADIENT_FILL_RECT_H : GRADIENT_FILL_RECT_V);
}

// The colours from one end to the other; those in the middle meet there.
void DrawGradient(HDC hDC, const Decoration& decoration, const RECT& block, bool bAcross) {
    const LONG from = bAcross ? block.left : block.top;
    const LONG to = bAcross ? block.right : block.bottom;
    const LONG middle = from + (to - from) / 2;
    switch (decoration.effect) {
        case BackgroundEffect::HCGradient:
        case BackgroundEffect::VCGradient:
            DrawRamp(hDC, block, {from, middle, decoration.start, decoration.end}, bAcross);
            DrawRamp(hDC, block, {middle, to, decoration.end, decoration.start}, bAcross);
            break;
        case BackgroundEffect::HGradient3:
        case BackgroundEffect::VGradient3:
            DrawRamp(hDC, block, {from, middle, decoration.start, decoration.middle}, bAcross);
            DrawRamp(hDC, block, {middle, to, decoration.middle, decoration.end}, bAcross);
            break;
        default:
            DrawRamp(hDC, block, {from, to, decoration.start, decoration.end}, bAcross);
            break;
    }
}

void DrawPixels(HDC hDC, const Decoration& decoration, const RECT& block, const RECT& area) {
    const Effect effect = {decoration.effect,
                           decoration.start,
                           decoration.middle,
                           decoration.end,
                           static_cast<std::int32_t>(block.right - block.left),
                           static_cast<std::int32_t>(block.bottom - block.top)};
    const LONG width = area.right - area.left;
    // Some rows at a time: the memory is bounded, however large the area.
    constexpr LONG kRows = 64;
    const std::size_t stride = static_cast<std::size_t>(width) * 4;
    std::vector<std::uint8_t> pixels(stride * kRows);
    for (LONG y = area.top; y < area.bottom; y += kRows) {
        const LONG rows = std::min(kRows, area.bottom - y);
        PaintEffect(effect,
                    {static_cast<std::int32_t>(area.left - block.left),
                     static_cast<std::int32_t>(y - block.top), static_cast<std::int32_t>(width),
                     static_cast<std::int32_t>(rows)},
                    pixels.data(), stride);
        const BITMAPINFO info = TopDownPixels(width, rows, 32);
        SetDIBitsToDevice(hDC, area.left, y, static_cast<DWORD>(width), static_cast<DWORD>(rows), 0,
                          0, 0, static_cast<UINT>(rows), pixels.data(), &info, DIB_RGB_COLORS);
    }
}

}  // namespace

void DrawEffect(HDC hDC, const Decoration& decoration, const RECT& block, const RECT& dirty) {
    RECT area{};
    if (decoration.effect == BackgroundEffect::Transparent ||
        !IntersectRect(&area, &block, &dirty)) {
        return;
    }
    if (decoration.effect == BackgroundEffect::Solid) {
        FillArea(hDC, area, dirty, decoration.start);
        return;
    }
    const bool gradient = decoration.effect <= BackgroundEffect::VGradient3;
    const bool fits =
        block.right - block.left <= kMaxGradient && block.bottom - block.top <= kMaxGradient;
    if (!gradient || !fits) {
        DrawPixels(hDC, decoration, block, area);
        return;
    }
    // The odd ones of the gradients run across.
    const bool across = (static_cast<int>(decoration.effect) & 1) != 0;
    const int saved = SaveDC(hDC);
    IntersectClipRect(hDC, area.left, area.top, area.right, area.bottom);
    DrawGradient(hDC, decoration, block, across);
    RestoreDC(hDC, saved);
}

}  // namespace mvp::richtext
