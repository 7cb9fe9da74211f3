// Where the popup comes and goes on the screen, and in what skin.
#include <array>
#include <set>

#include "looks/colours.h"
#include "platform/bitmap_image.h"
#include "platform/resolution.h"
#include "support/bitmap_header.h"
#include "ui/dialogs/enlarged_dialogs.h"
#include "ui/notify/popup_probe.h"

namespace mvp::test {
namespace {

constexpr int kWidth = 340;
constexpr int kHeight = 230;

class PopupSkinTest : public PopupTest {
protected:
    // The pointer, beside the popup at first.
    PopupSkinTest() { PointAt(m_beside); }
    ~PopupSkinTest() override { SetCursorPos(0, 0); }

    static void PointAt(POINT point) { SetCursorPos(point.x, point.y); }
    CRect At(CPoint p) const {
        return {p.x, p.y, p.x + kWidth + m_nFrameX, p.y + kHeight + m_nFrameY};
    }

    const int m_nRight = GetSystemMetrics(SM_CXSCREEN);
    const int m_nBottom = GetSystemMetrics(SM_CYSCREEN);
    const int m_nFrameX = 2 * GetSystemMetrics(SM_CYDLGFRAME);
    const int m_nFrameY = 2 * GetSystemMetrics(SM_CXDLGFRAME);
    const POINT m_beside{m_nRight / 2, m_nBottom / 2};
};

// Beside the taskbar at the left it slides, at the bottom it fades; of the others the motion's own
// tests know.
TEST_F(PopupSkinTest, ComesStaysUnderThePointerAndGoes) {
    for (const bool bottom : {false, true}) {
        SCOPED_TRACE(bottom);
        const WorkArea area({bottom ? 0 : 60, 0, m_nRight, m_nBottom - (bottom ? 40 : 0)});
        const CPoint shown =
            bottom ? CPoint(m_nRight - 347, m_nBottom - 276) : CPoint(60, m_nBottom - 230);
        const int steps = bottom ? 115 : 170;
        const std::string pace = ":" + std::to_string(500 / steps);
        Init(0);
        s_announced.clear();
        m_popup->Show();
        EXPECT_EQ(Timers(), "1" + pace);
        EXPECT_EQ(TickAway(), steps + 1);
        EXPECT_EQ(Text(Place()), Text(At(shown)));
        EXPECT_EQ(Alpha(), 229);
        EXPECT_EQ(Timers(), "2:3000");

        // It stays under the pointer, which must be within it.
        for (const POINT at : {POINT{0, 9}, POINT{1, 9}, POINT{9, 0}, POINT{9, 1}}) {
            PointAt({shown.x + at.x, shown.y + at.y});
            Tick();
            EXPECT_EQ(Timers(), at.x != 0 && at.y != 0 ? "2:10" : "3" + pace) << at.x << at.y;
            m_popup->Show();
            EXPECT_EQ(Timers(), "2:3000") << "the stay anew";
        }
        EXPECT_EQ(s_announced, std::vector<HWND>{*m_popup});

        PointAt(m_beside);
        Tick();
        Tick();
        EXPECT_EQ(Alpha(), bottom ? 89 * 255 / 100 : 229);
        EXPECT_EQ(TickAway(), bottom ? 90 : steps);
        EXPECT_EQ(Timers(), "-");
        EXPECT_FALSE(m_popup->IsWindowVisible());
        EXPECT_EQ(Closed(), "1 1");
        EXPECT_EQ(Text(Place()), Text(At(bottom ? shown : CPoint(-280, shown.y))));
    }
}

TEST_F(PopupSkinTest, StandsAtOnceWhereNothingMoves) {
    const Animation none(false);
    Init(0);
    m_popup->Show();
    const RECT shown = At({m_nRight - 347, m_nBottom - 236});
    EXPECT_EQ(Text(Place()), Text(shown));
    EXPECT_EQ(Alpha(), 229);
    EXPECT_EQ(Timers(), "2:3000");
    // It goes with the work area, and knows when it does.
    {
        const WorkArea area({0, 0, m_nRight, m_nBottom - 40});
        Send(WM_SETTINGCHANGE, SPI_SETWORKAREA);
        EXPECT_EQ(Place().top, shown.top - 40);
    }
    Send(WM_DISPLAYCHANGE);
    EXPECT_EQ(Text(Place()), Text(shown));
    Tick();
    EXPECT_FALSE(m_popup->IsWindowVisible());
    EXPECT_EQ(Closed(), "1 1");
    Send(WM_SETTINGCHANGE, SPI_SETWORKAREA);
    EXPECT_FALSE(m_popup->IsWindowVisible());
}

TEST_F(PopupSkinTest, WearsAFileAndPutsTheTextWhereItIsTold) {
    // Black, but for the pixel in the middle of its last row.
    std::string pixels(101 * 304, '\0');
    pixels.replace(3 * 50, 3, "\xFF\xFF\xFF");
    const WrittenBitmap file({101, 101}, pixels);
    const char* const name = file.Name().c_str();
    const Animation none(false);
    Init(DIALOG_POPUP_CARD_OTP);
    m_popup->Show();
    EXPECT_EQ(m_popup->SetSkin(nullptr, -1, -1, -1), 0);
    EXPECT_EQ(m_popup->SetSkin("popup_none.bmp", -1, -1, -1), 0);
    for (const auto& [red, green, blue] :
         {std::array<short, 3>{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}) {
        EXPECT_EQ(m_popup->SetSkin(name, red, green, blue), 1);
        RECT box{};
        EXPECT_EQ(GetWindowRgnBox(*m_popup, &box), ERROR);
    }
    EXPECT_EQ(m_popup->SetSkin(name, 0, 0, 0), 1);
    RECT box{};
    GetWindowRgnBox(*m_popup, &box);
    EXPECT_EQ(Text(box), "50,100,51,101");
    Send(WM_DISPLAYCHANGE);
    EXPECT_EQ(Place().Size(), CSize(101 + m_nFrameX, 101 + m_nFrameY));
    SendPassword("x");
    EXPECT_TRUE(Describe(Controls()[0]).starts_with("789 40,13,96,"));
    m_popup->SetTextRect({1, 2, 203, 104});
    SendPassword("y");
    EXPECT_EQ(Describe(Controls()[0]), "789 1,2,203,84 + y");
}

int WidthOf(HICON hIcon) {
    ICONINFO info{};
    GetIconInfo(hIcon, &info);
    const Bitmap mask(info.hbmMask);
    return SizeOf(Bitmap(info.hbmColor)).nWidth;
}

TEST_F(PopupSkinTest, GrowsAsAWholeWithTheResolution) {
    // Black, but for its right half.
    std::string pixelsOfFile;
    for (int i = 0; i < 101; ++i) {
        pixelsOfFile += std::string(153, '\0') + std::string(151, '\xFF');
    }
    const WrittenBitmap file({101, 101}, pixelsOfFile);
    const Animation none(false);
    for (const int percent : {100, 150, 200}) {
        SCOPED_TRACE(percent);
        const EnlargedDialogs at(percent);
        const int dpi = 96 * percent / 100;
        const auto pixels = [=](int nPixels) { return PixelsAt(dpi, nPixels); };
        Init(DIALOG_POPUP_CARD_OTP);
        EXPECT_EQ(WidthOf(LoadResourceIcon(IDI_POPUP_OTP, pixels(32))), pixels(32));
        m_popup->Show();
        const CPoint corner(m_nRight - pixels(347), m_nBottom - pixels(236));
        EXPECT_EQ(Place(), CRect(corner, CSize(pixels(340) + m_nFrameX, pixels(230) + m_nFrameY)));
        EXPECT_EQ(DrawerOf(Controls()[0]).Margins(), CPoint(pixels(5), pixels(5)));
        const CPoint text(pixels(40), pixels(13));
        EXPECT_EQ(RectIn(*m_popup, Controls()[0]).TopLeft(), text);
        m_popup->SetThreadRoutine(&ReturnAtOnce);
        EXPECT_EQ(RectIn(*m_popup, FindWindowExA(*m_popup, nullptr, "VkProgressBar", nullptr)),
                  CRect(pixels(15), pixels(20), pixels(340) - pixels(15), pixels(20) + pixels(15)));
        EXPECT_EQ(m_popup->SetSkin(file.Name().c_str(), 0, 0, 0), 1);
        RECT box{};
        GetWindowRgnBox(*m_popup, &box);
        EXPECT_EQ(box.left, pixels(51)) << "no mean of both colours";
        SendPassword("x");
        EXPECT_EQ(RectIn(*m_popup, Controls()[0]).TopLeft(), text);
        Send(WM_DISPLAYCHANGE);
        EXPECT_EQ(Place().Size(), CSize(pixels(101) + m_nFrameX, pixels(101) + m_nFrameY));
    }
}

BOOL g_bContrast = FALSE;
// By its own address: the import leads back here.
auto* const g_pSystemParametersInfo = FindFunction<decltype(&SystemParametersInfoA)>(
    GetModuleHandleA("user32.dll"), "SystemParametersInfoA");

BOOL WINAPI TellContrast(UINT nAction, UINT nParameter, void* pParameter, UINT nChange) {
    if (nAction == SPI_GETHIGHCONTRAST) {
        auto& contrast = *static_cast<HIGHCONTRASTA*>(pParameter);
        contrast.dwFlags = g_bContrast ? HCF_HIGHCONTRASTON : 0;
        return contrast.cbSize == sizeof contrast;
    }
    return g_pSystemParametersInfo(nAction, nParameter, pParameter, nChange);
}

std::set<COLORREF> DrawnIn(HWND hControl) {
    const Canvas sheet;
    SendMessageA(hControl, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(sheet.dc.get()), 0);
    std::set<COLORREF> drawn;
    for (int i = 0; i < 280 * 12; ++i) {
        drawn.insert(GetPixel(sheet.dc.get(), i % 280, i / 280));
    }
    return drawn;
}

TEST_F(PopupSkinTest, HasTheSystemsColoursInHighContrastAndFollowsThem) {
    const PatchedImports system(nullptr, {{"SystemParametersInfoA", Address(&TellContrast)}});
    const Animation none(false);
    const looks::SystemColours colours("white-on-black");
    g_bContrast = TRUE;
    Init(DIALOG_POPUP_CARD_OTP);
    m_popup->Show();
    SendPassword("<b>MMMM</b>");
    for (const auto& [contrast, message] : {std::pair<BOOL, UINT>{TRUE, WM_NULL},
                                            {FALSE, WM_SETTINGCHANGE},
                                            {FALSE, WM_THEMECHANGED},
                                            {TRUE, WM_SYSCOLORCHANGE},
                                            {TRUE, WM_SYSCOLORCHANGE},
                                            {FALSE, WM_THEMECHANGED}}) {
        const bool drawnAnew = message != WM_NULL && (contrast != FALSE || g_bContrast != FALSE);
        g_bContrast = contrast;
        ValidateRect(*m_popup, nullptr);
        Send(message);
        EXPECT_EQ(GetUpdateRect(*m_popup, nullptr, FALSE) != FALSE, drawnAnew) << message;
        for (const HWND control : Controls()) {
            const std::set<COLORREF> drawn = DrawnIn(control);
            const bool isLink = GetDlgCtrlID(control) == 790;
            const COLORREF text = isLink ? RGB(255, 255, 0) : RGB(255, 255, 255);
            // The password is white on the skin as well.
            EXPECT_EQ(drawn.contains(text), contrast != FALSE || control == Controls()[0]);
        }
        const Canvas ground;
        Send(WM_ERASEBKGND, reinterpret_cast<WPARAM>(ground.dc.get()));
        EXPECT_EQ(GetPixel(ground.dc.get(), 200, 60) == RGB(0, 0, 0), contrast != FALSE);
    }
    // What comes after a password is no white text.
    m_popup->InitWindow(m_host, DIALOG_POPUP_NO_READER, 0);
    for (const BOOL contrast : {TRUE, FALSE}) {
        g_bContrast = contrast;
        Send(WM_THEMECHANGED);
    }
    EXPECT_TRUE(DrawnIn(Controls()[0]).contains(RGB(0, 0, 0)));
}

HBITMAP WINAPI MakeNone(HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD) {
    return nullptr;
}

TEST_F(PopupSkinTest, StaysASmallPictureWhereThereIsNoLargeOne) {
    Bitmap pixel(CreateBitmap(1, 1, 1, 32, nullptr));
    pixel = Scaled(std::move(pixel), {kMaxBitmapSide + 1, 1}, Scaling::Smooth);
    EXPECT_EQ(SizeOf(pixel).nWidth, 1) << "too large";
    const PatchedImports system(nullptr, {{"CreateDIBSection", Address(&MakeNone)}});
    pixel = Scaled(std::move(pixel), {2, 2}, Scaling::Smooth);
    EXPECT_EQ(SizeOf(pixel).nWidth, 1) << "no memory";
}

TEST_F(PopupSkinTest, WearsTheLibrarysOwnWithoutAColour) {
    Init(0);
    const Bitmap skin = LoadResourceBitmap(3102);
    WORD width = 0;
    WORD height = 0;
    BYTE* pixels = Popup::Get24BitPixels(skin.get(), &width, &height);
    EXPECT_EQ(std::pair(width, height), std::pair(WORD{340}, WORD{230}));
    EXPECT_EQ(m_popup->SetSkin(3102, false, false, pixels[2], pixels[1], pixels[0]), 1);
    const Region expected(Popup::GenerateRegion(skin.get(), pixels[2], pixels[1], pixels[0]));
    EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, pixels));
    const Region worn(CreateRectRgn(0, 0, 0, 0));
    GetWindowRgn(*m_popup, worn.get());
    EXPECT_TRUE(EqualRgn(worn.get(), expected.get()));
    EXPECT_FALSE(PtInRegion(worn.get(), 0, 0));
}

}  // namespace
}  // namespace mvp::test
