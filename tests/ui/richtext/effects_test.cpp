// The background effects on the screen.
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "canvas.h"
#include "richtext/background_effects.h"

namespace mvp::test {
namespace {

constexpr int kWidth = 96;
constexpr int kHeight = 64;

TestDrawer Block(const std::string& strEffect) {
    return TestDrawer(
        "<table cellspacing=0 cellpadding=0 width=96 height=64 bgcolor=#ff0000 "
        "bgmidcolor=#00ff00 bgendcolor=#0000ff bgeffect=" +
        strEffect + "><tr><td></td></tr></table>");
}

// The system's gradient ends one step short of its end colour.
void ExpectNear(COLORREF colour, COLORREF wanted, const char* pszWhat) {
    for (const int nShift : {0, 8, 16})
        EXPECT_NEAR(colour >> nShift & 0xFF, wanted >> nShift & 0xFF, 9) << pszWhat;
}

TEST(EffectPainting, GradientsRunFromColourToColour) {
    constexpr COLORREF kHalf = RGB(128, 0, 128);
    const struct {
        const char* pszName;
        bool bAcross;
        COLORREF middle, last;
    } kCases[] = {{"hgradient", true, kHalf, kBlue},   {"vgradient", false, kHalf, kBlue},
                  {"hcgradient", true, kBlue, kRed},   {"vcgradient", false, kBlue, kRed},
                  {"3hgradient", true, kGreen, kBlue}, {"3vgradient", false, kGreen, kBlue}};
    for (const auto& c : kCases) {
        auto drawer = Block(c.pszName);
        const Canvas canvas(kWidth, kHeight, drawer);
        const int nLast = (c.bAcross ? kWidth : kHeight) - 1;
        const auto at = [&](int n, int nOther) {
            return c.bAcross ? canvas.At(n, nOther) : canvas.At(nOther, n);
        };
        EXPECT_EQ(at(0, 5), kRed) << c.pszName;
        ExpectNear(at((nLast + 1) / 2, 5), c.middle, c.pszName);
        ExpectNear(at(nLast, 5), c.last, c.pszName);
        for (const int n : {0, 20, nLast})
            EXPECT_EQ(at(n, 5), at(n, 60)) << c.pszName << " is the same all along, " << n;
    }
}

TEST(EffectPainting, OtherEffectsAreTheirPixels) {
    int nEffect = static_cast<int>(richtext::BackgroundEffect::Noise);
    for (const char* pszName : {"noise", "diagshade", "hshade", "vshade", "hbump", "vbump",
                                "softbump", "hardbump", "metal"}) {
        auto drawer = Block(pszName);
        const Canvas canvas(kWidth, kHeight, drawer);
        const auto effect = static_cast<richtext::BackgroundEffect>(nEffect++);
        std::vector<std::uint8_t> aPixels(std::size_t{4} * kWidth * kHeight);
        richtext::PaintEffect({effect, kRed, kGreen, kBlue, kWidth, kHeight},
                              {0, 0, kWidth, kHeight}, aPixels.data(), std::size_t{4} * kWidth);
        const auto differs = [&](int x, int y) {
            const std::uint8_t* p = &aPixels[static_cast<std::size_t>(4 * (y * kWidth + x))];
            return canvas.At(x, y) != RGB(p[2], p[1], p[0]);
        };
        EXPECT_EQ(canvas.Count(canvas.Area(), differs), 0) << pszName;
    }
}

TEST(EffectPainting, APartLooksLikeThatPartOfTheWhole) {
    for (const char* pszEffect : {"hgradient", "3vgradient", "noise", "softbump", "metal"}) {
        auto drawer = Block(pszEffect);
        const Canvas whole(kWidth, kHeight, drawer);
        const Canvas parts(kWidth, kHeight);
        for (const RECT& part : {RECT{0, 0, 31, 64}, RECT{31, 0, 96, 17}, RECT{31, 17, 96, 64}})
            drawer.Draw(parts.Dc(), parts.Area(), part);
        const auto differs = [&](int x, int y) { return parts.At(x, y) != whole.At(x, y); };
        EXPECT_EQ(whole.Count(whole.Area(), differs), 0) << pszEffect;
    }
}

TEST(EffectPainting, PlainOnesAndHugeOnes) {
    auto solid = Block("solid");
    EXPECT_EQ(Canvas(kWidth, kHeight, solid).CountOf(kRed), kWidth * kHeight);
    auto transparent = Block("transparent");
    EXPECT_EQ(Canvas(kWidth, kHeight, transparent).CountOf(kUntouched), kWidth * kHeight);
    // Far longer than what the system's gradients can count; only the part in view is computed.
    const Canvas part(kWidth, kHeight,
                      "<table cellspacing=0 width=32767 height=32767 bgcolor=red bgendcolor=blue "
                      "bgeffect=hgradient><tr><td></td></tr></table>");
    EXPECT_EQ(part.At(0, 63), kRed);
    ExpectNear(part.At(95, 0), kRed, "the beginning of a very long one");
}

}  // namespace
}  // namespace mvp::test
