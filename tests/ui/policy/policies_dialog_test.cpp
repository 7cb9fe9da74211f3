// VKPoliciesDlg: what it shows, in which order, and that it keeps still when nothing changes.
#include "mvpingui/policies_dialog.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/failing_heap.h"
#include "ui/policy/message_counter.h"
#include "ui/policy/panel_test.h"

namespace mvp::test {
namespace {

constexpr std::uint32_t kNone = MVP_NO_PIN_LENGTH_RULE;
constexpr PwdRuleArgs kAllRules = {0xDEAD, 1, 0x80000000, 2, 4, 8, 1};

class PoliciesDialog : public testing::Test {
protected:
    AttachedLibrary m_library;
    LogRecorder m_log;
};

std::string LogPlace(const RecordedLine& line) {
    return std::to_string(line.nLevel) + " " + line.strText;
}

void DispatchAll() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&message);
}

TEST_F(PoliciesDialog, LogTellsTheCheckingOrder) {
    const PwdRuleArgs only = {0, 0, 0, 0, kNone, kNone, 0};
    // Every rule is gone through, in force or not, met or not; the predicates and the icons of
    // those in force alone.
    for (const PwdRuleArgs* pRules : {&kAllRules, &only}) {
        const bool bAll = pRules == &kAllRules;
        HostedPanel panel(pRules);
        m_log.Clear();
        panel.Check("old", "val", "new", "other");
        std::vector<std::string> lines;
        for (const RecordedLine& line : m_log.Lines())
            lines.push_back(LogPlace(line));
        std::vector<std::string> expected = {"8 VKPoliciesDlg::VerifyAndUpdatePolicies",
                                             "0 csOldValue: old", "0 csValue: val",
                                             "0 csNewValue: new"};
        const auto expectScope = [&expected](const std::string& strName, bool bWithIcon = false) {
            expected.push_back("8 " + strName);
            if (bWithIcon)
                for (const char* pszLevel : {"8 ", "16 "})
                    expected.push_back(pszLevel + std::string("VKPoliciesDlg::SetPolicyIcon"));
            expected.push_back("16 " + strName);
        };
        expectScope("VKPoliciesDlg::SetMinPINLen", bAll);
        expectScope("VKPoliciesDlg::SetMaxPINLen", bAll);
        expectScope("VKPoliciesDlg::SetPreventSamePIN", bAll);
        if (bAll)
            expectScope("VKPoliciesDlg::IsPinWeak");
        expectScope("VKPoliciesDlg::SetWeakPIN", bAll);
        if (bAll)
            expectScope("VKPoliciesDlg::IsAlphaPinWeak");
        expectScope("VKPoliciesDlg::SetAlphaPIN", bAll);
        expectScope("VKPoliciesDlg::SetConfirmPIN", true);
        for (int i = 0; i < 4; ++i)
            expectScope("CBaseDialog::HidePinFromMemory");
        expected.emplace_back("16 VKPoliciesDlg::VerifyAndUpdatePolicies");
        EXPECT_EQ(lines, expected);
    }
}

