// The functions of the controls and of drawing that no dialog of the library stands on.
#include <utility>

#include <dlgfw/controls.h>
#include <dlgfw/dc.h>
#include <dlgfw/gdi_object.h>
#include <gtest/gtest.h>

namespace mvp::test {
namespace {

constexpr RECT kPlace = {5, 5, 205, 105};

class ControlsTest : public testing::Test {
protected:
    ControlsTest() { m_host.CreateEx(0, nullptr, "", WS_POPUP, {9, 9, 300, 200}, nullptr, 0); }
    CWnd m_host;
};

TEST_F(ControlsTest, SettingsReachTheControl) {
    CEdit edit;
    ASSERT_TRUE(edit.Create(WS_CHILD | ES_PASSWORD, kPlace, &m_host, 8));
    edit.SetPasswordChar('+');
    edit.SetLimitText(6);
    edit.SetReadOnly();
    EXPECT_EQ(edit.SendMessage(EM_GETPASSWORDCHAR), '+');
    EXPECT_EQ(edit.SendMessage(EM_GETLIMITTEXT), 6);
    EXPECT_NE(edit.GetStyle() & ES_READONLY, 0u);
    edit.SetWindowText("abcdef");
    edit.SetSel(1, 3);
    int start = 0;
    int end = 0;
    edit.GetSel(start, end);
    EXPECT_EQ(std::pair(start, end), std::pair(1, 3));
    HICON icon = LoadIconA(nullptr, IDI_INFORMATION);
    CStatic picture;
    ASSERT_TRUE(picture.Create("", WS_CHILD | SS_ICON, kPlace, &m_host));
    EXPECT_EQ(picture.SetIcon(icon), nullptr);
    EXPECT_EQ(picture.SetIcon(nullptr), icon);
    CButton check;
    ASSERT_TRUE(check.Create("", WS_CHILD | BS_AUTO3STATE, kPlace, &m_host, 9));
    check.SetCheck(BST_INDETERMINATE);
    EXPECT_EQ(check.GetCheck(), BST_INDETERMINATE);
    EXPECT_EQ(m_host.IsDlgButtonChecked(9), UINT{BST_INDETERMINATE});
}

TEST_F(ControlsTest, DrawingObjectsAreOwnedAndSelectionsGivenBack) {
    CBitmap bitmap;
    CFont font;
    {
        CClientDC screen(&m_host);
        CDC memory;
        CDC copy;
        ASSERT_TRUE(memory.CreateCompatibleDC(&screen) && copy.CreateCompatibleDC(nullptr));
        CBitmap target;
        ASSERT_TRUE(bitmap.CreateCompatibleBitmap(&screen, 20, 10));
        ASSERT_TRUE(target.CreateCompatibleBitmap(&screen, 20, 10));
        CBitmap* old = memory.SelectObject(&bitmap);
        CBitmap* oldCopy = copy.SelectObject(&target);
        SetPixel(memory, 6, 7, RGB(0, 255, 0));
        EXPECT_TRUE(copy.BitBlt(1, 2, 10, 8, &memory, 5, 5, SRCCOPY));
        EXPECT_EQ(GetPixel(copy, 2, 4), COLORREF{RGB(0, 255, 0)});
        EXPECT_EQ(memory.SelectObject(old), &bitmap);
        copy.SelectObject(oldCopy);

        ASSERT_TRUE(font.CreatePointFont(240, "Tahoma", &screen));
        const CSize small = screen.GetTextExtent("Text", 4);
        CFont* oldFont = screen.SelectObject(&font);
        EXPECT_GT(screen.GetTextExtent(CString("Text")).cx, small.cx);
        EXPECT_EQ(screen.SelectObject(oldFont), &font);
    }
    HGDIOBJ bitmapHandle = bitmap.m_hObject;
    EXPECT_TRUE(bitmap.Attach(CreateBitmap(1, 1, 1, 1, nullptr)));  // in place of the first
    EXPECT_EQ(GetObjectType(bitmapHandle), 0u);
    HGDIOBJ second = bitmap.Detach();
    EXPECT_EQ(GetObjectType(second), DWORD{OBJ_BITMAP});
    EXPECT_TRUE(DeleteObject(second));
    CRgn region;
    CRgn hole;
    EXPECT_TRUE(region.CreateRectRgn(0, 0, 10, 10) && hole.CreateRectRgn(2, 2, 4, 4));
    EXPECT_EQ(region.CombineRgn(&region, &hole, RGN_XOR), COMPLEXREGION);
    EXPECT_FALSE(PtInRegion(region, 3, 3));
}

}  // namespace
}  // namespace mvp::test
