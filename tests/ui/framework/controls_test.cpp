// The functions of the controls and of drawing that pack several values into one message or call.
#include <dlgfw/controls.h>
#include <dlgfw/dc.h>
#include <dlgfw/gdi_object.h>
#include <dlgfw/image_list.h>
#include <gtest/gtest.h>

#include "ui/framework/form.h"

namespace mvp::test {
namespace {

constexpr RECT kPlace = {5, 5, 205, 105};

TEST(ControlsTest, ListKeepsRowsColumnsAndImages) {
    CHostWnd host;
    CListCtrl list;
    ASSERT_TRUE(list.Create(WS_CHILD | LVS_REPORT | LVS_SHAREIMAGELISTS, kPlace, &host, 7));
    CImageList images;
    ASSERT_TRUE(images.Create(16, 16, ILC_COLOR24 | ILC_MASK, 2, 1));
    EXPECT_EQ(images.Add(LoadIconA(nullptr, IDI_APPLICATION)), 0);
    EXPECT_EQ(images.Add(LoadIconA(nullptr, IDI_WARNING)), 1);
    EXPECT_EQ(images.Add(HICON{nullptr}), -1);
    EXPECT_EQ(images.GetImageCount(), 2);
    EXPECT_EQ(list.SetImageList(&images, LVSIL_SMALL), nullptr);
    EXPECT_EQ(list.GetImageList(LVSIL_SMALL), &images);

    EXPECT_EQ(list.InsertColumn(0, "Name", LVCFMT_LEFT, 120), 0);
    EXPECT_EQ(list.InsertColumn(1, "Date", LVCFMT_RIGHT, 60, 1), 1);
    EXPECT_EQ(list.GetColumnWidth(0), 120);
    EXPECT_EQ(list.GetColumnWidth(1), 60);
    EXPECT_EQ(list.InsertItem(0, "Ann", 0), 0);
    EXPECT_EQ(list.InsertItem(1, "Bob", 1), 1);
    EXPECT_TRUE(list.SetItemText(1, 1, "05/06/24"));
    EXPECT_TRUE(list.SetItemText(0, 1, CString('x', 600)));
    EXPECT_TRUE(list.SetItemData(1, 99));
    EXPECT_STREQ(list.GetItemText(1, 0), "Bob");
    EXPECT_STREQ(list.GetItemText(1, 1), "05/06/24");
    EXPECT_STREQ(list.GetItemText(5, 1), "");
    EXPECT_EQ(list.GetItemData(1), 99u);
    EXPECT_TRUE(list.SetItemState(1, LVIS_SELECTED, LVIS_SELECTED));
    EXPECT_EQ(list.GetNextItem(-1, LVNI_SELECTED), 1);
    LVITEMA item = {};
    item.mask = LVIF_IMAGE;
    item.iItem = 1;
    EXPECT_TRUE(list.GetItem(&item));
    EXPECT_EQ(item.iImage, 1);
    EXPECT_TRUE(list.DeleteItem(0));
    EXPECT_EQ(list.GetItemCount(), 1);
}

TEST(ControlsTest, SpinButtonMovesWithinItsRange) {
    CHostWnd host;
    CEdit edit;
    ASSERT_TRUE(edit.Create(WS_CHILD, kPlace, &host, 8));
    CSpinButtonCtrl spin;
    ASSERT_TRUE(spin.Create(WS_CHILD | UDS_SETBUDDYINT, kPlace, &host, 9));
    EXPECT_EQ(spin.SetBuddy(&edit), nullptr);
    EXPECT_EQ(spin.GetBuddy(), &edit);
    spin.SetRange(-3, 14);
    int nLower = 0;
    int nUpper = 0;
    spin.GetRange(nLower, nUpper);
    EXPECT_EQ(nLower, -3);
    EXPECT_EQ(nUpper, 14);
    EXPECT_EQ(spin.SetPos(7), 0);
    EXPECT_EQ(spin.SetPos(99), 7);
    EXPECT_EQ(spin.GetPos(), 14);
    CString str;
    edit.GetWindowText(str);
    EXPECT_STREQ(str, "14");
    spin.SetRange32(0, 100000);
    spin.GetRange32(nLower, nUpper);
    EXPECT_EQ(nUpper, 100000);
    spin.SetPos32(70000);
    EXPECT_EQ(spin.GetPos32(), 70000);
}

TEST(ControlsTest, EditSelectsLimitsAndReplaces) {
    CHostWnd host;
    CEdit edit;
    ASSERT_TRUE(edit.Create(WS_CHILD | ES_PASSWORD, kPlace, &host, 8));
    edit.SetPasswordChar('*');
    EXPECT_EQ(edit.GetPasswordChar(), '*');
    edit.SetLimitText(6);
    EXPECT_EQ(edit.GetLimitText(), 6u);
    edit.SetWindowText("abcdef");
    edit.SetSel(1, 3);
    int nStart = 0;
    int nEnd = 0;
    edit.GetSel(nStart, nEnd);
    EXPECT_EQ(nStart, 1);
    EXPECT_EQ(nEnd, 3);
    edit.ReplaceSel("X", TRUE);
    EXPECT_TRUE(edit.CanUndo());
    edit.EmptyUndoBuffer();
    EXPECT_FALSE(edit.CanUndo());
    edit.SetSel(0, -1);
    EXPECT_EQ(edit.GetSel(), DWORD{MAKELONG(0, 5)});
    CString str;
    edit.GetWindowText(str);
    EXPECT_STREQ(str, "aXdef");
    edit.SetWindowPos(&CWnd::wndTopMost, 0, 0, 30, 40, SWP_NOMOVE);
    CRect rect;
    edit.GetWindowRect(rect);
    host.ScreenToClient(rect);
    EXPECT_EQ(rect, CRect(CPoint(5, 5), CSize(30, 40)));
}

TEST(ControlsTest, PicturesAndChecksComeBackAsTheyWereSet) {
    CHostWnd host;
    HICON hIcon = LoadIconA(nullptr, IDI_INFORMATION);
    CStatic picture;
    ASSERT_TRUE(picture.Create("", WS_CHILD | SS_ICON, kPlace, &host));
    EXPECT_EQ(picture.SetIcon(hIcon), nullptr);
    EXPECT_EQ(picture.GetIcon(), hIcon);
    CButton check;
    ASSERT_TRUE(check.Create("", WS_CHILD | BS_AUTO3STATE, kPlace, &host, 9));
    check.SetCheck(BST_INDETERMINATE);
    EXPECT_EQ(check.GetCheck(), BST_INDETERMINATE);
    EXPECT_EQ(host.IsDlgButtonChecked(9), UINT{BST_INDETERMINATE});
}

TEST(DrawingTest, ObjectsAreOwnedAndSelectionsGivenBack) {
    CHostWnd host;
    CBitmap bitmap;
    CBrush brush(RGB(255, 0, 0));
    LOGBRUSH logBrush = {};
    EXPECT_GT(brush.GetLogBrush(&logBrush), 0);
    EXPECT_EQ(logBrush.lbColor, COLORREF{RGB(255, 0, 0)});
    EXPECT_EQ(CBrush::FromHandle(brush), &brush);
    {
        CClientDC screen(&host);
        CDC memory;
        ASSERT_TRUE(memory.CreateCompatibleDC(&screen));
        ASSERT_TRUE(bitmap.CreateCompatibleBitmap(&screen, 20, 10));
        CBitmap* pOld = memory.SelectObject(&bitmap);
        EXPECT_EQ(memory.GetCurrentBitmap(), &bitmap);
        memory.FillRect(CRect(0, 0, 20, 10), &brush);
        memory.SetBkColor(RGB(1, 2, 3));
        memory.FillSolidRect(5, 5, 2, 3, RGB(0, 255, 0));
        EXPECT_EQ(memory.GetBkColor(), COLORREF{RGB(1, 2, 3)});
        EXPECT_EQ(memory.GetPixel(6, 7), COLORREF{RGB(0, 255, 0)});
        EXPECT_EQ(memory.GetPixel(7, 7), COLORREF{RGB(255, 0, 0)});
        EXPECT_EQ(memory.SelectObject(pOld), &bitmap);
    }
    HGDIOBJ hBitmap = bitmap.m_hObject;
    EXPECT_TRUE(bitmap.CreateBitmap(1, 1, 1, 1, nullptr));  // in place of the first
    EXPECT_EQ(GetObjectType(hBitmap), 0u);
    HGDIOBJ hSecond = bitmap.Detach();
    EXPECT_EQ(GetObjectType(hSecond), DWORD{OBJ_BITMAP});
    EXPECT_TRUE(DeleteObject(hSecond));
    CRgn region;
    EXPECT_TRUE(region.CreateRectRgn(0, 0, 10, 10));
    CRgn hole;
    EXPECT_TRUE(hole.CreateRectRgn(2, 2, 4, 4));
    EXPECT_EQ(region.CombineRgn(&region, &hole, RGN_XOR), COMPLEXREGION);
    EXPECT_FALSE(region.PtInRegion(CPoint(3, 3)));
}

TEST(DrawingTest, PointFontHasTheHeightAsked) {
    CClientDC screen(nullptr);
    CFont font;
    ASSERT_TRUE(font.CreatePointFont(120, "Tahoma", &screen));
    LOGFONTA logFont = {};
    EXPECT_GT(font.GetLogFont(&logFont), 0);
    EXPECT_EQ(logFont.lfHeight, -screen.GetDeviceCaps(LOGPIXELSY) / 6);
    EXPECT_STREQ(logFont.lfFaceName, "Tahoma");
    CHostWnd host;
    CStatic label;
    ASSERT_TRUE(label.Create("", WS_CHILD, kPlace, &host));
    label.SetFont(&font);
    EXPECT_EQ(label.GetFont(), &font);
}

}  // namespace
}  // namespace mvp::test
