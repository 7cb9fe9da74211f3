// Lengths on a real device: its dots per inch and its fonts decide what a unit comes to.
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/patched_imports.h"
#include "ui/richtext/canvas.h"

namespace mvp::test {
namespace {

constexpr int kFontHeight = 30;

int HeightOfX() {
    const Canvas canvas(60, 60);
    const Font font(CreateFontA(-kFontHeight, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                                DEFAULT_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0, "Tahoma"));
    const DcSelection selection(canvas.Dc(), font.get());
    SetBkMode(canvas.Dc(), TRANSPARENT);
    ExtTextOutA(canvas.Dc(), 5, 5, 0, nullptr, "x", 1, nullptr);
    return static_cast<int>(canvas.Ink().bottom - canvas.Ink().top);
}

void ExpectUnits(int nDots) {
    const std::pair<const char*, int> kCases[] = {
        {"3em", 3 * kFontHeight},
        {"5ex", 5 * HeightOfX()},
        {"2in", 2 * nDots},
        {"31pt", 31 * nDots / 72},
    };
    for (const auto& [length, pixels] : kCases) {
        TestDrawer drawer(std::string("<font size=30px><hr width=") + length + "></font>");
        drawer.Measure(2000);
        EXPECT_EQ(drawer.RichText().Boxes().aFragments.at(0).nWidth, pixels) << length;
    }
}

int WINAPI Tell144Dots(HDC, int) {
    return 144;
}

TEST(DeviceUnits, AreThoseOfTheScreen) {
    ExpectUnits(GetDeviceCaps(WindowDc(nullptr).get(), LOGPIXELSY));
    const PatchedImports dense(nullptr, {{"GetDeviceCaps", Address(&Tell144Dots)}});
    ExpectUnits(144);
}

}  // namespace
}  // namespace mvp::test
