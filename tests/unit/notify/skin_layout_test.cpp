#include "mvpingui/skin_layout.h"

#include <array>
#include <limits>

#include <gtest/gtest.h>

namespace mvp {
namespace {

using Edges = std::array<int, 4>;

Edges Of(const SkinRect& rect) {
    return {rect.nLeft, rect.nTop, rect.nRight, rect.nBottom};
}

// What stands where on a skin from the resources, the popup's own tests hold.
TEST(SkinLayout, PlacesBandsOfASkinFromAFile) {
    SkinBands bands = BandsOfFileSkin(250, 200);
    EXPECT_EQ(Of(bands.text), (Edges{40, 13, 245, 122}));
    EXPECT_EQ(Of(bands.link), (Edges{0, 122, 250, 170}));
    EXPECT_EQ(Of(bands.bottom), (Edges{0, 170, 250, 200}));
    // The line below a band of another height is one line high all the same.
    EXPECT_EQ(Of(PlaceControls(bands, false).closeLink), (Edges{0, 160, 250, 175}));
}

TEST(SkinLayout, StopsAtTheLimitsOfANumber) {
    constexpr int kLeast = std::numeric_limits<int>::min();
    constexpr int kMost = std::numeric_limits<int>::max();
    for (const int size : {kLeast, kLeast + 80, kMost}) {
        for (SkinBands bands : {BandsOfResourceSkin(size, size), BandsOfFileSkin(size, size)}) {
            for (int i = 0; i < 10; ++i) {
                PlaceControls(bands, i % 2 == 0);
                PlacePassword(bands);
            }
        }
        PlaceProgressBar(size, size);
        PlaceBullets(size, true, true);
    }
    EXPECT_EQ(Of(BandsOfResourceSkin(kLeast, kLeast).link),
              (Edges{0, kLeast, kLeast, kLeast + 15}));
    SkinBands bands;
    bands.link.nBottom = kMost;
    EXPECT_EQ(PlaceControls(bands, true).helpLink.nBottom, kMost);
}

}  // namespace
}  // namespace mvp
