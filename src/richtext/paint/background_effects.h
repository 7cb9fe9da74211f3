// The pixels of the background effects of tables and cells. Each pixel depends on its place in the
// block and the block's size alone, so any part of a block can be painted by itself, looks the same
// whenever it is, and costs what the part holds, however large the block.
//
//     std::vector<std::uint8_t> pixels(4 * 64 * 16);
//     PaintEffect({BackgroundEffect::Metal, start, middle, end, nWidth, nHeight},
//                 {nX, nY, 64, 16}, pixels.data(), 4 * 64);
//
// What the effects are (start, middle and end are the colours of bgcolor, bgmidcolor, bgendcolor):
//   solid        start
//   hgradient    start at the left to end at the right; vgradient: top to bottom
//   hcgradient   start at both sides to end in the middle; vcgradient: top and bottom to the middle
//   3hgradient   start, middle, end from left to right; 3vgradient: top to bottom
//   noise        every pixel somewhere between start and end
//   diagshade    start at the top left corner to end at the bottom right, with a little grain
//   hshade       start, lighter at the left and darker at the right; vshade: top and bottom
//   hbump        start as a bar lying on its side lit from above; vbump: as an upright one
//   softbump     start as a cushion: edges rounded over a quarter of the block
//   hardbump     start as a plate: a bevelled edge of a few pixels
//   metal        start as brushed metal: bands from top to bottom, streaks from left to right
// The shades and bumps run towards end instead of the darker start where the two differ.
#pragma once

#include <cstddef>
#include <cstdint>

#include "richtext/style/value_readers.h"

namespace mvp::richtext {

struct Effect {
    BackgroundEffect effect = BackgroundEffect::Solid;
    Colour start = 0;
    Colour middle = 0;
    Colour end = 0;
    std::int32_t nWidth = 0;  // of the whole block, pixels
    std::int32_t nHeight = 0;
};

struct EffectArea {
    std::int32_t nX = 0;  // within the block
    std::int32_t nY = 0;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
};

// Writes the area, row by row from its top, as blue, green, red, 255. nStride: bytes from row to
// row. Nothing is written for the transparent effect.
void PaintEffect(const Effect& effect, const EffectArea& area, std::uint8_t* pPixels,
                 std::size_t nStride);

}  // namespace mvp::richtext
