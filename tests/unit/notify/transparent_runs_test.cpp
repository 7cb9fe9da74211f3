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
    std::vector<std::string> rows;
    for (int i = 0; i < 400; ++i) {  // each twice; of several runs one differs
        rows.emplace_back(i / 2 % 2 == 0 ? "r.r." : "r.rr");
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
