// Images from files, resources, handles and image lists, good and bad.
#include <windows.h>
#include <commctrl.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "canvas.h"
#include "platform/bitmap_file.h"
#include "support/bitmap_header.h"

namespace mvp::test {
namespace {

std::string TemporaryFile(const char* pszName) {
    char szFolder[MAX_PATH] = "";
    GetTempPathA(MAX_PATH, szFolder);
    return std::string(szFolder) + pszName;
}

// A 24-bit bitmap file, `change` may spoil its header.
class BitmapFile {
public:
    BitmapFile(const char* pszName, int nWidth, int nHeight,
               const std::function<COLORREF(int, int)>& colour,
               const std::function<void(BITMAPINFOHEADER&)>& change = nullptr,
               DWORD dwOffset = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER))
        : m_strFile(TemporaryFile(pszName)) {
        BITMAPFILEHEADER file{};
        BITMAPINFOHEADER info = TrueColorHeader(nWidth, nHeight);
        if (change)
            change(info);
        file.bfType = 0x4D42;
        file.bfOffBits = dwOffset;
        std::ofstream stream(m_strFile, std::ios::binary);
        stream.write(reinterpret_cast<const char*>(&file), sizeof file);
        stream.write(reinterpret_cast<const char*>(&info), sizeof info);
        for (int y = nHeight - 1; y >= 0; --y) {
            std::string strRow;
            for (int x = 0; x < nWidth; ++x) {
                const COLORREF c = colour(x, y);
                strRow += static_cast<char>(GetBValue(c));
                strRow += static_cast<char>(GetGValue(c));
                strRow += static_cast<char>(GetRValue(c));
            }
            strRow.resize((strRow.size() + 3) & ~std::size_t{3});
            stream.write(strRow.data(), static_cast<std::streamsize>(strRow.size()));
        }
    }
    BitmapFile(const BitmapFile&) = delete;
    BitmapFile& operator=(const BitmapFile&) = delete;
    ~BitmapFile() { DeleteFileA(m_strFile.c_str()); }

