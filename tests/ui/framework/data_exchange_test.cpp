#include <string>

#include <dlgfw/controls.h>
#include <dlgfw/data_exchange.h>
#include <dlgfw/dialog.h>
#include <dlgfw/message_map.h>
#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "support/dialog_template.h"

namespace mvp::test {
namespace {

enum : int { kName = 1001, kCount, kSize, kCheck, kRadio1, kRadio2, kRadio3, kMissing };

class CDataDlg : public CDialog {
public:
    CDataDlg() : m_template("Data", {0, 0, 180, 120}) {
        m_template.Add("EDIT", kName, "", {7, 7, 100, 14}, WS_BORDER | WS_TABSTOP)
            .Add("EDIT", kCount, "", {7, 27, 100, 14}, WS_BORDER | WS_TABSTOP)
            .Add("EDIT", kSize, "", {7, 47, 100, 14}, WS_BORDER | WS_TABSTOP)
            .Add("BUTTON", kCheck, "&Check", {110, 7, 60, 14}, BS_AUTO3STATE | WS_TABSTOP)
            .Add("BUTTON", kRadio1, "&1", {110, 27, 60, 14}, BS_AUTORADIOBUTTON | WS_GROUP)
            .Add("BUTTON", kRadio2, "&2", {110, 47, 60, 14}, BS_AUTORADIOBUTTON)
            .Add("BUTTON", kRadio3, "&3", {110, 67, 60, 14}, BS_AUTORADIOBUTTON)
            .Add("BUTTON", IDOK, "OK", {7, 100, 50, 14}, BS_DEFPUSHBUTTON | WS_GROUP)
            .Add("BUTTON", IDCANCEL, "Cancel", {67, 100, 50, 14}, 0);
        InitModalIndirect(m_template.Get());
    }

    CString m_strName = "Ann";
    int m_nCount = -5;
    UINT m_nSize = 4000000000u;
    int m_nCheck = BST_INDETERMINATE;
    int m_nRadio = 2;
    CEdit m_editName;
    bool m_bAskMissing = false;
    int m_nChanges = 0;

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, kName, m_editName);
        DDX_Text(pDX, kName, m_strName);
        DDV_MaxChars(pDX, m_strName, 8);
        DDX_Text(pDX, kCount, m_nCount);
        DDX_Text(pDX, kSize, m_nSize);
        DDX_Check(pDX, kCheck, m_nCheck);
        DDX_Radio(pDX, kRadio1, m_nRadio);
        if (m_bAskMissing)
            DDX_Text(pDX, kMissing, m_strName);
    }
    afx_msg void OnChange(UINT) { ++m_nChanges; }
    DECLARE_MESSAGE_MAP()

private:
    DialogTemplate m_template;
};

BEGIN_MESSAGE_MAP(CDataDlg, CDialog)
    ON_CONTROL_RANGE(EN_CHANGE, kName, kSize, &CDataDlg::OnChange)
END_MESSAGE_MAP()

TEST(DataExchangeTest, MovesValuesBothWays) {
    CDataDlg dlg;
    DialogDriver driver([&](Dialog& dialog) {
        EXPECT_EQ(dlg.m_nChanges, 0);  // filling the controls is no change of the user's
        EXPECT_EQ(dialog.Text(kName), "Ann");
        EXPECT_EQ(dialog.Text(kCount), "-5");
        EXPECT_EQ(dialog.Text(kSize), "4000000000");
        EXPECT_EQ(dialog.Send(kCheck, BM_GETCHECK), BST_INDETERMINATE);
        EXPECT_TRUE(dialog.IsChecked(kRadio3));
        EXPECT_EQ(dialog.Send(kName, EM_GETLIMITTEXT), 8);
        dialog.Type(kName, "abel");
        dialog.Send(kCount, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(" 42 "));
        dialog.Send(kSize, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("0"));
        dialog.Click(kCheck);
        dialog.Click(kRadio2);
        dialog.Click(IDOK);
    });
    ASSERT_EQ(dlg.DoModal(), IDOK);
    EXPECT_STREQ(dlg.m_strName, "Annabel");
    EXPECT_EQ(dlg.m_nCount, 42);
    EXPECT_EQ(dlg.m_nSize, 0u);
    EXPECT_EQ(dlg.m_nCheck, BST_UNCHECKED);
    EXPECT_EQ(dlg.m_nRadio, 1);
    EXPECT_GT(dlg.m_nChanges, 0);
    EXPECT_EQ(dlg.m_editName.m_hWnd, nullptr);
    EXPECT_FALSE(dlg.UpdateData(TRUE));  // no window any more
}

TEST(DataExchangeTest, WrongTextsAreToldAndKeepTheDialogOpen) {
    struct {
        int nId;
        const char* text;
        const char* prompt;
    } const cases[] = {
        {kName, "far too long", "Please enter no more than 8 characters."},
        {kCount, "", "Please enter an integer."},
        {kCount, "12x", "Please enter an integer."},
        {kCount, "2147483648", "Please enter an integer."},
        {kSize, "-1", "Please enter a positive integer."},
        {kSize, "4294967296", "Please enter a positive integer."},
        {kSize, "99999999999999999999", "Please enter a positive integer."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        CDataDlg dlg;
        DialogDriver driver([&](Dialog& dialog) {
            const std::string strGood = dialog.Text(c.nId);
            const auto set = [&](const char* text) {
                dialog.Send(c.nId, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
            };
            set(c.text);
            dialog.Click(IDOK);
            Dialog box = dialog.Next();
            EXPECT_EQ(box.Title(), "Data");
            EXPECT_EQ(box.Text(0xFFFF), c.prompt);
            box.Click(IDOK);
            box.WaitGone();
            dialog.WaitUntil("the wrong text is selected", [&] {
                return dialog.FocusedId() == c.nId &&
                       dialog.Send(c.nId, EM_GETSEL) == MAKELRESULT(0, dialog.Text(c.nId).size());
            });
            set(strGood.c_str());
            dialog.Click(IDOK);
        });
        EXPECT_EQ(dlg.DoModal(), IDOK);
        EXPECT_EQ(dlg.m_nCount, -5);
        EXPECT_EQ(dlg.m_nSize, 4000000000u);
    }
}

TEST(DataExchangeTest, MissingControlEndsTheDialog) {
    CDataDlg dlg;
    dlg.m_bAskMissing = true;
    DialogDriver noDialog;
    EXPECT_EQ(dlg.DoModal(), -1);
}

}  // namespace
}  // namespace mvp::test
