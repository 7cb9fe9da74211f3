// The background effects on the screen.
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "canvas.h"
#include "richtext/paint/background_effects.h"

namespace mvp::test {
namespace {

using richtext::BackgroundEffect;

constexpr int kWidth = 96;
constexpr int kHeight = 64;

std::string Block(const std::string& strEffect) {
    return "<table cellspacing=0 cellpadding=0 width=96 height=64 bgcolor=#ff0000 "
           "bgmidcolor=#00ff00 bgendcolor=#0000ff bgeffect=" +
           strEffect + "><tr><td></td></tr></table>";
}

void ExpectNear(COLORREF colour, COLORREF wanted, const std::string& strWhat) {
    // The system's gradient ends one step short of its end colour.
    const auto apart = [](BYTE a, BYTE b) { return std::abs(int{a} - int{b}); };
    EXPECT_LE(apart(GetRValue(colour), GetRValue(wanted)), 9) << strWhat;
    EXPECT_LE(apart(GetGValue(colour), GetGValue(wanted)), 9) << strWhat;
    EXPECT_LE(apart(GetBValue(colour), GetBValue(wanted)), 9) << strWhat;
}

TEST(EffectPainting, GradientsRunFromColourToColour) {
    constexpr COLORREF r = RGB(255, 0, 0);
    constexpr COLORREF g = RGB(0, 255, 0);
    constexpr COLORREF b = RGB(0, 0, 255);
    const struct {
        const char* name;
        bool bAcross;
        COLORREF first, middle, last;
    } kCases[] = {
        {"hgradient", true, r, RGB(128, 0, 128), b},
        {"vgradient", false, r, RGB(128, 0, 128), b},
        {"hcgradient", true, r, b, r},
        {"vcgradient", false, r, b, r},
        {"3hgradient", true, r, g, b},
        {"3vgradient", false, r, g, b},
    };
    for (const auto& testCase : kCases) {
        const Canvas canvas(kWidth, kHeight);
        DrawMarkup(canvas, Block(testCase.name));
        const int nLength = testCase.bAcross ? kWidth : kHeight;
        const auto at = [&](int n, int nOther) {
            return testCase.bAcross ? canvas.At(n, nOther) : canvas.At(nOther, n);
        };
        EXPECT_EQ(at(0, 5), testCase.first) << testCase.name;
        ExpectNear(at(nLength / 2, 5), testCase.middle, testCase.name);
        ExpectNear(at(nLength - 1, 5), testCase.last, testCase.name);
        for (const int n : {0, 20, nLength - 1})
            EXPECT_EQ(at(n, 5), at(n, 60)) << testCase.name << " is the same all along, " << n;
    }
}

TEST(EffectPainting, OtherEffectsAreTheirPixels) {
    const char* const kNames[] = {"noise", "diagshade", "hshade",   "vshade", "hbump",
                                  "vbump", "softbump",  "hardbump", "metal"};
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
        const Canvas canvas(kWidth, kHeight);
        DrawMarkup(canvas, Block(kNames[i]));
        const auto effect = static_cast<BackgroundEffect>(7 + static_cast<int>(i));
        std::vector<std::uint8_t> aPixels(std::size_t{4} * kWidth * kHeight);
        richtext::PaintEffect({effect, 0x0000FF, 0x00FF00, 0xFF0000, kWidth, kHeight},
                              {0, 0, kWidth, kHeight}, aPixels.data(), std::size_t{4} * kWidth);
        int nWrong = 0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const std::uint8_t* p = &aPixels[static_cast<std::size_t>(4 * (y * kWidth + x))];
                nWrong += canvas.At(x, y) != RGB(p[2], p[1], p[0]);
            }
        }
        EXPECT_EQ(nWrong, 0) << kNames[i];
    }
}

TEST(EffectPainting, APartLooksLikeThatPartOfTheWhole) {
    for (const char* pszEffect : {"hgradient", "3vgradient", "noise", "softbump", "metal"}) {
        const Canvas whole(kWidth, kHeight);
        DrawMarkup(whole, Block(pszEffect));
        const Canvas parts(kWidth, kHeight);
        for (const RECT& part : {RECT{0, 0, 31, 64}, RECT{31, 0, 96, 17}, RECT{31, 17, 96, 64}})
            DrawMarkup(parts, Block(pszEffect), part);
        EXPECT_TRUE(parts == whole) << pszEffect;
    }
}

TEST(EffectPainting, PlainOnesAndHugeOnes) {
    const Canvas canvas(kWidth, kHeight);
    DrawMarkup(canvas, Block("solid"));
    EXPECT_EQ(canvas.Row(0), "96r");
    EXPECT_EQ(canvas.Column(95), "64r");

    const Canvas clear(kWidth, kHeight);
    DrawMarkup(clear, Block("transparent"));
    EXPECT_EQ(clear.Row(32), "96.");

    // Far longer than what the system's gradients can count; only the part in view is computed.
    const Canvas part(kWidth, kHeight);
    DrawMarkup(part,
               "<table cellspacing=0 width=32767 height=32767 bgcolor=red bgendcolor=blue "
               "bgeffect=hgradient><tr><td></td></tr></table>");
    EXPECT_EQ(part.At(0, 63), RGB(255, 0, 0));
    ExpectNear(part.At(95, 0), RGB(255, 0, 0), "the beginning of a very long one");
}

}  // namespace
}  // namespace mvp::test