    const std::string& Name() const { return m_strFile; }

private:
    std::string m_strFile;
};

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kGreen = RGB(0, 255, 0);
constexpr COLORREF kBlue = RGB(0, 0, 255);

// Squares of 8 pixels: red, green, blue.
COLORREF Strip(int x, int) {
    return x < 8 ? kRed : x < 16 ? kGreen : kBlue;
}

std::string FirstRow(const std::string& strMarkup, int nWidth = 32) {
    const Canvas canvas(nWidth, 40);
    DrawMarkup(canvas, strMarkup);
    // The image stands on the baseline of its line: its rows are found by their content.
    for (int y = 0; y < 40; ++y) {
        if (canvas.Row(y) != std::to_string(nWidth) + ".")
            return canvas.Row(y);
    }
    return "";
}

std::string Hex(const void* handle) {
    char szText[32];
    wsprintfA(szText, "0x%08lX", static_cast<unsigned long>(reinterpret_cast<UINT_PTR>(handle)));
    return szText;
}

TEST(Images, ComeFromFiles) {
    const BitmapFile file("richtext_strip.bmp", 24, 8, Strip);
    const std::string strFile = "file=\"" + file.Name() + "\"";
    EXPECT_EQ(FirstRow("<bmp " + strFile + ">"), "8r 8g 8b 8.");
    EXPECT_EQ(FirstRow("<bmp width=12 height=4 " + strFile + ">"), "4r 4g 4b 20.");
    EXPECT_EQ(FirstRow("<bmp cx=12 " + strFile + ">"), "4r 4g 4b 20.") << "keeps its shape";
    EXPECT_EQ(FirstRow("<bmp mask=#00ff00 " + strFile + ">"), "8r 8. 8b 8.");
    EXPECT_EQ(FirstRow("<bmp style=hidden " + strFile + ">"), "");
    EXPECT_EQ(FirstRow("<ilst index=0 " + strFile + ">"), "8r 24.");
    EXPECT_EQ(FirstRow("<ilst index=2 " + strFile + ">"), "8b 24.");
    for (const char* pszBeyond : {"3", "-1", "2147483647"})
        EXPECT_EQ(FirstRow("<ilst index=" + std::string(pszBeyond) + " " + strFile + ">"), "");

    const Canvas disabled(32, 40);
    DrawMarkup(disabled, "<bmp style=disabled " + strFile + ">");
    const RECT ink = disabled.Ink();
    EXPECT_EQ(ink.right, 24);
    EXPECT_NE(disabled.At(2, ink.top), kRed);

    const Canvas tiled(20, 20);
    DrawMarkup(tiled, "<table cellspacing=0 width=20 height=20 background=\"" + file.Name() +
                          "\"><tr><td></td></tr></table>");
    EXPECT_EQ(tiled.Row(0), "8r 8g 4b");
    EXPECT_EQ(tiled.Row(19), "8r 8g 4b");
}

// Pictures are bounded, not what they tile: the area of this one is larger than any picture.
TEST(Images, TileAnyArea) {
    const BitmapFile file("richtext_tile.bmp", 24, 8, Strip);
    CHtmlDrawer drawer;
    UseTestFont(drawer);
    drawer.SetText("<table cellspacing=0 width=9000 height=2100 background=\"" + file.Name() +
                   "\"><tr><td></td></tr></table>");
    const RECT whole = {0, 0, 9000, 2100};
    for (const POINT corner : {POINT{2040, 2040}, POINT{8990, 9}}) {
        const Canvas canvas(20, 20);
        SetViewportOrgEx(canvas.Dc(), -corner.x, -corner.y, nullptr);
        drawer.Draw(canvas.Dc(), whole, whole);
        for (int x = 0; x < 20 && corner.x + x < 9000; ++x)
            EXPECT_EQ(canvas.At(x, 9), Strip((corner.x + x) % 24, 0)) << corner.x + x;
    }
}

TEST(Images, ComeFromHandles) {
    const WindowDc screen(nullptr);
    Bitmap bitmap(CreateCompatibleBitmap(screen.get(), 8, 8));
    {
        const MemoryDc dc(CreateCompatibleDC(screen.get()));
        const DcSelection selection(dc.get(), bitmap.get());
        const RECT all = {0, 0, 8, 8};
        const Brush brush(CreateSolidBrush(kBlue));
        FillRect(dc.get(), &all, brush.get());
    }
    const std::string strMarkup = "<bmp handle=" + Hex(bitmap.get()) + ">";
    EXPECT_EQ(FirstRow(strMarkup), "8b 24.");

    const HIMAGELIST hList = ImageList_Create(8, 8, ILC_COLOR24, 2, 0);
    ASSERT_NE(hList, nullptr);
    ASSERT_EQ(ImageList_Add(hList, bitmap.get(), nullptr), 0);
    CHtmlDrawer drawer;
    UseTestFont(drawer);
    char szMarkup[64];
    wsprintfA(szMarkup, "<ilst handle=0x%08lX%08lX>",
              static_cast<unsigned long>(reinterpret_cast<UINT_PTR>(hList) >> 32),
              static_cast<unsigned long>(reinterpret_cast<UINT_PTR>(hList)));
    const Canvas canvas(32, 40);
    drawer.SetText(szMarkup);
    drawer.Draw(canvas.Dc(), canvas.Area(), canvas.Area());
    EXPECT_EQ(canvas.Ink().right, 0) << "a list nobody has allowed";
    drawer.AllowImageList(hList);
    drawer.Draw(canvas.Dc(), canvas.Area(), canvas.Area());
    EXPECT_EQ(canvas.Ink().right, 8);
    EXPECT_EQ(canvas.At(4, canvas.Ink().top), kBlue);
    drawer.SetText("");
    ImageList_Destroy(hList);

    bitmap.reset();
    EXPECT_EQ(FirstRow(strMarkup), "") << "a handle that is one no more";
}

TEST(Images, ComeFromResources) {
    const Canvas canvas(64, 64);
    DrawMarkup(canvas, "<icon idres=32512 iddll=user32.dll>");
    EXPECT_EQ(canvas.Ink().right, GetSystemMetrics(SM_CXICON));
    const Canvas small(64, 64);
    DrawMarkup(small, "<icon cx=16 cy=16 idres=#32512 iddll=user32.dll>");
    EXPECT_LE(small.Ink().right, 16);
    EXPECT_GT(small.Ink().right, 8);
}

// Two pixels, red and blue, in every way a bitmap can hold them.
TEST(Images, AreReadFromEveryKindOfBitmap) {
    const std::string strPalette("\0\0\xFF\0\xFF\0\0\0", 8);
    const struct {
        const char* pszKind;
        WORD nBits;
        DWORD dwPacking;
        DWORD dwColours;
        std::string strRest;  // masks or colours, then the pixels
    } kKinds[] = {
        {"1 bit", 1, BI_RGB, 2, strPalette + std::string("\x40\0\0\0", 4)},
        {"4 bits", 4, BI_RGB, 2, strPalette + std::string("\x01\0\0\0", 4)},
        {"8 bits", 8, BI_RGB, 2, strPalette + std::string("\0\x01\0\0", 4)},
        {"run lengths", 8, BI_RLE8, 2, strPalette + std::string("\1\0\1\1\0\1", 6)},
        {"16 bits", 16, BI_RGB, 0, std::string("\0\x7C\x1F\0", 4)},
        {"masks", 16, BI_BITFIELDS, 0,
         std::string("\0\xF8\0\0\xE0\x07\0\0\x1F\0\0\0\0\xF8\x1F\0", 16)},
        {"24 bits", 24, BI_RGB, 0, std::string("\0\0\xFF\xFF\0\0\0\0", 8)},
        {"32 bits", 32, BI_RGB, 0, std::string("\0\0\xFF\0\xFF\0\0\0", 8)},
    };
    const std::string strFile = TemporaryFile("richtext_kind.bmp");
    for (const auto& kind : kKinds) {
        BITMAPFILEHEADER file{};
        BITMAPINFOHEADER info = TrueColorHeader(2, 1);
        info.biBitCount = kind.nBits;
        info.biCompression = kind.dwPacking;
        info.biClrUsed = kind.dwColours;
        file.bfType = 0x4D42;
        file.bfOffBits = static_cast<DWORD>(sizeof file + sizeof info + kind.dwColours * 4 +
                                            (kind.dwPacking == BI_BITFIELDS ? 12 : 0));
        std::ofstream stream(strFile, std::ios::binary);
        stream.write(reinterpret_cast<const char*>(&file), sizeof file);
        stream.write(reinterpret_cast<const char*>(&info), sizeof info);
        stream << kind.strRest;
        stream.close();
        const Bitmap loaded = LoadBitmapFile(strFile.c_str());
        ASSERT_TRUE(loaded) << kind.pszKind;
        const auto picture = richtext::CPicture::FromBitmap(loaded.get(), richtext::kNoColour);
        ASSERT_EQ(picture.Pixels().size(), 2u);
        EXPECT_EQ(picture.Pixels()[0], 0xFFFF0000u) << kind.pszKind;
        EXPECT_EQ(picture.Pixels()[1], 0xFF0000FFu) << kind.pszKind;
    }
    DeleteFileA(strFile.c_str());
}

TEST(Images, WrongOnesAreNotThere) {
    const BitmapFile huge("richtext_huge.bmp", 8, 8, Strip,
                          [](BITMAPINFOHEADER& info) { info.biWidth = info.biHeight = 30000; });
    const BitmapFile longer("richtext_long.bmp", 8, 8, Strip,
                            [](BITMAPINFOHEADER& info) { info.biHeight = 4000; });
    const BitmapFile colours("richtext_colours.bmp", 8, 8, Strip, [](BITMAPINFOHEADER& info) {
        info.biBitCount = 8;
        info.biClrUsed = 0xFFFFFFFF;
    });
    const auto pack = [](BITMAPINFOHEADER& info) {
        info.biBitCount = 8;
        info.biClrUsed = 2;
        info.biCompression = BI_RLE8;
    };
    const BitmapFile packed("richtext_packed.bmp", 8, 8, Strip, pack, 62);
    const BitmapFile lowest("richtext_low.bmp", 8, 8, Strip,
                            [](BITMAPINFOHEADER& info) { info.biHeight = INT32_MIN; });
    const BitmapFile beyond("richtext_beyond.bmp", 8, 8, Strip, nullptr, 0x7FFFFFF0);
    const BitmapFile early("richtext_early.bmp", 8, 8, Strip, nullptr, 16);
    std::vector<std::string> aMarkup;
    for (const BitmapFile* pFile : {&huge, &longer, &colours, &packed, &lowest, &beyond, &early}) {
        aMarkup.push_back("<bmp width=8 height=8 file=\"" + pFile->Name() + "\">");
        aMarkup.push_back("<ilst cx=8 cy=8 file=\"" + pFile->Name() + "\">");
        aMarkup.push_back("<icon cx=8 cy=8 file=\"" + pFile->Name() + "\">");
    }
    for (const char* pszFrom :
         {"file=missing.bmp", "file=\\\\machine\\share\\a.bmp", "file=//machine/share/a.bmp",
          "file=\\\\.\\COM1", "file=NUL", "file=C:\\", "idres=99 iddll=missing.dll",
          "idres=99 iddll=\\\\machine\\a.dll", "idres=0", "idres=99999", "idres=nothing",
          "handle=1", "handle=0xFFFFFFFF", "handle=0xFFFFFFFFFFFFFFFF",
          "handle=99999999999999999999", "handle=text", "handle=-1"}) {
        for (const char* pszTag : {"bmp", "icon", "ilst"})
            aMarkup.push_back(std::string("<") + pszTag + " cx=8 cy=8 " + pszFrom + ">");
    }
    for (const std::string& strMarkup : aMarkup)
        EXPECT_EQ(FirstRow(strMarkup), "") << strMarkup;
}

TEST(Images, AnimatedListsMoveWithTheClock) {
    const BitmapFile file("richtext_frames.bmp", 24, 8, Strip);
    CHtmlDrawer drawer;
    UseTestFont(drawer);
    drawer.SetText("<ilst speed=100 index=1 file=\"" + file.Name() + "\">");
    EXPECT_EQ(drawer.AnimationInterval(), 100u);
    const struct {
        UINT nClock;
        COLORREF colour;
    } kMoments[] = {{0, kGreen}, {99, kGreen}, {100, kBlue}, {200, kRed}, {4294967200u, kBlue}};
    for (const auto& moment : kMoments) {
        const Canvas canvas(32, 40);
        drawer.SetClock(moment.nClock);
        drawer.Draw(canvas.Dc(), canvas.Area(), canvas.Area());
        EXPECT_EQ(canvas.At(4, canvas.Ink().top), moment.colour) << moment.nClock;
    }
    EXPECT_EQ(drawer.AnimatedRects().size(), 1u);
}

}  // namespace
}  // namespace mvp::test
