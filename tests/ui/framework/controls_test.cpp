// The functions of the controls and of drawing that pack several values into one message or call.
#include <utility>

#include <dlgfw/controls.h>
#include <dlgfw/dc.h>
#include <dlgfw/gdi_object.h>
#include <dlgfw/image_list.h>
#include <gtest/gtest.h>

#include "ui/framework/form.h"

namespace mvp::test {
namespace {

constexpr RECT kPlace = {5, 5, 205, 105};

class ControlsTest : public testing::Test {
protected:
    HostWnd m_host;
};

TEST_F(ControlsTest, ListKeepsRowsColumnsAndImages) {
    CListCtrl list;
    ASSERT_TRUE(
        list.Create(WC_LISTVIEWA, "", LVS_REPORT | LVS_SHAREIMAGELISTS, kPlace, &m_host, 7));
    CImageList images;
    CImageList others;
    ASSERT_TRUE(images.Create(16, 16, ILC_COLOR24 | ILC_MASK, 2, 1));
    ASSERT_TRUE(others.Create(16, 16, ILC_COLOR24, 1, 1));
    EXPECT_EQ(images.Add(LoadIconA(nullptr, IDI_APPLICATION)), 0);
    EXPECT_EQ(images.Add(LoadIconA(nullptr, IDI_WARNING)), 1);
    EXPECT_EQ(images.Add(HICON{nullptr}), -1);
    EXPECT_EQ(list.SetImageList(&images, LVSIL_SMALL), nullptr);
    EXPECT_EQ(list.SetImageList(&others, LVSIL_SMALL), &images);

    EXPECT_EQ(list.InsertColumn(0, "Name", LVCFMT_LEFT, 120), 0);
    EXPECT_EQ(list.InsertColumn(1, "Date", LVCFMT_RIGHT, 60, 1), 1);
    EXPECT_EQ(ListView_GetColumnWidth(list, 1), 60);
    EXPECT_EQ(list.InsertItem(0, "Ann", 0), 0);
    EXPECT_EQ(list.InsertItem(1, "Bob", 1), 1);
    EXPECT_TRUE(list.SetItemText(1, 1, "05/06/24"));
    LVITEMA item = {};
    item.mask = LVIF_IMAGE;
    item.iItem = 1;
    EXPECT_TRUE(ListView_GetItem(list, &item));
    EXPECT_EQ(item.iImage, 1);
    for (const auto& [column, expected] : {std::pair{0, "Bob"}, {1, "05/06/24"}}) {
        char text[20] = "";
        ListView_GetItemText(list, 1, column, text, static_cast<int>(sizeof(text)));
        EXPECT_STREQ(text, expected);
    }
}

TEST_F(ControlsTest, EditSelectsAndFollowsASpinButton) {
    CEdit edit;
    ASSERT_TRUE(edit.Create(WS_CHILD, kPlace, &m_host, 8));
    edit.SetWindowText("abcdef");
    edit.SetSel(1, 3);
    int start = 0;
    int end = 0;
    edit.GetSel(start, end);
    EXPECT_EQ(std::pair(start, end), std::pair(1, 3));
    edit.SetWindowPos(&CWnd::wndTopMost, 0, 0, 30, 40, SWP_NOMOVE);
    CRect rect;
    edit.GetWindowRect(rect);
    m_host.ScreenToClient(rect);
    EXPECT_EQ(rect, CRect(CPoint(5, 5), CSize(30, 40)));

    CSpinButtonCtrl spin;
    ASSERT_TRUE(spin.Create(UPDOWN_CLASSA, "", UDS_SETBUDDYINT, kPlace, &m_host, 9));
    EXPECT_EQ(spin.SetBuddy(&edit), nullptr);
    EXPECT_EQ(spin.SetBuddy(&edit), &edit);
    spin.SetRange32(-3, 100000);
    CString str;
    for (const auto& [asked, expected] : {std::pair{7, "7"}, {-9, "-3"}, {200000, "100000"}}) {
        spin.SendMessage(UDM_SETPOS32, 0, asked);
        edit.GetWindowText(str);
        str.Remove(',');  // between thousands
        EXPECT_STREQ(str, expected);
    }
}

TEST_F(ControlsTest, SettingsReachTheControl) {
    CEdit edit;
    ASSERT_TRUE(edit.Create(WS_CHILD | ES_PASSWORD, kPlace, &m_host, 8));
    edit.SetPasswordChar('+');
    edit.SetLimitText(6);
    edit.SetReadOnly();
    EXPECT_EQ(edit.SendMessage(EM_GETPASSWORDCHAR), '+');
    EXPECT_EQ(edit.SendMessage(EM_GETLIMITTEXT), 6);
    EXPECT_NE(edit.GetStyle() & ES_READONLY, 0u);
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
    {
        CClientDC screen(&m_host);
        CDC memory;
        CDC copy;
        ASSERT_TRUE(memory.CreateCompatibleDC(&screen));
        ASSERT_TRUE(copy.CreateCompatibleDC(nullptr));
        ASSERT_TRUE(bitmap.CreateCompatibleBitmap(&screen, 20, 10));
        CBitmap target;
        ASSERT_TRUE(target.CreateCompatibleBitmap(&screen, 20, 10));
        CBitmap* old = memory.SelectObject(&bitmap);
        CBitmap* oldCopy = copy.SelectObject(&target);
        SetPixel(memory, 6, 7, RGB(0, 255, 0));
        EXPECT_TRUE(copy.BitBlt(1, 2, 10, 8, &memory, 5, 5, SRCCOPY));
        EXPECT_EQ(GetPixel(copy, 2, 4), COLORREF{RGB(0, 255, 0)});
        EXPECT_EQ(memory.SelectObject(old), &bitmap);
        copy.SelectObject(oldCopy);
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

TEST_F(ControlsTest, PointFontHasTheHeightAsked) {
    CClientDC dc(&m_host);
    CFont font;
    ASSERT_TRUE(font.CreatePointFont(120, "Tahoma", &dc));
    LOGFONTA logFont = {};
    EXPECT_GT(font.GetLogFont(&logFont), 0);
    EXPECT_EQ(logFont.lfHeight, -GetDeviceCaps(dc, LOGPIXELSY) / 6);
    EXPECT_STREQ(logFont.lfFaceName, "Tahoma");
    CStatic label;
    ASSERT_TRUE(label.Create("", WS_CHILD, kPlace, &m_host));
    label.SetFont(&font);
    EXPECT_EQ(label.GetFont(), &font);
    const CSize small = dc.GetTextExtent("Text", 4);
    CFont* old = dc.SelectObject(&font);
    EXPECT_GT(dc.GetTextExtent(CString("Text")).cx, small.cx);
    EXPECT_EQ(dc.SelectObject(old), &font);
}

}  // namespace
}  // namespace mvp::test
