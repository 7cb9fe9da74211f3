// What the shape of a notice costs: a skin of 400 x 300 pixels.
//
// Baseline "pixel by pixel": a region of one pixel for each transparent one, combined with the
// rectangle. Both read the bitmap and end with the same region, which is checked.
#include "notify/popup_region.h"

#include <windows.h>

#include <cstdlib>
#include <random>

#include "bench.h"
#include "platform/bitmap_pixels.h"

namespace {

constexpr int kWidth = 400;
constexpr int kHeight = 300;
constexpr BYTE kNone = 255;  // of each of the three bytes

// Whether the skin has a hole there.
using Shape = bool (*)(int x, int y);

// A plate with round corners.
bool IsOutsideThePlate(int x, int y) {
    constexpr int kRadius = 24;
    const int dx =
        x < kRadius ? kRadius - x : (x >= kWidth - kRadius ? x - kWidth + kRadius + 1 : 0);
    const int dy =
        y < kRadius ? kRadius - y : (y >= kHeight - kRadius ? y - kHeight + kRadius + 1 : 0);
    return dx * dx + dy * dy > kRadius * kRadius;
}

// A balloon: an ellipse; a fifth of the skin lies outside.
bool IsOutsideTheBalloon(int x, int y) {
    const double dx = (x + 0.5) / kWidth * 2 - 1;
    const double dy = (y + 0.5) / kHeight * 2 - 1;
    return dx * dx + dy * dy > 1;
}

// Holes of single pixels all over it.
bool IsAHole(int x, int y) {
    return x % 8 == 3 && y % 8 == 3;
}

mvp::Bitmap SkinOf(Shape isTransparent) {
    const BITMAPINFO info = mvp::TopDownPixels(kWidth, kHeight, 32);
    void* bits = nullptr;
    mvp::Bitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    auto* pixel = static_cast<DWORD*>(bits);
    std::mt19937 random(1);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            *pixel++ = isTransparent(x, y) ? 0xFFFFFF : random() % 0xFFFFFF;
        }
    }
    return bitmap;
}

mvp::Region PixelByPixel(HBITMAP hBitmap) {
    WORD width = 0;
    WORD height = 0;
    const mvp::Pixels pixels = mvp::Get24BitPixels(hBitmap, width, height);
    mvp::Region region(CreateRectRgn(0, 0, width, height));
    const BYTE* pixel = pixels.get();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, pixel += 3) {
            if (pixel[0] == kNone && pixel[1] == kNone && pixel[2] == kNone) {
                const mvp::Region one(CreateRectRgn(x, y, x + 1, y + 1));
                CombineRgn(region.get(), region.get(), one.get(), RGN_XOR);
            }
        }
    }
    return region;
}

mvp::bench::Comparison Measure(const char* pszWhat, Shape isTransparent) {
    const mvp::Bitmap skin = SkinOf(isTransparent);
    const auto ours = [&] { return mvp::GenerateRegion(skin.get(), kNone, kNone, kNone); };
    const auto stated = [&] { return PixelByPixel(skin.get()); };
    if (!EqualRgn(ours().get(), stated().get())) {
        std::puts("the regions differ");
        std::exit(1);
    }
    constexpr int kSlowRounds = 5;
    auto result = mvp::bench::Compare(1, ours, stated, kSlowRounds);
    mvp::bench::Print(pszWhat, "pixel by pixel", result);
    return result;
}

}  // namespace

int main() {
    Measure("region 400 x 300, round corners", IsOutsideThePlate);
    Measure("region 400 x 300, single holes", IsAHole);
    // Where much is cut out, which is what a region is for.
    constexpr double kAim = 0.01;
    return Measure("region 400 x 300, balloon", IsOutsideTheBalloon).Ratio() <= kAim ? EXIT_SUCCESS
                                                                                     : EXIT_FAILURE;
}
