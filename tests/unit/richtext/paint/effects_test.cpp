#include <cstdint>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "richtext/paint/background_effects.h"

namespace mvp::richtext {
namespace {

using enum BackgroundEffect;

constexpr Colour kStart = Rgb(200, 40, 0);
constexpr Colour kMiddle = Rgb(0, 200, 40);
constexpr Colour kEnd = Rgb(40, 0, 200);

// Colours with what their alpha lacks in the high byte.
std::vector<Colour> Paint(const Effect& effect, const EffectArea& area) {
    constexpr std::uint8_t kUntouched = 0x77;
    const auto width = static_cast<std::size_t>(area.nWidth);
    std::vector<std::uint8_t> bytes(width * static_cast<std::size_t>(area.nHeight) * 4, kUntouched);
    PaintEffect(effect, area, bytes.data(), width * 4);
    std::vector<Colour> pixels;
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        pixels.push_back(Rgb(bytes[i + 2], bytes[i + 1], bytes[i]) |
                         static_cast<Colour>(bytes[i + 3] ^ 0xFF) << 24);
    }
    return pixels;
}

Effect EffectOf(BackgroundEffect effect, std::int32_t nWidth, std::int32_t nHeight) {
    return {effect, kStart, kMiddle, kEnd, nWidth, nHeight};
}

TEST(BackgroundPixels, GradientsRunBetweenTheirColours) {
    constexpr Colour kHalf = Rgb(120, 20, 100);
    constexpr struct {
        BackgroundEffect effect;
        Colour topRight, bottomLeft, centre;
    } kCases[] = {{Solid, kStart, kStart, kStart},    {HGradient, kEnd, kStart, kHalf},
                  {VGradient, kStart, kEnd, kHalf},   {HCGradient, kStart, kStart, kEnd},
                  {VCGradient, kStart, kStart, kEnd}, {HGradient3, kEnd, kStart, kMiddle},
                  {VGradient3, kStart, kEnd, kMiddle}};
    for (const auto& c : kCases) {
        const auto pixels = Paint(EffectOf(c.effect, 33, 17), {0, 0, 33, 17});
        EXPECT_EQ(pixels[0], kStart) << static_cast<int>(c.effect);
        EXPECT_EQ(pixels[32], c.topRight) << static_cast<int>(c.effect);
        EXPECT_EQ(pixels[16 * 33], c.bottomLeft) << static_cast<int>(c.effect);
        EXPECT_EQ(pixels[8 * 33 + 16], c.centre) << static_cast<int>(c.effect);
    }
}

TEST(BackgroundPixels, EachEffectIsItsOwnAndAPartOfItselfWhereverItIsPainted) {
    std::set<std::vector<Colour>> pictures;
    for (int code = 0; code <= static_cast<int>(Metal); ++code) {
        SCOPED_TRACE(code);
        Effect effect = EffectOf(static_cast<BackgroundEffect>(code), 40, 30);
        const auto whole = Paint(effect, {0, 0, 40, 30});
        EXPECT_TRUE(pictures.insert(whole).second);
        const auto part = Paint(effect, {7, 5, 20, 10});
        for (std::size_t i = 0; i < part.size(); ++i) {
            EXPECT_EQ(part[i], whole[(5 + i / 20) * 40 + 7 + i % 20]);
        }
        // One colour alone is enough for the effects of light.
        effect.end = effect.middle = effect.start;
        const auto shades = Paint(effect, {0, 0, 40, 30});
        if (code >= static_cast<int>(Noise)) {
            EXPECT_GT(std::set<Colour>(shades.begin(), shades.end()).size(), 2U);
        }
    }
}

TEST(BackgroundPixels, LightComesFromTheTopLeft) {
    for (const BackgroundEffect effect : {SoftBump, HardBump, DiagShade}) {
        const auto pixels = Paint({effect, 0x808080, 0x808080, 0x808080, 40, 40}, {0, 0, 40, 40});
        // They are grey: the brightness orders them.
        EXPECT_GT(pixels.front(), pixels[20 * 40 + 20]);
        EXPECT_LT(pixels.back(), pixels[20 * 40 + 20]);
        if (effect == HardBump) {  // an edge of three pixels at both ends
            EXPECT_GT(pixels[20 * 40 + 2], pixels[20 * 40 + 3]);
            EXPECT_EQ(pixels[20 * 40 + 3], pixels[20 * 40 + 36]);
            EXPECT_GT(pixels[20 * 40 + 36], pixels[20 * 40 + 37]);
        }
    }
}

TEST(BackgroundPixels, OddSizesAreHarmless) {
    const auto untouched = Paint(EffectOf(Transparent, 4, 4), {0, 0, 2, 1});
    EXPECT_EQ(untouched[0], Rgb(0x77, 0x77, 0x77) | 0x88000000U);
    for (int code = 0; code <= static_cast<int>(Metal); ++code) {
        for (const std::int32_t size : {0, 1, 2, 1 << 30}) {
            const Effect effect = EffectOf(static_cast<BackgroundEffect>(code), size, size);
            const auto pixels = Paint(effect, {size - 2, size - 2, 2, 2});
            EXPECT_EQ(pixels[3] >> 24, 0U);  // opaque
        }
    }
}

}  // namespace
}  // namespace mvp::richtext
