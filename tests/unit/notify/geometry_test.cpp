// The pure geometry of notices: the parts of a skin, the chunks of the progress bar, and the runs
// of a picture's visible pixels.
#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mvpingui/skin_layout.h"
#include "notify/progress_bar_geometry.h"
#include "notify/transparent_runs.h"

namespace mvp {
namespace {

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();

struct Case {
    ProgressContent content;
    int nChunkWidth;
    std::int32_t nPosition;
    std::uint32_t nBlocks;
    std::string shown;
};

// "102-110 92-100": the visible chunks from the head backwards; "left" when the train has left.
void ExpectShown(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        const ProgressTrain train =
            PlaceProgressTrain(c.content, c.nChunkWidth, c.nPosition, c.nBlocks);
        std::string text;
        for (const ProgressChunk& chunk : train.Chunks()) {
            text += std::to_string(chunk.nLeft) + '-' + std::to_string(chunk.nRight) + ' ';
        }
        EXPECT_EQ(text + (train.HasLeft() ? "left" : ""), c.shown)
            << "position " << c.nPosition << ", content " << c.content.nLeft << '-'
            << c.content.nRight;
    }
}

TEST(ProgressTrain, RunsThroughTheBar) {
    // 200 pixels and chunks of 8 make 25 places: the head takes a step of 10 every 4 ticks.
    ExpectShown({
        {{2, 202}, 8, 0, 5, "2-10 "},
        {{2, 202}, 8, 4, 5, "2-10 "},
        {{2, 202}, 8, 5, 5, "12-20 2-10 "},
        {{2, 202}, 8, 17, 5, "42-50 32-40 22-30 12-20 2-10 "},
        {{2, 202}, 8, 41, 5, "102-110 92-100 82-90 72-80 62-70 "},
        {{2, 202}, 8, 41, 1, "102-110 "},
        // The head has left, then the last chunk stands at the edge, and then it is beyond.
        {{2, 202}, 8, 93, 5, "192-200 "},
        {{2, 202}, 8, 97, 5, ""},
        {{2, 202}, 8, 100, 5, ""},
        {{2, 202}, 8, 101, 5, "left"},
        // Chunks end at the right edge.
        {{2, 206}, 8, 81, 5, "202-206 192-200 182-190 172-180 162-170 "},
        // A hundred places or more: before the first tick the head is still outside.
        {{0, 300}, 2, 0, 5, ""},
        {{0, 300}, 2, 2, 5, "4-6 0-2 "},
        {{-100, 100}, 8, 33, 2, "-20--12 -30--22 "},
    });
}

TEST(ProgressTrain, TakesAnyNumbers) {
    ExpectShown({
        {{0, 0}, 8, 50, 5, ""},
        {{10, -10}, 8, 50, 5, ""},
        {{0, 100}, 0, 50, 5, ""},
        {{0, 100}, -1, 50, 5, ""},
        {{0, 100}, 8, 50, 0, ""},
        {{2, 202}, 8, -1, 5, "2-10 "},
        {{2, 202}, 8, kLeast, 5, "2-10 "},
        {{0, 200}, 10, kMost, 5, "left"},
        // A chunk wider than the bar fills it for ever.
        {{0, 50}, 60, 1000, 5, "0-50 "},
        {{kLeast, kMost}, 1, kMost, 20, "left"},
        {{2, 202, 4}, 8, 17, 5, "50-58 38-46 26-34 14-22 2-10 "},
        {{kLeast, kMost}, kMost, 3, 20, "-2147483648--1 "},
    });
    EXPECT_EQ(PlaceProgressTrain({0, 10'000}, 8, 50, 0xFFFFFFFF).Chunks().size(),
              kProgressMaxBlocks);
    EXPECT_EQ(ClassicChunkWidth(11), 8);
    EXPECT_EQ(ClassicChunkWidth(1), 0);
    EXPECT_EQ(ClassicChunkWidth(kMost), 1'610'612'735);
}

using Edges = std::array<int, 4>;

Edges Of(const SkinRect& rect) {
    return {rect.nLeft, rect.nTop, rect.nRight, rect.nBottom};
}

// What stands where on a skin from the resources, the popup's own tests hold.
TEST(SkinLayout, PlacesBandsOfASkinFromAFile) {
    SkinBands bands = BandsOfFileSkin(250, 200, 96);
    EXPECT_EQ(Of(bands.text), (Edges{40, 13, 245, 122}));
    EXPECT_EQ(Of(bands.link), (Edges{0, 122, 250, 170}));
    EXPECT_EQ(Of(bands.bottom), (Edges{0, 170, 250, 200}));
    // The line below a band of another height is one line high all the same.
    EXPECT_EQ(Of(PlaceControls(bands, false).closeLink), (Edges{0, 160, 250, 175}));
}

std::vector<int> EverythingAt(int nDpi) {
    const int width = 340 * nDpi / 96;
    const int height = 230 * nDpi / 96;
    SkinBands bands = BandsOfResourceSkin(width, height, nDpi);
    const SkinBullets bullets = PlaceBullets(height, true, true, nDpi);
    const NoticeControls places = PlaceControls(bands, true);
    std::vector<int> all = {bullets.link->nX, bullets.link->nY, bullets.help->nY};
    for (const SkinRect& rect :
         {places.message, places.title, places.closeLink, places.helpLink, bands.bottom,
          PlacePassword(bands), PlaceProgressBar(width, height, nDpi)}) {
        std::ranges::copy(Of(rect), std::back_inserter(all));
    }
    return all;
}

TEST(SkinLayout, GrowsWithTheResolution) {
    const std::vector<int> plain = EverythingAt(96);
    for (const int dpi : {120, 144, 192, 288}) {
        for (std::size_t i = 0; i < plain.size(); ++i) {
            // Half a pixel for each of the distances that a number is the sum of.
            EXPECT_NEAR(EverythingAt(dpi)[i], plain[i] * dpi / 96.0, 3) << i << " at " << dpi;
        }
    }
}

TEST(SkinLayout, StopsAtTheLimitsOfANumber) {
    for (const int size : {kLeast, kLeast + 80, kMost}) {
        for (SkinBands bands :
             {BandsOfResourceSkin(size, size, 96), BandsOfFileSkin(size, size, 288)}) {
            for (int i = 0; i < 10; ++i) {
                PlaceControls(bands, i % 2 == 0);
                PlacePassword(bands);
            }
        }
        PlaceProgressBar(size, size, 144);
        PlaceBullets(size, true, true, 144);
    }
    EXPECT_EQ(Of(BandsOfResourceSkin(kLeast, kLeast, 96).link),
              (Edges{0, kLeast, kLeast, kLeast + 15}));
    SkinBands bands;
    bands.link.nBottom = kMost;
    EXPECT_EQ(PlaceControls(bands, true).helpLink.nBottom, kMost);
}

constexpr PixelColour kTransparent = {10, 20, 30};

std::vector<std::uint8_t> PixelsOf(const std::vector<std::string>& rows) {
    std::vector<std::uint8_t> pixels;
    for (const std::string& row : rows) {
        for (const char c : row) {
            pixels.insert(pixels.end(), {30, 20, static_cast<std::uint8_t>(c == '.' ? 10 : 11)});
        }
    }
    return pixels;
}

TEST(RunReader, ReadsNothingBeyondThePixels) {
    const std::vector<std::uint8_t> pixels = PixelsOf({"rrrr"});
    EXPECT_TRUE(RunReader(pixels, 4, 2, kTransparent).Next().empty());
    EXPECT_TRUE(RunReader(pixels, 0xFFFF, 0xFFFF, kTransparent).Next().empty());
    EXPECT_TRUE(RunReader(pixels, 0, 0xFFFF, kTransparent).Next().empty());
    EXPECT_TRUE(RunReader({}, 4, 0, kTransparent).Next().empty());
    EXPECT_EQ(RunReader(pixels, 4, 1, kTransparent).Next().size(), 1u);
}

// What the runs are together, the region's own test holds.
TEST(RunReader, TakesEqualRowsTogetherAndALargePictureInPortions) {
    std::vector<std::string> rows(400, "r.r.");
    for (std::size_t i = 2; i < rows.size(); i += 4) {  // each twice; of two runs one differs
        rows[i] = rows[i + 1] = "r.rr";
    }
    const std::vector<std::uint8_t> pixels = PixelsOf(rows);
    RunReader reader(pixels, 4, 400, kTransparent);
    std::size_t count = 0;
    for (auto runs = reader.Next(); !runs.empty(); runs = reader.Next()) {
        EXPECT_LE(runs.size(), RunReader::kRunsAtATime + 1);
        count += runs.size();
    }
    EXPECT_EQ(count, 400u);
}

}  // namespace
}  // namespace mvp