TEST_F(PoliciesDialog, EachRuleLooksAtItsOwnText) {
    struct Case {
        const char* pszWhat;
        PwdRuleArgs rules;
        const char* pszOld;
        const char* pszValue;
        const char* pszNew;
        const char* pszConfirm;
        const char* pszLines;
    };
    const std::string strHuge(100'000, '7');
    const Case cases[] = {
        {"length, weakness, digits: the value", kAllRules, "1", "9", "5838x5838", "5838x5838",
         "vsvsss"},
        {"the value again", kAllRules, "1", "5838x5838", "9", "9", "svssvs"},
        {"sameness, confirmation: the new value", kAllRules, "new", "5838", "new", "5838",
         "sssvsv"},
        {"bounds inclusive", kAllRules, "1", "5838", "2", "2", "ssssss"},
        {"bounds inclusive", kAllRules, "1", "58385838", "2", "2", "ssssss"},
        {"both empty are the same", kAllRules, "", "", "", "", "vsvvss"},
        {"case counts", kAllRules, "abcd", "5838", "abcD", "abcd", "sssssv"},
        {"a blank behind it", kAllRules, "1", "5838", "1234", "1234 ", "sssssv"},
        {"bytes above 127", kAllRules, "1", "\xFE\xFF\x01\x80", "2", "2", "ssssvs"},
        {"steps wrap at 256", kAllRules, "1", "\xFE\xFF", "2", "2", "vsvsvs"},
        {"zero is a bound", {0, 0, 0, 0, 0, 0, 0}, "", "", "", "", "ss---s"},
        {"zero is a bound", {0, 0, 0, 0, 0, 0, 0}, "", "1", "", "", "sv---s"},
        {"unsigned bounds", {0, 0, 0, 0, 0x80000000, 0xFFFFFFFE, 0}, "", "1", "", "", "vs---s"},
        {"no rule", {0, 0, 0, 0, kNone, kNone, 0}, "", "", "", "", "-----s"},
        {"long PIN",
         {0, 1, 1, 1, 4, kNone, 0},
         "1",
         strHuge.c_str(),
         strHuge.c_str(),
         strHuge.c_str(),
         "s-vsss"},
    };
    for (const Case& c : cases) {
        HostedPanel panel(&c.rules);
        const bool bVerdict = panel.Check(c.pszOld, c.pszValue, c.pszNew, c.pszConfirm);
        EXPECT_EQ(panel.Lines(), c.pszLines) << c.pszWhat;
        EXPECT_EQ(bVerdict, std::string(c.pszLines).find('v') == std::string::npos) << c.pszWhat;
    }
}

TEST_F(PoliciesDialog, LinesShowTheirTexts) {
    HostedPanel panel(&kAllRules);
    EXPECT_EQ(panel.Text(IDC_POLICIES_BOX), std::string(ResourceString(IDS_POLICIES_BOX)));
    // Until the first check nothing shows.
    EXPECT_FALSE(panel.Panel().IsWindowVisible());
    EnableWindow(panel.Control(IDC_POLICIES_BOX), FALSE);
    panel.Check("", "", "", "");
    EXPECT_TRUE(panel.Panel().IsWindowVisible());
    EXPECT_TRUE(IsWindowEnabled(panel.Control(IDC_POLICIES_BOX)));
    EXPECT_EQ(panel.Text(IDC_POLICIES_MIN_TEXT), "Minimum length: 4");
    EXPECT_EQ(panel.Text(IDC_POLICIES_MAX_TEXT), "Maximum length: 8");
    for (std::size_t i = 2; i < kRuleLines.size(); ++i) {
        EXPECT_EQ(panel.Text(kRuleLines[i].nText),
                  std::string(ResourceString(kRuleLines[i].nString)));
        EXPECT_FALSE(panel.Text(kRuleLines[i].nText).empty());
    }
}

TEST_F(PoliciesDialog, WithoutARecordOnlyTheConfirmationCounts) {
    HostedPanel panel(nullptr);
    EXPECT_TRUE(panel.Check("1", "1", "1", "1"));
    EXPECT_EQ(panel.Lines(), "-----s");
    EXPECT_FALSE(panel.Check("1", "1", "1", "2"));
    EXPECT_EQ(panel.Lines(), "-----v");
}

TEST_F(PoliciesDialog, KeepsStillWhenNothingChanges) {
    HostedPanel panel(&kAllRules);
    panel.Check("1234", "58", "58", "58");
    std::vector<HWND> lines;
    for (const RuleLine& line : kRuleLines) {
        lines.push_back(panel.Control(line.nText));
        lines.push_back(panel.Control(line.nIcon));
    }
    std::vector<HWND> all = lines;
    all.push_back(panel.Handle());
    all.push_back(panel.Control(IDC_POLICIES_BOX));
    all.push_back(panel.Host().m_hWnd);
    DispatchAll();
    MessageCounter messages(all);

    panel.Check("1234", "58", "58", "58");
    DispatchAll();
    for (const int nMessage : {STM_SETICON, WM_SETTEXT, WM_PAINT, WM_ERASEBKGND, WM_NCPAINT,
                               WM_SHOWWINDOW, WM_WINDOWPOSCHANGED})
        EXPECT_EQ(messages.Count(static_cast<UINT>(nMessage)), 0) << nMessage;
    // The counter does count.
    EXPECT_EQ(messages.Count(panel.Control(IDC_POLICIES_MIN_ICON), STM_GETICON), 1);

    // One rule changes its state: its icon is drawn, and no other line.
    messages.Clear();
    panel.Check("1234", "5838", "5838", "5838");
    messages.Clear();
    panel.Check("1234", "583", "583", "583");
    DispatchAll();
    EXPECT_EQ(messages.Count(STM_SETICON), 1);
    EXPECT_EQ(messages.Count(panel.Control(IDC_POLICIES_MIN_ICON), STM_SETICON), 1);
    EXPECT_EQ(messages.Count(WM_SETTEXT), 0);
    // The icon may be drawn at once, without a message of its own; all else stays as it is.
    const HWND hIcon = panel.Control(IDC_POLICIES_MIN_ICON);
    EXPECT_EQ(messages.Count(WM_PAINT), messages.Count(hIcon, WM_PAINT));
    EXPECT_EQ(messages.Count(WM_ERASEBKGND), messages.Count(hIcon, WM_ERASEBKGND));
    messages.Clear();
    for (const HWND hLine : lines)
        InvalidateRect(hLine, nullptr, FALSE);
    DispatchAll();
    EXPECT_EQ(messages.Count(WM_PAINT), 12) << "paints are seen";
}

TEST_F(PoliciesDialog, HiddenLinesKeepTheirIcon) {
    const PwdRuleArgs rules = {0, 0, 0, 0, kNone, 8, 0};
    HostedPanel panel(&rules);
    const HWND hIcon = panel.Control(IDC_POLICIES_MIN_ICON);
    SendMessageA(hIcon, STM_SETICON,
                 reinterpret_cast<WPARAM>(LoadResourceIcon(IDI_RULE_VIOLATED, 16)), 0);
    MessageCounter messages({hIcon});
    panel.Check("", "1", "1", "1");
    EXPECT_EQ(messages.Count(STM_SETICON), 0);
    EXPECT_FALSE(IsWindowVisible(hIcon));
}

TEST_F(PoliciesDialog, CreationBorrowsTheResourceHandle) {
    const HINSTANCE before = AfxGetResourceHandle();
    EXPECT_NE(before, ResourceModule());
    HostedPanel panel(&kAllRules);
    EXPECT_EQ(AfxGetResourceHandle(), before);
    const RECT place = RectIn(panel.Host().m_hWnd, panel.Handle());
    EXPECT_EQ(place.left, 12);
    EXPECT_EQ(place.top, 34);
}

// The panel over a template that lacks a control, or in a resource module that lacks all strings.
class CIncompletePanel : public VKPoliciesDlg {
public:
    CIncompletePanel(CWnd* pHost, int nMissing)
        : VKPoliciesDlg(&kAllRules, 0, nullptr, pHost, 15, 0, 6), m_nMissing(nMissing) {}

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        if (m_nMissing == 0)
            FreeResourceModule();
        ::DestroyWindow(::GetDlgItem(m_hWnd, m_nMissing));
        VKPoliciesDlg::DoDataExchange(pDX);
    }

private:
    int m_nMissing;
};

