// Images from files, resources, handles and image lists, good and bad.
#include <windows.h>
#include <commctrl.h>

#include <cstdint>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/bitmap_file.h"
#include "support/bitmap_header.h"
#include "ui/richtext/canvas.h"

namespace mvp::test {
namespace {

// The pixels of a picture of three squares of 8 pixels: red, green, blue.
std::string StripPixels() {
    std::string pixels;
    for (std::size_t n = 0; n < std::size_t{8} * 24; ++n) {
        std::string pixel(3, '\0');
        pixel[2 - n % 24 / 8] = '\xFF';
        pixels += pixel;
    }
    return pixels;
}

std::string FirstRow(const std::string& strMarkup) {
    const Canvas canvas(32, 40, strMarkup);
    // The image stands on the baseline of its line: its rows are found by their content.
    return canvas.Ink().right != 0 ? canvas.Row(canvas.Ink().top) : "";
}

std::string HexOf(const void* handle) {
    char text[32];
    snprintf(text, sizeof text, "0x%llX", reinterpret_cast<unsigned long long>(handle));
    return text;
}

TEST(Images, ComeFromFiles) {
    const WrittenBitmap file({24, 8}, StripPixels());
    const std::string from = " file=\"" + file.Name() + "\">";
    const std::pair<std::string, const char*> kCases[] = {
        {"bmp", "8r 8g 8b 8."},
        {"bmp width=12 height=4", "4r 4g 4b 20."},
        {"bmp cx=12", "4r 4g 4b 20."},  // keeps its shape
        {"bmp mask=#00ff00", "8r 8. 8b 8."},
        {"bmp style=hidden", ""},
        {"ilst index=0", "8r 24."},
        {"ilst index=2", "8b 24."},
        {"ilst index=3", ""},
        {"ilst index=-1", ""},
        {"ilst index=2147483647", ""},
    };
    for (const auto& [tag, row] : kCases) {
        const std::string markup = std::string("<").append(tag).append(from);
        EXPECT_EQ(FirstRow(markup), row) << tag;
    }

    const Canvas disabled(32, 40, "<bmp style=disabled" + from);
    EXPECT_EQ(disabled.Ink().right, 24);
    EXPECT_NE(disabled.At(2, disabled.Ink().top), kRed);
}

// Pictures are bounded, not what they tile: the area of this one is larger than any picture.
TEST(Images, TileAnyArea) {
    const WrittenBitmap file({24, 8}, StripPixels());
    TestDrawer drawer("<table cellspacing=0 width=9000 height=2100 background=\"" + file.Name() +
                      "\"><tr><td></td></tr></table>");
    const RECT whole = {0, 0, 9000, 2100};
    for (const POINT corner : {POINT{0, 0}, POINT{2040, 2040}, POINT{8990, 9}}) {
        const Canvas canvas(20, 20);
        SetViewportOrgEx(canvas.Dc(), -corner.x, -corner.y, nullptr);
        drawer.Draw(canvas.Dc(), whole, whole);
        for (int x = 0; x < 20 && corner.x + x < 9000; ++x) {
            const COLORREF squares[] = {kRed, kGreen, kBlue};
            EXPECT_EQ(canvas.At(x, 19), squares[(corner.x + x) / 8 % 3]) << corner.x + x;
        }
    }
}

TEST(Images, ComeFromHandles) {
    std::uint32_t pixels[8 * 8];
    std::fill(std::begin(pixels), std::end(pixels), 0xFF);
    Bitmap bitmap(CreateBitmap(8, 8, 1, 32, pixels));
    const std::string markup = "<bmp handle=" + HexOf(bitmap.get()) + ">";
    EXPECT_EQ(FirstRow(markup), "8b 24.");

    const HIMAGELIST list = ImageList_Create(8, 8, ILC_COLOR24, 2, 0);
    ASSERT_EQ(ImageList_Add(list, bitmap.get(), nullptr), 0);
    TestDrawer drawer("<ilst handle=" + HexOf(list) + ">");
    EXPECT_EQ(Canvas(32, 40, drawer).CountOf(kBlue), 0) << "a list nobody has allowed";
    drawer.AllowImageList(list);
    EXPECT_EQ(Canvas(32, 40, drawer).CountOf(kBlue), 8 * 8);
    drawer.SetText("");
    ImageList_Destroy(list);

    bitmap.reset();
    EXPECT_EQ(FirstRow(markup), "") << "a handle that is one no more";
}

TEST(Images, ComeFromResources) {
    const Canvas icon(64, 64, "<icon idres=32512 iddll=user32.dll>");
    EXPECT_EQ(icon.Ink().right, GetSystemMetrics(SM_CXICON));
    const Canvas small(64, 64, "<icon cx=16 cy=16 idres=#32512 iddll=user32.dll>");
    EXPECT_LE(small.Ink().right, 16);
    EXPECT_GT(small.Ink().right, 8);
}

// Two pixels, red and blue, in every way a bitmap can hold them.
TEST(Images, AreReadFromEveryKindOfBitmap) {
    using namespace std::string_literals;
    const std::string palette = "\0\0\xFF\0\xFF\0\0\0"s;
    // Masks or colours stand before the pixels.
    const std::pair<BitmapHeaders, std::string> kKinds[] = {
        {{2, 1, 1, BI_RGB, 2, 62}, palette + "\x40\0\0\0"s},
        {{2, 1, 4, BI_RGB, 2, 62}, palette + "\x01\0\0\0"s},
        {{2, 1, 8, BI_RGB, 2, 62}, palette + "\0\x01\0\0"s},
        {{2, 1, 8, BI_RLE8, 2, 62}, palette + "\1\0\1\1\0\1"s},
        {{2, 1, 16}, "\0\x7C\x1F\0"s},
        {{2, 1, 16, BI_BITFIELDS, 0, 66}, "\0\xF8\0\0\xE0\x07\0\0\x1F\0\0\0\0\xF8\x1F\0"s},
        {{2, 1, 24}, "\0\0\xFF\xFF\0\0\0\0"s},
        {{2, 1, 32}, "\0\0\xFF\0\xFF\0\0\0"s},
    };
    for (const auto& [headers, rest] : kKinds) {
        SCOPED_TRACE(std::to_string(headers.nBits) + " bits");
        const WrittenBitmap file(headers, rest);
        const Bitmap loaded = LoadBitmapFile(file.Name().c_str());
        const auto picture = richtext::Picture::FromBitmap(loaded.get(), richtext::kNoColour);
        ASSERT_EQ(picture.Pixels().size(), 2u);
        EXPECT_EQ(picture.Pixels()[0], 0xFFFF0000u);
        EXPECT_EQ(picture.Pixels()[1], 0xFF0000FFu);
    }
}

TEST(Images, WrongOnesAreNotThere) {
    const auto expectNone = [](const std::string& strFrom) {
        for (const char* tag : {"<bmp width=8 height=8 ", "<icon cx=8 cy=8 ", "<ilst cx=8 cy=8 "}) {
            EXPECT_EQ(FirstRow(tag + strFrom + ">"), "") << tag << strFrom;
        }
    };
    const WrittenBitmap lie({8, 4000}, StripPixels());  // higher than the file has rows
    expectNone("file=\"" + lie.Name() + '"');
    for (const char* from :
         {"file=missing.bmp", R"(file=\\machine\share\a.bmp)", "file=//machine/share/a.bmp",
          R"(file=\\.\COM1)", "file=NUL", "file=C:\\", "idres=99 iddll=missing.dll",
          R"(idres=99 iddll=\\machine\a.dll)", "idres=0", "idres=99999", "idres=nothing",
          "handle=1", "handle=0xFFFFFFFF", "handle=0xFFFFFFFFFFFFFFFF",
          "handle=99999999999999999999", "handle=text", "handle=-1"}) {
        expectNone(from);
    }
}

}  // namespace
}  // namespace mvp::test
