#include "notify/transparent_runs.h"

#include <string>

#include <gtest/gtest.h>

namespace mvp {
namespace {

constexpr PixelColour kTransparent = {10, 20, 30};

std::vector<std::uint8_t> PixelsOf(const std::vector<std::string>& rows) {
    std::vector<std::uint8_t> pixels;
    for (const std::string& row : rows) {
        for (const char c : row) {
            // Every visible pixel shares two of the colour's bytes.
            const std::uint8_t odd = c == '.' ? 0 : 1;
            pixels.push_back(static_cast<std::uint8_t>(30 + (c == 'b' ? odd : 0)));
            pixels.push_back(static_cast<std::uint8_t>(20 + (c == 'g' ? odd : 0)));
            pixels.push_back(static_cast<std::uint8_t>(10 + (c == 'r' ? odd : 0)));
        }
    }
    return pixels;
}

std::string RunsOf(const std::vector<std::string>& rows) {
    const std::vector<std::uint8_t> pixels = PixelsOf(rows);
    RunReader reader(pixels, static_cast<std::uint16_t>(rows.front().size()),
                     static_cast<std::uint16_t>(rows.size()), kTransparent);
    std::string text;
    for (const RunRect& run : reader.Next()) {
        text += std::to_string(run.nLeft) + ',' + std::to_string(run.nTop) + '-' +
                std::to_string(run.nRight) + ',' + std::to_string(run.nBottom) + ' ';
    }
    EXPECT_TRUE(reader.Next().empty());
    return text;
}

TEST(RunReader, TakesRunsAndEqualRowsTogether) {
    EXPECT_EQ(RunsOf({"...."}), "");
    EXPECT_EQ(RunsOf({"rgb."}), "0,0-3,1 ");
    EXPECT_EQ(RunsOf({"r..b", ".gg."}), "0,0-1,1 3,0-4,1 1,1-3,2 ");
    EXPECT_EQ(RunsOf({"rr..", "gb..", "....", "rr.."}), "0,0-2,2 0,3-2,4 ");
    // One of several runs differs: the whole row is another.
    EXPECT_EQ(RunsOf({"r.r.", "r.rr"}), "0,0-1,1 2,0-3,1 0,1-1,2 2,1-4,2 ");
}

TEST(RunReader, ReadsNothingBeyondThePixels) {
    const std::vector<std::uint8_t> pixels = PixelsOf({"rrrr"});
    EXPECT_TRUE(RunReader(pixels, 4, 2, kTransparent).Next().empty());
    EXPECT_TRUE(RunReader(pixels, 0xFFFF, 0xFFFF, kTransparent).Next().empty());
    EXPECT_TRUE(RunReader(pixels, 0, 0xFFFF, kTransparent).Next().empty());
    EXPECT_TRUE(RunReader({}, 4, 0, kTransparent).Next().empty());
    EXPECT_EQ(RunReader(pixels, 4, 1, kTransparent).Next().size(), 1u);
}

// What the portions are together, the region's own test holds.
TEST(RunReader, GivesALargePictureInPortions) {
    std::vector<std::string> rows(300, "r.r.");
    for (std::size_t i = 0; i < rows.size(); i += 2) {
        rows[i] = ".rr.";
    }
    const std::vector<std::uint8_t> pixels = PixelsOf(rows);
    RunReader reader(pixels, 4, 300, kTransparent);
    for (int i = 0; i < 10; ++i) {
        EXPECT_NEAR(static_cast<double>(reader.Next().size()), RunReader::kRunsAtATime, 1) << i;
    }
}

}  // namespace
}  // namespace mvp