class Host : public CWnd {
public:
    Host() {
        CreateEx(0, "STATIC", "host", WS_POPUP | WS_VISIBLE, 0, 0, 600, 500, nullptr, nullptr);
    }
};

TEST_F(PoliciesDialog, LivesWithMissingControls) {
    Host host;
    std::vector<int> controls = {IDC_POLICIES_BOX};
    for (const RuleLine& line : kRuleLines)
        controls.insert(controls.end(), {line.nText, line.nIcon});
    for (const int nMissing : controls) {
        SCOPED_TRACE(nMissing);
        m_log.Clear();
        {
            // The line of success, which a whole panel has.
            HostedPanel whole(&kAllRules);
            EXPECT_TRUE(m_log.Contains(16, "VKPoliciesDlg::PutPoliciesInBox"));
            m_log.Clear();
        }
        CIncompletePanel panel(&host, nMissing);
        ASSERT_NE(panel.LocCreate(&host), 0);
        EXPECT_FALSE(m_log.Contains(16, "VKPoliciesDlg::PutPoliciesInBox"));
        RECT whole = {0, 0, 236, 84};
        MapDialogRect(panel.m_hWnd, &whole);
        EXPECT_EQ(RectIn(host.m_hWnd, panel.m_hWnd).bottom, whole.bottom) << "left as it is";
        EXPECT_TRUE(panel.VerifyAndUpdatePolicies("1", "5838", "5838", "5838"));
        EXPECT_FALSE(panel.VerifyAndUpdatePolicies("1", "583", "5838", "5838"));
        for (const int nId : controls)
            EXPECT_EQ(IsWindowVisible(::GetDlgItem(panel.m_hWnd, nId)) != FALSE, nId != nMissing)
                << nId;
        panel.DestroyWindow();
    }
    // And without a window at all.
    VKPoliciesDlg panel(&kAllRules, 0, nullptr, &host, 15, 0, 6);
    EXPECT_TRUE(panel.VerifyAndUpdatePolicies("1", "5838", "5838", "5838"));
    EXPECT_FALSE(panel.VerifyAndUpdatePolicies("1", "5838", "5838", "583"));
}

