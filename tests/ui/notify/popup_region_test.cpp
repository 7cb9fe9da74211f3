#include "notify/popup_region.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "platform/bitmap_pixels.h"

namespace mvp {
namespace {

// Of eight that differ in a single bit of a byte, so that the transparent one is met often.
COLORREF SomeColour(std::mt19937& random) {
    const auto byte = [&] { return static_cast<BYTE>(random() % 2 == 0 ? 255 : 254); };
    return RGB(byte(), byte(), byte());
}

// The stated region, pixel by pixel.
Region PixelByPixel(const std::vector<COLORREF>& pixels, int width, int height, COLORREF none) {
    Region region(CreateRectRgn(0, 0, width - width % 4, height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width - width % 4; ++x) {
            if (pixels[static_cast<std::size_t>(y * width + x)] == none) {
                const Region pixel(CreateRectRgn(x, y, x + 1, y + 1));
                CombineRgn(region.get(), region.get(), pixel.get(), RGN_XOR);
            }
        }
    }
    return region;
}

Bitmap MakePicture(const std::vector<COLORREF>& pixels, int width, int height) {
    BITMAPINFO info = TopDownPixels(width, height, 32);
    void* bits = nullptr;
    Bitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const COLORREF c = pixels[i];
        static_cast<std::uint32_t*>(bits)[i] =
            RGB(GetBValue(c), GetGValue(c), GetRValue(c));  // as it lies in memory
    }
    return bitmap;
}

TEST(PopupRegion, IsThatOfThePixelsOneByOne) {
    std::mt19937 random(12);
    for (int i = 0; i < 1000; ++i) {
        const int width = 4 + static_cast<int>(random() % 33);
        const int height = 1 + static_cast<int>(random() % 24);
        const std::uint32_t visible = random() % 9;  // of 8 pixels
        const COLORREF none = SomeColour(random);
        std::vector<COLORREF> pixels(static_cast<std::size_t>(width * height), none);
        for (COLORREF& pixel : pixels) {
            if (random() % 8 < visible) {
                pixel = SomeColour(random);
            }
        }
        const Bitmap bitmap = MakePicture(pixels, width, height);
        const Region region =
            GenerateRegion(bitmap.get(), GetRValue(none), GetGValue(none), GetBValue(none));
        const Region expected = PixelByPixel(pixels, width, height, none);
        ASSERT_TRUE(region && EqualRgn(region.get(), expected.get()))
            << i << ": " << width << " x " << height;
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
