// The pixels of the background effects.
#include <cstdint>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "richtext/paint/background_effects.h"

namespace mvp::richtext {
namespace {

constexpr Colour kStart = Rgb(200, 40, 0);
constexpr Colour kMiddle = Rgb(0, 200, 40);
constexpr Colour kEnd = Rgb(40, 0, 200);

std::vector<Colour> Paint(const Effect& effect, const EffectArea& area) {
    constexpr std::uint8_t kUntouched = 0x77;
    const auto nWidth = static_cast<std::size_t>(area.nWidth);
    const auto nHeight = static_cast<std::size_t>(area.nHeight);
    std::vector<std::uint8_t> bytes(nWidth * nHeight * 4, kUntouched);
    PaintEffect(effect, area, bytes.data(), nWidth * 4);
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
    struct Case {
        BackgroundEffect effect;
        Colour topLeft, topRight, bottomLeft, centre;
    };
    constexpr Colour kHalf = Rgb(120, 20, 100);
    constexpr Case kCases[] = {
        {BackgroundEffect::Solid, kStart, kStart, kStart, kStart},
        {BackgroundEffect::HGradient, kStart, kEnd, kStart, kHalf},
        {BackgroundEffect::VGradient, kStart, kStart, kEnd, kHalf},
        {BackgroundEffect::HCGradient, kStart, kStart, kStart, kEnd},
        {BackgroundEffect::VCGradient, kStart, kStart, kStart, kEnd},
        {BackgroundEffect::HGradient3, kStart, kEnd, kStart, kMiddle},
        {BackgroundEffect::VGradient3, kStart, kStart, kEnd, kMiddle},
    };
    for (const Case& c : kCases) {
        const auto pixels = Paint(EffectOf(c.effect, 33, 17), {0, 0, 33, 17});
        EXPECT_EQ(pixels[0], c.topLeft) << static_cast<int>(c.effect);
        EXPECT_EQ(pixels[32], c.topRight) << static_cast<int>(c.effect);
        EXPECT_EQ(pixels[16 * 33], c.bottomLeft) << static_cast<int>(c.effect);
        EXPECT_EQ(pixels[8 * 33 + 16], c.centre) << static_cast<int>(c.effect);
    }
}

TEST(BackgroundPixels, EachEffectIsItsOwnAndAPartOfItselfWhereverItIsPainted) {
    std::set<std::vector<Colour>> pictures;
    for (int nCode = 0; nCode <= static_cast<int>(BackgroundEffect::Metal); ++nCode) {
        const Effect effect = EffectOf(static_cast<BackgroundEffect>(nCode), 40, 30);
        const auto whole = Paint(effect, {0, 0, 40, 30});
        EXPECT_TRUE(pictures.insert(whole).second) << nCode;
        const auto part = Paint(effect, {7, 5, 20, 10});
        for (std::size_t i = 0; i < part.size(); ++i) {
            EXPECT_EQ(part[i], whole[(5 + i / 20) * 40 + 7 + i % 20]) << nCode;
        }
        // One colour alone is enough for the effects of light.
        Effect plain = effect;
        plain.end = plain.middle = plain.start;
        const auto shades = Paint(plain, {0, 0, 40, 30});
        if (nCode >= static_cast<int>(BackgroundEffect::Noise)) {
            EXPECT_GT(std::set<Colour>(shades.begin(), shades.end()).size(), 2U) << nCode;
        }
    }
}

TEST(BackgroundPixels, LightComesFromTheTopLeft) {
    const auto brightness = [](Colour colour) {
        return (colour & 0xFF) + (colour >> 8 & 0xFF) + (colour >> 16 & 0xFF);
    };
    for (const BackgroundEffect effect :
         {BackgroundEffect::SoftBump, BackgroundEffect::HardBump, BackgroundEffect::DiagShade}) {
        const Effect plain{effect, 0x808080, 0x808080, 0x808080, 40, 40};
        const auto pixels = Paint(plain, {0, 0, 40, 40});
        EXPECT_GT(brightness(pixels.front()), brightness(pixels[20 * 40 + 20]));
        EXPECT_LT(brightness(pixels.back()), brightness(pixels[20 * 40 + 20]));
    }
}

TEST(BackgroundPixels, OddSizesAreHarmless) {
    const auto untouched = Paint(EffectOf(BackgroundEffect::Transparent, 4, 4), {0, 0, 2, 1});
    EXPECT_EQ(untouched[0], Rgb(0x77, 0x77, 0x77) | 0x88000000U);
    for (int nCode = 0; nCode <= static_cast<int>(BackgroundEffect::Metal); ++nCode) {
        for (const std::int32_t nSize : {0, 1, 2, 1 << 30}) {
            const Effect effect = EffectOf(static_cast<BackgroundEffect>(nCode), nSize, nSize);
            const auto pixels = Paint(effect, {nSize - 2, nSize - 2, 2, 2});
            EXPECT_EQ(pixels[3] >> 24, 0U);  // opaque
        }
    }
}

}  // namespace
}  // namespace mvp::richtext
