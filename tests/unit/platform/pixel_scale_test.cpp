#include "platform/pixel_scale.h"

#include <limits>

#include <gtest/gtest.h>

#include "platform/resolution.h"

namespace mvp {
namespace {

TEST(Resolution, ScalesToTheNearestPixel) {
    constexpr int kMost = std::numeric_limits<int>::max();
    EXPECT_EQ(PixelsAt(120, 30), 38);
    EXPECT_EQ(PixelsAt(144, -13), -20);
    EXPECT_EQ(PixelsAt(192, kMost), kMost);
    EXPECT_EQ(PixelsAt(288, -kMost), -kMost - 1);
    EXPECT_TRUE(TakesLargePicture(144) && !TakesLargePicture(143));
}

using Words = std::vector<std::uint32_t>;

const Words kPicture = {0xFF0000F0, 0x00F01000, 0x00FF00F0, 0xFFF03000};

void ExpectScaled(PixelSize from, PixelSize to, const Words& smooth, const Words& exact) {
    EXPECT_EQ(ScalePixels(kPicture, from, to, Scaling::Smooth), smooth) << to.nWidth;
    EXPECT_EQ(ScalePixels(kPicture, from, to, Scaling::Exact), exact) << to.nWidth;
}

TEST(PixelScale, TakesTheMeanOfWhatAPixelCovers) {
    const Words& p = kPicture;
    ExpectScaled({2, 2}, {1, 1}, {0x80B81078}, {p[3]});
    ExpectScaled({2, 2}, {1, 2}, {0x80780878, 0x80F81878}, {p[1], p[3]});
    ExpectScaled({2, 1}, {3, 1}, {p[0], 0x80780878, p[1]}, {p[0], p[1], p[1]});
    ExpectScaled({1, 2}, {1, 4}, {p[0], p[0], p[1], p[1]}, {p[0], p[0], p[1], p[1]});
}

}  // namespace
}  // namespace mvp
