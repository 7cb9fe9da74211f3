#include "platform/pixel_scale.h"

#include <limits>

#include <gtest/gtest.h>

#include "platform/resolution.h"

namespace mvp {
namespace {

TEST(Resolution, ScalesToTheNearestPixel) {
    constexpr int kMost = std::numeric_limits<int>::max();
    const struct {
        int nDpi, nPixels, nScaled;
    } cases[] = {{96, 100, 100},      {96, -kMost, -kMost},     {120, 30, 38},   {120, -30, -38},
                 {144, 1, 2},         {144, -13, -20},          {192, 100, 200}, {288, 16, 48},
                 {192, kMost, kMost}, {288, -kMost, -kMost - 1}};
    for (const auto& [dpi, pixels, scaled] : cases) {
        EXPECT_EQ(PixelsAt(dpi, pixels), scaled) << pixels << " at " << dpi;
    }
    EXPECT_FALSE(TakesLargePicture(120));
    EXPECT_TRUE(TakesLargePicture(144));
}

using Words = std::vector<std::uint32_t>;

TEST(PixelScale, TakesTheMeanOfWhatAPixelCovers) {
    const Words picture = {0xFF0000F0, 0x00F01000, 0x00FF00F0, 0xFFF03000};
    const struct {
        PixelSize from, to;
        Words smooth, exact;
    } cases[] = {
        {{2, 2}, {2, 2}, picture, picture},
        {{2, 2}, {1, 1}, {0x80B81078}, {picture[3]}},
        {{2, 2}, {1, 2}, {0x80780878, 0x80F81878}, {picture[1], picture[3]}},
        {{4, 1}, {1, 1}, {0x80B81078}, {picture[2]}},
        {{2, 1},
         {3, 1},
         {picture[0], 0x80780878, picture[1]},
         {picture[0], picture[1], picture[1]}},
        {{1, 2},
         {1, 4},
         {picture[0], picture[0], picture[1], picture[1]},
         {picture[0], picture[0], picture[1], picture[1]}},
    };
    for (const auto& [from, to, smooth, exact] : cases) {
        EXPECT_EQ(ScalePixels(picture, from, to, Scaling::Smooth), smooth) << to.nWidth;
        EXPECT_EQ(ScalePixels(picture, from, to, Scaling::Exact), exact) << to.nWidth;
    }
}

}  // namespace
}  // namespace mvp