TEST(PoliciesDialogWithoutPictures, ShowsNoneAndJudges) {
    Host host;
    // Made before the library has its resource module: no icon loads.
    CIncompletePanel panel(&host, 0);
    const AttachedLibrary library;
    ASSERT_NE(panel.LocCreate(&host), 0);
    EXPECT_EQ(panel.SendDlgItemMessage(IDC_POLICIES_BOX, WM_GETTEXTLENGTH), 0) << "as it was";
    for (const RuleLine& line : kRuleLines) {
        ::SetDlgItemTextA(panel.m_hWnd, line.nText, "before");
        panel.SendDlgItemMessage(line.nIcon, STM_SETICON,
                                 reinterpret_cast<WPARAM>(LoadIconA(nullptr, IDI_ERROR)));
    }
    EXPECT_TRUE(panel.VerifyAndUpdatePolicies("1", "5838", "5838", "5838"));
    EXPECT_FALSE(panel.VerifyAndUpdatePolicies("1", "583", "5838", "5838"));
    for (const RuleLine& line : kRuleLines) {
        EXPECT_EQ(panel.SendDlgItemMessage(line.nText, WM_GETTEXTLENGTH), 0) << line.pszName;
        EXPECT_EQ(panel.SendDlgItemMessage(line.nIcon, STM_GETICON), 0) << line.pszName;
        EXPECT_TRUE(IsWindowVisible(::GetDlgItem(panel.m_hWnd, line.nIcon))) << line.pszName;
    }
}

TEST_F(PoliciesDialog, WithoutMemoryNoPinIsGood) {
    HostedPanel panel(&kAllRules);
    FailingHeap heap("dlgfw.dll");
    int nStopped = 0;
    bool bRefused = true;
    for (int i = 0; bRefused; ++i) {
        CString pins[] = {"1", "5838", "5838", "5838"};
        m_log.Clear();
        heap.FailAt(i);
        const bool bVerdict = panel.Panel().VerifyAndUpdatePolicies(
            std::move(pins[0]), std::move(pins[1]), std::move(pins[2]), std::move(pins[3]));
        bRefused = heap.Stop();
        // What fails in the painting alone changes no verdict.
        const bool bStopped =
            m_log.Contains(1, "VKPoliciesDlg::VerifyAndUpdatePolicies: exception");
        nStopped += bStopped ? 1 : 0;
        EXPECT_EQ(bVerdict, !bStopped) << i;
        EXPECT_EQ(std::ranges::count(m_log.Texts(16), "CBaseDialog::HidePinFromMemory"), 4);
    }
    EXPECT_GT(nStopped, 6) << "a text for each line, and more";
}

}  // namespace
}  // namespace mvp::test
