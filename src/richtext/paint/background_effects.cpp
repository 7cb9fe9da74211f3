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
    for (unsigned nShift = 0; nShift < 24; nShift += 8) {
        const std::int32_t nFrom = ChannelOf(a, nShift);
        const std::int32_t n = nFrom + (ChannelOf(b, nShift) - nFrom) * nShare / kWhole;
        mixed |= static_cast<Colour>(std::clamp(n, 0, 255)) << nShift;
    }
    return mixed;
}

// Lighter (towards white) or, below 0, darker: towards the end colour, or black if there is none.
Colour Lit(const Effect& effect, std::int32_t nLight) {
    if (nLight >= 0) {
        return Mix(effect.start, 0xFFFFFF, nLight);
    }
    const bool bOwnDark = effect.end != effect.start;
    return Mix(effect.start, bOwnDark ? effect.end : 0, bOwnDark ? -2 * nLight : -nLight);
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
    const std::int32_t nGrain = Grain(nX, nY);
    return effect.end != effect.start ? Mix(effect.start, effect.end, nGrain)
                                      : Lit(effect, (nGrain - kWhole / 2) / 4);
}

// How the light falls on an edge of nEdge pixels: light on the side nearer the top left, dark on
// the other, nothing in between. n: pixels from the start of nSize.
std::int32_t EdgeLight(std::int32_t n, std::int32_t nSize, std::int32_t nEdge) {
    if (n < nEdge) {
        return kWhole * (nEdge - n) / nEdge;
    }
    const std::int32_t nFromEnd = nSize - 1 - n;
    return nFromEnd < nEdge ? -kWhole * (nEdge - nFromEnd) / nEdge : 0;
}

Colour Bump(const Effect& effect, std::int32_t nX, std::int32_t nY, bool bSoft) {
    constexpr std::int32_t kBevel = 3;
    const auto edgeOf = [&](std::int32_t nSize) {
        return std::max(1, bSoft ? std::min(nSize / 4, 1 << 20) : std::min(kBevel, nSize / 2));
    };
    std::int32_t nDown = EdgeLight(nY, effect.nHeight, edgeOf(effect.nHeight));
    std::int32_t nAcross = EdgeLight(nX, effect.nWidth, edgeOf(effect.nWidth));
    if (bSoft) {
        nDown = nDown * std::abs(nDown) / kWhole;
        nAcross = nAcross * std::abs(nAcross) / kWhole;
    } else {
        nDown = nDown == 0 ? 0 : nDown > 0 ? kWhole : -kWhole;
        nAcross = nAcross == 0 ? 0 : nAcross > 0 ? kWhole : -kWhole;
    }
    return Lit(effect, std::clamp((nDown + nAcross) / 3, -kWhole / 2, kWhole / 2));
}

Colour Metal(const Effect& effect, std::int32_t nX, std::int32_t nY, std::int32_t nDown) {
    // Two bands of light, and streaks: grain that runs on for some pixels.
    const std::int32_t nBands = Round((2 * nDown) % kWhole) / 4 - kWhole / 10;
    const std::int32_t nStreak = (Grain(nX / 24, nY) + Grain(nX / 7, nY) - kWhole) / 16;
    return Lit(effect, nBands + nStreak);
}

Colour PixelAt(const Effect& effect, std::int32_t nX, std::int32_t nY) {
    const std::int32_t nAcross = ShareAt(nX, effect.nWidth);
    const std::int32_t nDown = ShareAt(nY, effect.nHeight);
    switch (effect.effect) {
        case BackgroundEffect::HGradient:
            return Mix(effect.start, effect.end, nAcross);
        case BackgroundEffect::VGradient:
            return Mix(effect.start, effect.end, nDown);
        case BackgroundEffect::HCGradient:
            return Mix(effect.start, effect.end, Centred(nAcross));
        case BackgroundEffect::VCGradient:
            return Mix(effect.start, effect.end, Centred(nDown));
        case BackgroundEffect::HGradient3:
            return ThreeColours(effect, nAcross);
        case BackgroundEffect::VGradient3:
            return ThreeColours(effect, nDown);
        case BackgroundEffect::Noise:
            return Noise(effect, nX, nY);
        case BackgroundEffect::DiagShade: {
            const std::int32_t nLight = (nAcross + nDown) / 2 + (Grain(nX, nY) - 128) / 16;
            return effect.end != effect.start
                       ? Mix(effect.start, effect.end, std::clamp(nLight, 0, kWhole))
                       : Lit(effect, (kWhole / 2 - nLight) / 2);
        }
        case BackgroundEffect::HShade:
            return Lit(effect, (kWhole / 2 - nAcross) / 2 + (Grain(nX, nY) - 128) / 32);
        case BackgroundEffect::VShade:
            return Lit(effect, (kWhole / 2 - nDown) / 2 + (Grain(nX, nY) - 128) / 32);
        case BackgroundEffect::HBump:
            return Lit(effect, (Round(nDown) - kWhole / 2) / 2);
        case BackgroundEffect::VBump:
            return Lit(effect, (Round(nAcross) - kWhole / 2) / 2);
        case BackgroundEffect::SoftBump:
            return Bump(effect, nX, nY, true);
        case BackgroundEffect::HardBump:
            return Bump(effect, nX, nY, false);
        case BackgroundEffect::Metal:
            return Metal(effect, nX, nY, nDown);
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
    for (std::int32_t nRow = 0; nRow < area.nHeight; ++nRow) {
        std::uint8_t* pPixel = pPixels + static_cast<std::size_t>(nRow) * nStride;
        for (std::int32_t nColumn = 0; nColumn < area.nWidth; ++nColumn) {
            const Colour colour = PixelAt(effect, area.nX + nColumn, area.nY + nRow);
            *pPixel++ = static_cast<std::uint8_t>(colour >> 16);
            *pPixel++ = static_cast<std::uint8_t>(colour >> 8);
            *pPixel++ = static_cast<std::uint8_t>(colour);
            *pPixel++ = 0xFF;
        }
    }
}

}  // namespace mvp::richtext
