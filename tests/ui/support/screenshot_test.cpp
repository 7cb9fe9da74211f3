#include "common/screenshot.h"

#include <windows.h>
#include <wincodec.h>

#include <string>

#include <gdiplus.h>
#include <gtest/gtest.h>

#include "platform/handle.h"

namespace mvp::test {
namespace {

const Brush g_red(CreateSolidBrush(RGB(200, 30, 10)));

LRESULT CALLBACK RedProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    RECT rect = {};
    GetClientRect(hWnd, &rect);
    if (nMessage == WM_ERASEBKGND) {
        return FillRect(reinterpret_cast<HDC>(wParam), &rect, g_red.get());
    }
    return DefWindowProcA(hWnd, nMessage, wParam, lParam);
}

TEST(Screenshot, ShowsTheVisiblePartOfTheWindow) {
    constexpr char kFile[] = "screenshot_test.png";
    // Runs over the right edge of the screen.
    const HWND window =
        CreateWindowExA(WS_EX_TOPMOST, "STATIC", "", WS_POPUP, GetSystemMetrics(SM_CXSCREEN) - 100,
                        20, 301, 81, nullptr, nullptr, nullptr, nullptr);
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&RedProc));
    ShowWindow(window, SW_SHOWNA);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
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
        EXPECT_EQ(middle.GetValue(), 0xFFC81E0Au);
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
