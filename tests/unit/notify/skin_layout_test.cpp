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

TEST(SkinLayout, PlacesBandsAndControls) {
    for (const bool help : {true, false}) {
        SkinBands bands = BandsOfResourceSkin(250, 200);
        EXPECT_EQ(Of(bands.text), (Edges{40, 13, 245, 122}));
        EXPECT_EQ(Of(bands.link), (Edges{0, 122, 250, 137}));
        EXPECT_EQ(Of(bands.bottom), (Edges{0, 170, 250, 200}));

        // Without the help link the rest stands a line and a gap lower.
        const int down = help ? 0 : 20;
        const NoticeControls controls = PlaceControls(bands, help);
        EXPECT_EQ(Of(controls.message), (Edges{40, 13, 245, 107}));
        EXPECT_EQ(Of(controls.closeLink), (Edges{0, 107 + down, 250, 122 + down}));
        EXPECT_EQ(Of(controls.title), (Edges{0, 86 + down, 250, 101 + down}));
        EXPECT_EQ(Of(controls.helpLink), (Edges{0, 127 + down, 250, 142 + down}));
        // The bands stay where they went.
        EXPECT_EQ(Of(bands.link), Of(controls.helpLink));
        EXPECT_EQ(Of(PlacePassword(bands)), (Edges{40, 13, 245, 87}));
        EXPECT_EQ(Of(PlacePassword(bands)), (Edges{40, 13, 245, 72}));
    }
    SkinBands bands = BandsOfFileSkin(250, 200);
    EXPECT_EQ(Of(bands.text), (Edges{40, 13, 245, 122}));
    EXPECT_EQ(Of(bands.link), (Edges{0, 122, 250, 170}));
    EXPECT_EQ(Of(bands.bottom), (Edges{0, 170, 250, 200}));
    // The line below a band of another height is one line high all the same.
    EXPECT_EQ(Of(PlaceControls(bands, false).closeLink), (Edges{0, 160, 250, 175}));

    EXPECT_EQ(Of(PlaceProgressBar(250, 200)), (Edges{15, 66, 235, 81}));
}

TEST(SkinLayout, PlacesBullets) {
    constexpr SkinPoint kNone = {-1, -1};
    const auto places = [&](bool bLink, bool bHelp) {
        const SkinBullets bullets = PlaceBullets(200, bLink, bHelp);
        const SkinPoint link = bullets.link.value_or(kNone);
        const SkinPoint help = bullets.help.value_or(kNone);
        return Edges{link.nX, link.nY, help.nX, help.nY};
    };
    EXPECT_EQ(places(true, false), (Edges{20, 125, -1, -1}));
    EXPECT_EQ(places(true, true), (Edges{20, 105, 20, 125}));
    EXPECT_EQ(places(false, true), (Edges{-1, -1, 20, 125}));
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
