#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {
namespace {

constexpr int kHeading = 7;
constexpr int kButton = 8;

class SharedPieces : public testing::Test {
protected:
    SharedPieces() {
        m_dialog.CreateEx(0, "STATIC", "", WS_POPUP, 10, 20, 300, 200, nullptr, nullptr);
        for (const int id : {kHeading, kButton}) {
            CreateWindowExA(0, id == kHeading ? "STATIC" : "BUTTON", "", WS_CHILD, 30, 40, 50, 25,
                            m_dialog.m_hWnd, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                            nullptr, nullptr);
        }
    }

    CWnd m_dialog;
};

TEST_F(SharedPieces, HeadingIsItsOwnFontInBold) {
    EXPECT_FALSE(MakeHeadingBold(m_dialog, kHeading)) << "the system's font";
    EXPECT_FALSE(MakeHeadingBold(m_dialog, 99));
    const Font own(CreateFontA(-17, 9, 0, 0, 400, TRUE, 0, 0, 0, 0, 0, 0, 0, "Tahoma"));
    m_dialog.SendDlgItemMessage(kHeading, WM_SETFONT, reinterpret_cast<WPARAM>(own.get()), 0);
    const Font bold = MakeHeadingBold(m_dialog, kHeading);
    ASSERT_TRUE(bold);
    LOGFONTA font{};
    GetObjectA(reinterpret_cast<HFONT>(m_dialog.SendDlgItemMessage(kHeading, WM_GETFONT)),
               sizeof font, &font);
    EXPECT_EQ(font.lfHeight, -17);
    EXPECT_EQ(font.lfWidth, 0);
    EXPECT_EQ(font.lfWeight, 700);
    EXPECT_EQ(font.lfItalic, TRUE);
    EXPECT_STREQ(font.lfFaceName, "Tahoma");
}

TEST_F(SharedPieces, WindowGrowsAndItsControlsMakeRoom) {
    constexpr int kNowhere = 99;
    for (const WindowFit& fit : {WindowFit{3, 70}, WindowFit{0, -60}}) {
        FitWindow(m_dialog, fit, {kButton, kNowhere});
    }
    EXPECT_EQ(PlaceOf(m_dialog, kButton), CRect(33, 50, 83, 75));
    EXPECT_EQ(PlaceOf(m_dialog, kHeading), CRect(30, 40, 80, 65));
    EXPECT_EQ(PlaceOf(m_dialog, kNowhere), CRect(0, 0, 0, 0));
    CRect window;
    m_dialog.GetWindowRect(&window);
    EXPECT_EQ(window, CRect(10, 20, 313, 230));
    EXPECT_EQ(WindowFit::ToWholePanel(40).nHeight, 40);
    EXPECT_EQ(WindowFit::ToWholePanel(-1).nHeight, 0);
}

}  // namespace
}  // namespace mvp::test
