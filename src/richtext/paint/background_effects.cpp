#include "richtext/paint/background_effects.h"

#include <algorithm>
#include <cstdlib>

namespace mvp::richtext {
namespace {

// Whole-number arithmetic throughout, so that every compiler gives the same pixels. Shares and
// brightness are in 256ths.
constexpr std::int32_t kWhole = 256;

// Where n lies within nSize, 0 at the first pixel and kWhole at the last.
std::int32_t ShareAt(std::int32_t n, std::int32_t nSize) {
    if (nSize <= 1) {
        return 0;
    }
    return std::clamp(static_cast<std::int32_t>(std::int64_t{n} * kWhole / (nSize - 1)), 0, kWhole);
}

// 0 at both ends, kWhole in the middle, straight in between.
std::int32_t Centred(std::int32_t nShare) {
    return kWhole - std::abs(2 * nShare - kWhole);
}

// The same, round like a bar.
std::int32_t Round(std::int32_t nShare) {
    return 4 * nShare * (kWhole - nShare) / kWhole;
}

std::int32_t ChannelOf(Colour colour, unsigned nShift) {
    return static_cast<std::int32_t>(colour >> nShift & 0xFF);
}

Colour Mix(Colour a, Colour b, std::int32_t nShare) {
    Colour mixed = 0;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        const std::int32_t from = ChannelOf(a, shift);
        const std::int32_t n = from + (ChannelOf(b, shift) - from) * nShare / kWhole;
        mixed |= static_cast<Colour>(std::clamp(n, 0, 255)) << shift;
    }
    return mixed;
}

// Lighter (towards white) or, below 0, darker: towards the end colour, or black if there is none.
Colour Lit(const Effect& effect, std::int32_t nLight) {
    if (nLight >= 0) {
        return Mix(effect.start, 0xFFFFFF, nLight);
    }
    const bool ownDark = effect.end != effect.start;
    return Mix(effect.start, ownDark ? effect.end : 0, ownDark ? -2 * nLight : -nLight);
}

// The same for the same place, without a pattern to the eye: 0 to 255.
std::int32_t Grain(std::int32_t nX, std::int32_t nY) {
    std::uint32_t n =
        static_cast<std::uint32_t>(nX) * 0x9E3779B1U ^ static_cast<std::uint32_t>(nY) * 0x85EBCA77U;
    n = (n ^ n >> 15) * 0x2C1B3C6DU;
    n = (n ^ n >> 12) * 0x297A2D39U;
    return static_cast<std::int32_t>((n ^ n >> 15) & 0xFF);
}

Colour ThreeColours(const Effect& effect, std::int32_t nShare) {
    return nShare < kWhole / 2 ? Mix(effect.start, effect.middle, 2 * nShare)
                               : Mix(effect.middle, effect.end, 2 * nShare - kWhole);
}

Colour Noise(const Effect& effect, std::int32_t nX, std::int32_t nY) {
    const std::int32_t grain = Grain(nX, nY);
    return effect.end != effect.start ? Mix(effect.start, effect.end, grain)
                                      : Lit(effect, (grain - kWhole / 2) / 4);
}

// How the light falls on an edge of nEdge pixels: light on the side nearer the top left, dark on
// the other, nothing in between. n: pixels from the start of nSize.
std::int32_t EdgeLight(std::int32_t n, std::int32_t nSize, std::int32_t nEdge) {
    if (n < nEdge) {
        return kWhole * (nEdge - n) / nEdge;
    }
    const std::int32_t fromEnd = nSize - 1 - n;
    return fromEnd < nEdge ? -kWhole * (nEdge - fromEnd) / nEdge : 0;
}

Colour Bump(const Effect& effect, std::int32_t nX, std::int32_t nY, bool bSoft) {
    constexpr std::int32_t kBevel = 3;
    const auto edgeOf = [&](std::int32_t nSize) {
        return std::max(1, bSoft ? std::min(nSize / 4, 1 << 20) : std::min(kBevel, nSize / 2));
    };
    std::int32_t down = EdgeLight(nY, effect.nHeight, edgeOf(effect.nHeight));
    std::int32_t across = EdgeLight(nX, effect.nWidth, edgeOf(effect.nWidth));
    if (bSoft) {
        down = down * std::abs(down) / kWhole;
        across = across * std::abs(across) / kWhole;
    } else {
        down = down == 0 ? 0 : down > 0 ? kWhole : -kWhole;
        across = across == 0 ? 0 : across > 0 ? kWhole : -kWhole;
    }
    return Lit(effect, std::clamp((down + across) / 3, -kWhole / 2, kWhole / 2));
}

Colour Metal(const Effect& effect, std::int32_t nX, std::int32_t nY, std::int32_t nDown) {
    // Two bands of light, and streaks: grain that runs on for some pixels.
    const std::int32_t bands = Round((2 * nDown) % kWhole) / 4 - kWhole / 10;
    const std::int32_t streak = (Grain(nX / 24, nY) + Grain(nX / 7, nY) - kWhole) / 16;
    return Lit(effect, bands + streak);
}

Colour PixelAt(const Effect& effect, std::int32_t nX, std::int32_t nY) {
    const std::int32_t across = ShareAt(nX, effect.nWidth);
    const std::int32_t down = ShareAt(nY, effect.nHeight);
    switch (effect.effect) {
        case BackgroundEffect::HGradient:
            return Mix(effect.start, effect.end, across);
        case BackgroundEffect::VGradient:
            return Mix(effect.start, effect.end, down);
        case BackgroundEffect::HCGradient:
            return Mix(effect.start, effect.end, Centred(across));
        case BackgroundEffect::VCGradient:
            return Mix(effect.start, effect.end, Centred(down));
        case BackgroundEffect::HGradient3:
            return ThreeColours(effect, across);
        case BackgroundEffect::VGradient3:
            return ThreeColours(effect, down);
        case BackgroundEffect::Noise:
            return Noise(effect, nX, nY);
        case BackgroundEffect::DiagShade: {
            const std::int32_t light = (across + down) / 2 + (Grain(nX, nY) - 128) / 16;
            return effect.end != effect.start
                       ? Mix(effect.start, effect.end, std::clamp(light, 0, kWhole))
                       : Lit(effect, (kWhole / 2 - light) / 2);
        }
        case BackgroundEffect::HShade:
            return Lit(effect, (kWhole / 2 - across) / 2 + (Grain(nX, nY) - 128) / 32);
        case BackgroundEffect::VShade:
            return Lit(effect, (kWhole / 2 - down) / 2 + (Grain(nX, nY) - 128) / 32);
        case BackgroundEffect::HBump:
            return Lit(effect, (Round(down) - kWhole / 2) / 2);
        case BackgroundEffect::VBump:
            return Lit(effect, (Round(across) - kWhole / 2) / 2);
        case BackgroundEffect::SoftBump:
            return Bump(effect, nX, nY, true);
        case BackgroundEffect::HardBump:
            return Bump(effect, nX, nY, false);
        case BackgroundEffect::Metal:
            return Metal(effect, nX, nY, down);
        case BackgroundEffect::Transparent:
        case BackgroundEffect::Solid:
            break;
    }
    return effect.start;
}

}  // namespace

void PaintEffect(const Effect& effect, const EffectArea& area, std::uint8_t* pPixels,
                 std::size_t nStride) {
    if (effect.effect == BackgroundEffect::Transparent) {
        return;
    }
    for (std::int32_t row = 0; row < area.nHeight; ++row) {
        std::uint8_t* pixel = pPixels + static_cast<std::size_t>(row) * nStride;
        for (std::int32_t column = 0; column < area.nWidth; ++column) {
            const Colour colour = PixelAt(effect, area.nX + column, area.nY + row);
            *pixel++ = static_cast<std::uint8_t>(colour >> 16);
            *pixel++ = static_cast<std::uint8_t>(colour >> 8);
            *pixel++ = static_cast<std::uint8_t>(colour);
            *pixel++ = 0xFF;
        }
    }
}

}  // namespace mvp::richtext
