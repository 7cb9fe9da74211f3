#include "notify/popup_region.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace mvp {
namespace {

// 0xRRGGBB of eight that differ in a single bit of a byte, so that the transparent one is met
// often.
std::uint32_t SomeColour(std::mt19937& random) {
    return 0xFEFEFE + (random() & 0x010101);
}

TEST(PopupRegion, IsThatOfThePixelsOneByOne) {
    std::mt19937 random(12);
    for (int i = 0; i < 1000; ++i) {
        const int width = 4 + static_cast<int>(random() % 33);
        const int height = 1 + static_cast<int>(random() % 24);
        const std::uint32_t visible = random() % 9;  // of 8 pixels
        const std::uint32_t none = SomeColour(random);
        std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width * height), none);
        for (std::uint32_t& pixel : pixels) {
            pixel = random() % 8 < visible ? SomeColour(random) : none;
        }
        const Bitmap bitmap(CreateBitmap(width, height, 1, 32, pixels.data()));
        const Region region = GenerateRegion(bitmap.get(), static_cast<BYTE>(none >> 16),
                                             static_cast<BYTE>(none >> 8), static_cast<BYTE>(none));
        int wrong = 0;
        for (int n = 0; n < width * height; ++n) {
            const int x = n % width;
            const bool inside =
                x < width - width % 4 && pixels[static_cast<std::size_t>(n)] != none;
            wrong += (PtInRegion(region.get(), x, n / width) != FALSE) != inside;
        }
        RECT box{};
        GetRgnBox(region.get(), &box);
        ASSERT_TRUE(region && wrong == 0 && box.right <= width && box.bottom <= height)
            << i << ": " << width << " x " << height << ", " << wrong;
    }
}

TEST(PopupRegion, TakesBitmapsOfAnySize) {
    WORD width = 0;
    WORD height = 0;
    EXPECT_EQ(Get24BitPixels(nullptr, width, height), nullptr);
    for (const int side : {0, 1, 3}) {
        const Bitmap narrow(CreateBitmap(side, side, 1, 32, nullptr));
        EXPECT_EQ(Get24BitPixels(narrow.get(), width, height), nullptr) << side;
        EXPECT_FALSE(GenerateRegion(narrow.get(), 0, 0, 0)) << side;
    }
    // Every second column of 5000, in black and white; the last row is black.
    std::vector<WORD> rows(3 * 313, 0xAAAA);
    std::fill(rows.end() - 313, rows.end(), WORD{0});
    const Bitmap wide(CreateBitmap(5000, 3, 1, 1, rows.data()));
    const Region columns = GenerateRegion(wide.get(), 0, 0, 0);
    EXPECT_TRUE(PtInRegion(columns.get(), 0, 0) && PtInRegion(columns.get(), 4998, 1));
    EXPECT_FALSE(PtInRegion(columns.get(), 4999, 1));
    RECT box{};
    GetRgnBox(columns.get(), &box);
    EXPECT_TRUE(box.right == 4999 && box.bottom == 2);
}

}  // namespace
}  // namespace mvp
