#include "common/screenshot.h"

#include <windows.h>
#include <wincodec.h>

#include <string>

#include <gdiplus.h>
#include <gtest/gtest.h>

namespace mvp::test {
namespace {

TEST(Screenshot, ShowsTheVisiblePartOfTheWindow) {
    constexpr char kFile[] = "screenshot_test.png";
    // Runs over the right edge of the screen.
    const HWND window = CreateWindowExA(
        WS_EX_TOPMOST, "STATIC", "", WS_POPUP | WS_VISIBLE | SS_GRAYRECT,
        GetSystemMetrics(SM_CXSCREEN) - 100, 20, 301, 81, nullptr, nullptr, nullptr, nullptr);
    UpdateWindow(window);
    GdiFlush();
    std::string error;
    EXPECT_TRUE(SaveWindowPng(window, kFile, error)) << error;
    DestroyWindow(window);

    ULONG_PTR token = 0;
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&token, &input, nullptr);
    {
        Gdiplus::Bitmap picture(L"screenshot_test.png");
        EXPECT_EQ(picture.GetWidth(), 100u);
        EXPECT_EQ(picture.GetHeight(), 81u);
        Gdiplus::Color middle;
        picture.GetPixel(50, 40, &middle);
        EXPECT_EQ(middle.ToCOLORREF(), GetSysColor(COLOR_3DSHADOW));
    }
    Gdiplus::GdiplusShutdown(token);
    DeleteFileA(kFile);
}

TEST(Screenshot, TellsWhyThereIsNone) {
    std::string error;
    EXPECT_FALSE(SaveWindowPng(nullptr, "screenshot_test.png", error));
    EXPECT_NE(error.find("no such window"), std::string::npos);
    EXPECT_FALSE(SaveScreenPng({0, 0, 9, 9}, R"(no\such\folder\a.png)", error));
    EXPECT_NE(error.find("could not be written"), std::string::npos);
}

}  // namespace
}  // namespace mvp::test
