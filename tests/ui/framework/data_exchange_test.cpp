#include <dlgfw/controls.h>
#include <dlgfw/data_exchange.h>
#include <dlgfw/dialog.h>
#include <dlgfw/message_map.h>
#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "support/dialog_template.h"

namespace mvp::test {
namespace {

enum : int { kName = 1001, kTown, kMissing };

class CDataDlg : public CDialog {
public:
    CDataDlg() : m_template("Data", {0, 0, 180, 60}) {
        m_template.Add("EDIT", kName, "", {7, 7, 100, 14}, WS_BORDER | WS_TABSTOP)
            .Add("EDIT", kTown, "", {7, 27, 100, 14}, WS_BORDER | WS_TABSTOP)
            .Add("BUTTON", IDOK, "OK", {7, 40, 50, 14}, BS_DEFPUSHBUTTON)
            .Add("BUTTON", IDCANCEL, "Cancel", {67, 40, 50, 14}, 0);
        InitModalIndirect(m_template.Get());
    }

    CString m_strName = "Ann";
    CString m_strTown;
    CEdit m_editName;
    bool m_bAskMissing = false;
    int m_nChanges = 0;

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, kName, m_editName);
        DDX_Text(pDX, kName, m_strName);
        if (m_bAskMissing)
            DDX_Text(pDX, kMissing, m_strName);
        DDX_Text(pDX, kTown, m_strTown);
    }
    afx_msg void OnChange() { ++m_nChanges; }
    DECLARE_MESSAGE_MAP()

private:
    DialogTemplate m_template;
};

BEGIN_MESSAGE_MAP(CDataDlg, CDialog)
    ON_EN_CHANGE(kName, &CDataDlg::OnChange)
END_MESSAGE_MAP()

TEST(DataExchangeTest, MovesTextsBothWays) {
    CDataDlg dlg;
    DialogDriver driver([&](Dialog& dialog) {
        EXPECT_EQ(dlg.m_nChanges, 0);  // filling the controls is no change of the user's
        EXPECT_EQ(dialog.Text(kName), "Ann");
        dialog.Type(kName, "abel");
        dialog.Type(kTown, "Bonn");
        dialog.Click(IDOK);
    });
    ASSERT_EQ(dlg.DoModal(), IDOK);
    EXPECT_STREQ(dlg.m_strName, "Annabel");
    EXPECT_STREQ(dlg.m_strTown, "Bonn");
    EXPECT_GT(dlg.m_nChanges, 0);
    EXPECT_EQ(dlg.m_editName.m_hWnd, nullptr);
    EXPECT_FALSE(dlg.UpdateData(TRUE));  // no window any more
}

TEST(DataExchangeTest, MissingControlEndsTheDialog) {
    CDataDlg dlg;
    dlg.m_bAskMissing = true;
    DialogDriver noDialog;
    EXPECT_EQ(dlg.DoModal(), -1);
}

TEST(DataExchangeTest, MissingControlKeepsTheDialogOpen) {
    CDataDlg dlg;
    DialogDriver driver([&](Dialog& dialog) {
        dialog.Run([&] { dlg.m_bAskMissing = true; });
        dialog.Type(kTown, "Bonn");
        dialog.Click(IDOK);
        EXPECT_TRUE(dialog.IsOpen());
        dialog.Click(IDCANCEL);
    });
    EXPECT_EQ(dlg.DoModal(), IDCANCEL);
    EXPECT_STREQ(dlg.m_strTown, "");
}

}  // namespace
}  // namespace mvp::test
