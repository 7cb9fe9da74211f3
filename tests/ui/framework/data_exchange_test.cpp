#include <dlgfw/controls.h>
#include <dlgfw/data_exchange.h>
#include <dlgfw/message_map.h>
#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "ui/framework/form.h"

namespace mvp::test {
namespace {

class DataDlg : public FormDlg {
public:
    CString m_strText = "Ann";
    CEdit m_edit;
    bool m_bAskMissing = false;
    int m_nChanges = 0;

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        FormDlg::DoDataExchange(pDX);
        DDX_Control(pDX, kFormEdit, m_edit);
        if (m_bAskMissing) {
            DDX_Text(pDX, 4711, m_strText);
        }
        DDX_Text(pDX, kFormEdit, m_strText);
    }
    afx_msg void OnChange() { ++m_nChanges; }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(DataDlg, FormDlg)
    ON_EN_CHANGE(kFormEdit, &DataDlg::OnChange)
END_MESSAGE_MAP()

TEST(DataExchangeTest, MovesTextsBothWays) {
    DataDlg dlg;
    DialogDriver driver([&](Dialog& dialog) {
        EXPECT_EQ(dlg.m_nChanges, 0);  // filling the controls is no change of the user's
        EXPECT_EQ(dialog.Text(kFormEdit), "Ann");
        dialog.Type(kFormEdit, "abel");
        dialog.Click(IDOK);
    });
    ASSERT_EQ(dlg.DoModal(), IDOK);
    EXPECT_STREQ(dlg.m_strText, "Annabel");
    EXPECT_GT(dlg.m_nChanges, 0);
    EXPECT_EQ(dlg.m_edit.m_hWnd, nullptr);
    EXPECT_FALSE(dlg.UpdateData(TRUE));  // no window any more
}

// One that is missing at first ends the new dialog, which the library's own dialogs are tested for.
TEST(DataExchangeTest, MissingControlKeepsAnOpenDialog) {
    DataDlg dlg;
    DialogDriver driver([&](Dialog& dialog) {
        dialog.Run([&] { dlg.m_bAskMissing = true; });
        dialog.Type(kFormEdit, "abel");
        dialog.Click(IDOK);
        EXPECT_TRUE(dialog.IsOpen());
        dialog.Click(IDCANCEL);
    });
    EXPECT_EQ(dlg.DoModal(), IDCANCEL);
    EXPECT_STREQ(dlg.m_strText, "Ann");
}

}  // namespace
}  // namespace mvp::test
