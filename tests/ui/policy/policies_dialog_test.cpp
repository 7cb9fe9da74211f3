// VKPoliciesDlg: what it shows, in which order, and that it keeps still when nothing changes.
#include "mvpingui/policies_dialog.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "common/accessible.h"
#include "support/failing_heap.h"
#include "support/waiting.h"
#include "ui/policy/rule_panel.h"

namespace mvp::test {
namespace {

using PoliciesDialog = LibraryTest;
constexpr std::uint32_t kNone = MVP_NO_PIN_LENGTH_RULE;
constexpr PwdRuleArgs kAllRules = {0xDEAD, 1, 0x80000000, 2, 4, 8, 1};

// The messages that have reached watched windows of this thread.
std::vector<std::pair<HWND, UINT>> g_seen;

LRESULT CALLBACK See(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam, UINT_PTR /*nId*/,
                     DWORD_PTR /*nData*/) {
    g_seen.emplace_back(hWnd, nMessage);
    return DefSubclassProc(hWnd, nMessage, wParam, lParam);
}

// Those of one window, or of all.
std::ptrdiff_t Seen(UINT nMessage, HWND hWnd = nullptr) {
    return std::ranges::count_if(g_seen, [=](const std::pair<HWND, UINT>& seen) {
        return seen.second == nMessage && (hWnd == nullptr || seen.first == hWnd);
    });
}

TEST_F(PoliciesDialog, LogTellsTheCheckingOrder) {
    const PwdRuleArgs only = {0, 0, 0, 0, kNone, kNone, 0};
    // Every rule is gone through, in force or not, met or not; the predicates and the icons of
    // those in force alone.
    for (const bool all : {true, false}) {
        HostedPanel panel(all ? &kAllRules : &only);
        m_log.Clear();
        panel.Check("old", "val", "new", "other");
        const char* const set = all ? "{VKPoliciesDlg::SetPolicyIcon{} } " : "{} ";
        const char* const hidden = "CBaseDialog::HidePinFromMemory{} ";
        std::string expected =
            "VKPoliciesDlg::VerifyAndUpdatePolicies{0 csOldValue: old; 0 csValue: val; "
            "0 csNewValue: new; ";
        for (const char* part :
             {"VKPoliciesDlg::SetMinPINLen", set, "VKPoliciesDlg::SetMaxPINLen", set,
              "VKPoliciesDlg::SetPreventSamePIN", set, all ? "VKPoliciesDlg::IsPinWeak{} " : "",
              "VKPoliciesDlg::SetWeakPIN", set, all ? "VKPoliciesDlg::IsAlphaPinWeak{} " : "",
              "VKPoliciesDlg::SetAlphaPIN", set,
              "VKPoliciesDlg::SetConfirmPIN{VKPoliciesDlg::SetPolicyIcon{} } ", hidden, hidden,
              hidden, hidden, "} "}) {
            expected += part;
        }
        EXPECT_EQ(LogShape(), expected);
    }
}

// What each rule looks at; what it makes of it, the checker's own tests hold.
TEST_F(PoliciesDialog, EachRuleLooksAtItsOwnText) {
    const struct {
        const PwdRuleArgs* pRules;
        const char *pszOld, *pszValue, *pszNew, *pszConfirm;
        std::string strLines;
    } cases[] = {
        {&kAllRules, "1", "9", "5838x5838", "5838x5838", "vsvsss"},
        {&kAllRules, "1", "5838x5838", "9", "9", "svssvs"},
        {&kAllRules, "new", "5838", "new", "5838", "sssvsv"},
        {&kAllRules, "1", "58385838", "2", "2", "ssssss"},
        {nullptr, "1", "1", "1", "1", "-----s"},
        {nullptr, "1", "1", "1", "2", "-----v"},
    };
    for (const auto& c : cases) {
        HostedPanel panel(c.pRules);
        const bool verdict = panel.Check(c.pszOld, c.pszValue, c.pszNew, c.pszConfirm);
        EXPECT_EQ(panel.Lines(), c.strLines);
        EXPECT_EQ(verdict, c.strLines.find('v') == std::string::npos) << c.strLines;
    }
}

TEST_F(PoliciesDialog, LinesShowTheirTexts) {
    HostedPanel panel(&kAllRules);
    EXPECT_EQ(RectIn(panel.Host().m_hWnd, panel.Handle()).TopLeft(), CPoint(12, 34));
    EXPECT_EQ(panel.Text(IDC_POLICIES_BOX), std::string(ResourceString(IDS_POLICIES_BOX)));
    // Until the first check nothing shows.
    EXPECT_FALSE(IsWindowVisible(panel.Handle()));
    EnableWindow(panel.Control(IDC_POLICIES_BOX), FALSE);
    panel.Check("", "", "", "");
    EXPECT_TRUE(IsWindowVisible(panel.Handle()));
    EXPECT_TRUE(IsWindowEnabled(panel.Control(IDC_POLICIES_BOX)));
    EXPECT_EQ(panel.Text(IDC_POLICIES_MIN_TEXT), "Minimum length: 4");
    EXPECT_EQ(panel.Text(IDC_POLICIES_MAX_TEXT), "Maximum length: 8");
    for (std::size_t i = 2; i < kRuleLines.size(); ++i) {
        EXPECT_EQ(panel.Text(kRuleLines[i].nText),
                  std::string(ResourceString(kRuleLines[i].nString)));
        EXPECT_FALSE(panel.Text(kRuleLines[i].nText).empty());
    }
}

TEST_F(PoliciesDialog, KeepsStillWhenNothingChanges) {
    HostedPanel panel(&kAllRules);
    panel.Check("1234", "58", "58", "58");
    std::vector<HWND> watched = {panel.Handle(), panel.Control(IDC_POLICIES_BOX),
                                 panel.Host().m_hWnd};
    for (const RuleLine& line : kRuleLines) {
        watched.insert(watched.end(), {panel.Control(line.nText), panel.Control(line.nIcon)});
    }
    for (const HWND each : watched) {
        SetWindowSubclass(each, &See, 0, 0);
    }
    DispatchAll();
    g_seen.clear();

    panel.Check("1234", "58", "58", "58");
    DispatchAll();
    for (const UINT message :
         {UINT{STM_SETICON}, UINT{WM_SETTEXT}, UINT{WM_PAINT}, UINT{WM_ERASEBKGND},
          UINT{WM_NCPAINT}, UINT{WM_SHOWWINDOW}, UINT{WM_WINDOWPOSCHANGED}}) {
        EXPECT_EQ(Seen(message), 0) << message;
    }
    // The counter does count.
    const HWND icon = panel.Control(IDC_POLICIES_MIN_ICON);
    EXPECT_EQ(Seen(STM_GETICON, icon), 1);

    // One rule changes its state: its icon is drawn, and no other line.
    panel.Check("1234", "5838", "5838", "5838");
    g_seen.clear();
    panel.Check("1234", "583", "583", "583");
    DispatchAll();
    EXPECT_EQ(Seen(STM_SETICON), 1);
    EXPECT_EQ(Seen(STM_SETICON, icon), 1);
    EXPECT_EQ(Seen(WM_SETTEXT), 0);
    // The icon may be drawn at once, without a message of its own; all else stays as it is.
    EXPECT_EQ(Seen(WM_PAINT), Seen(WM_PAINT, icon));
    EXPECT_EQ(Seen(WM_ERASEBKGND), Seen(WM_ERASEBKGND, icon));
    g_seen.clear();
    InvalidateRect(icon, nullptr, FALSE);
    DispatchAll();
    EXPECT_EQ(Seen(WM_PAINT), 1) << "paints are seen";
}

std::vector<HWND> g_renamed;

void CALLBACK OnRenamed(HWINEVENTHOOK, DWORD, HWND hWnd, LONG nObject, LONG nChild, DWORD, DWORD) {
    EXPECT_EQ(nObject, OBJID_CLIENT);
    EXPECT_EQ(nChild, CHILDID_SELF);
    g_renamed.push_back(hWnd);
}

TEST_F(PoliciesDialog, ScreenReaderHearsWhetherARuleIsMet) {
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    Accessible line;
    {
        HostedPanel panel(&kAllRules);
        EXPECT_EQ(Control::Of(panel.Handle()).strText, panel.Text(IDC_POLICIES_BOX));
        panel.Check("1234", "583", "583", "583");
        const HWND text = panel.Control(IDC_POLICIES_MIN_TEXT);
        line = Accessible::Of(text);
        EXPECT_EQ(line.Number(&IAccessible::get_accRole, Child(0)), ROLE_SYSTEM_STATICTEXT);
        EXPECT_EQ(SendMessageA(text, WM_GETOBJECT, 0, OBJID_WINDOW), 0) << "of its frame";
        const auto name = [&] { return line.Text(&IAccessible::get_accName, 0); };
        EXPECT_EQ(name(), "Minimum length: 4, not met");
        const HWINEVENTHOOK hook =
            SetWinEventHook(EVENT_OBJECT_NAMECHANGE, EVENT_OBJECT_NAMECHANGE, nullptr, &OnRenamed,
                            GetCurrentProcessId(), 0, WINEVENT_OUTOFCONTEXT);
        panel.Check("1234", "583", "583", "583");
        panel.Host().ShowWindow(SW_HIDE);  // nobody is told of what cannot be seen
        panel.Check("1234", "5838", "5838", "5838");
        panel.Check("1234", "583", "583", "583");
        panel.Host().ShowWindow(SW_SHOW);
        panel.Check("1234", "5838", "5838", "5838");
        EXPECT_TRUE(PumpUntil([] { return !g_renamed.empty(); }));
        EXPECT_EQ(g_renamed, std::vector{text}) << "the one that has turned";
        EXPECT_EQ(name(), "Minimum length: 4, met");
        UnhookWinEvent(hook);
    }
    BSTR gone = nullptr;
    EXPECT_EQ(line.get()->get_accName(Child(0), &gone), CO_E_OBJNOTCONNECTED);
    line.reset();
    CoUninitialize();
}

class IncompletePanel : public Incomplete<VKPoliciesDlg> {
public:
    IncompletePanel(CWnd* pHost, int nMissing)
        : Incomplete(nMissing, &kAllRules, 0, nullptr, pHost, 15, 0, 6) {}
};

void ExpectJudges(VKPoliciesDlg& panel) {
    EXPECT_TRUE(panel.VerifyAndUpdatePolicies("1", "5838", "5838", "5838"));
    EXPECT_FALSE(panel.VerifyAndUpdatePolicies("1", "583", "5838", "5838"));
}

TEST_F(PoliciesDialog, LivesWithMissingControls) {
    HostWindow host;
    std::vector<int> controls = {IDC_POLICIES_BOX};
    for (const RuleLine& line : kRuleLines) {
        controls.insert(controls.end(), {line.nText, line.nIcon});
    }
    constexpr char kDone[] = "VKPoliciesDlg::PutPoliciesInBox";
    const HostedPanel whole(&kAllRules);
    EXPECT_TRUE(m_log.Contains(16, kDone));
    for (const int missing : controls) {
        SCOPED_TRACE(missing);
        m_log.Clear();
        IncompletePanel panel(&host, missing);
        ASSERT_NE(panel.LocCreate(&host), 0);
        EXPECT_FALSE(m_log.Contains(16, kDone));
        RECT untouched = {0, 0, 236, 84};
        MapDialogRect(panel.m_hWnd, &untouched);
        EXPECT_EQ(RectIn(host.m_hWnd, panel.m_hWnd).bottom, untouched.bottom) << "left as it is";
        ExpectJudges(panel);
        for (const int id : controls) {
            EXPECT_EQ(IsWindowVisible(::GetDlgItem(panel.m_hWnd, id)) != FALSE, id != missing)
                << id;
        }
        panel.DestroyWindow();
    }
    // And without a window at all.
    VKPoliciesDlg windowless(&kAllRules, 0, nullptr, &host, 15, 0, 6);
    ExpectJudges(windowless);
}

TEST(PoliciesDialogWithoutPictures, ShowsNoneAndJudges) {
    HostWindow host;
    // Made before the library has its resource module: no icon loads.
    IncompletePanel panel(&host, 0);
    const AttachedLibrary library;
    ASSERT_NE(panel.LocCreate(&host), 0);
    EXPECT_EQ(panel.SendDlgItemMessage(IDC_POLICIES_BOX, WM_GETTEXTLENGTH), 0) << "as it was";
    for (const RuleLine& line : kRuleLines) {
        ::SetDlgItemTextA(panel.m_hWnd, line.nText, "before");
        panel.SendDlgItemMessage(line.nIcon, STM_SETICON,
                                 reinterpret_cast<WPARAM>(LoadIconA(nullptr, IDI_ERROR)));
    }
    ExpectJudges(panel);
    for (const RuleLine& line : kRuleLines) {
        EXPECT_EQ(panel.SendDlgItemMessage(line.nText, WM_GETTEXTLENGTH), 0) << line.nText;
        EXPECT_EQ(panel.SendDlgItemMessage(line.nIcon, STM_GETICON), 0) << line.nIcon;
        EXPECT_TRUE(IsWindowVisible(::GetDlgItem(panel.m_hWnd, line.nIcon))) << line.nIcon;
    }
}

TEST_F(PoliciesDialog, WithoutMemoryNoPinIsGood) {
    FailingHeap heap("dlgfw.dll");
    int stops = 0;
    bool refused = true;
    for (int i = 0; refused; ++i) {
        HostedPanel panel(&kAllRules);
        CString pins[] = {"1", "5838", "5838", "5838"};
        m_log.Clear();
        heap.FailAt(i);
        const bool verdict = panel.Panel().VerifyAndUpdatePolicies(
            std::move(pins[0]), std::move(pins[1]), std::move(pins[2]), std::move(pins[3]));
        refused = heap.Stop();
        // What fails in the painting alone changes no verdict.
        const bool stopped = m_log.Contains(1, "VKPoliciesDlg::VerifyAndUpdatePolicies: exception");
        stops += stopped ? 1 : 0;
        EXPECT_EQ(verdict, !stopped) << i;
        EXPECT_EQ(std::ranges::count(m_log.Texts(16), "CBaseDialog::HidePinFromMemory"), 4);
    }
    EXPECT_GT(stops, 6) << "a text for each line, and more";
}

void ExpectPacked(const HostedPanel& panel, unsigned nSubset, const PanelMargins& margins) {
    // Of the controls as the template has them.
    const auto left = [&](LONG nUnits) {
        CRect rect(nUnits, 0, 0, 0);
        MapDialogRect(panel.Handle(), &rect);
        return rect.left + margins.nIndent;
    };
    const CRect box = panel.RectOf(IDC_POLICIES_BOX);
    LONG y = box.top + margins.nTop + margins.nSpacing;
    for (std::size_t i = 0; i < kRuleLines.size(); ++i) {
        if (!IsInSubset(nSubset, i)) {
            continue;
        }
        const CRect text = panel.RectOf(kRuleLines[i].nText);
        const CRect icon = panel.RectOf(kRuleLines[i].nIcon);
        EXPECT_EQ(text.TopLeft(), CPoint(left(22), y));
        EXPECT_EQ(icon.TopLeft(), CPoint(left(7), y - 1));
        y = text.bottom + margins.nSpacing;
    }
    EXPECT_EQ(box.bottom, y) << "one spacing below the last line";
    CRect client;
    GetClientRect(panel.Handle(), &client);
    EXPECT_EQ(client.bottom, box.bottom) << "the panel ends with its box";
}

// Where the lines stand, for every subset of the rules, in longer texts and mirrored, too, with the
// margins of the library's dialogs; and with wide ones, which need more room than the template has.
TEST(PoliciesLayout, PacksEverySubset) {
    for (const char* language : {"en", "fr", "qps-ploc", "qps-plocm"}) {
        const AttachedLibrary library(language);
        const unsigned step = language[0] == 'q' ? 7 : 1;  // some of them, with none and all
        for (const PanelMargins& margins : {PanelMargins{15, 0, 6}, PanelMargins{10, 3, 6},
                                            PanelMargins{10, 20, 10}, PanelMargins{40, 0, 30}}) {
            for (unsigned subset = 0; subset < kRuleSubsets; subset += step) {
                SCOPED_TRACE(language + std::to_string(subset) + ", indent " +
                             std::to_string(margins.nIndent));
                const PwdRuleArgs rules = RulesOfSubset(subset);
                HostedPanel panel(&rules, margins);
                ExpectPacked(panel, subset, margins);
                panel.Check("", "", "", "");
                const std::string lines = panel.Lines();
                for (std::size_t i = 0; i < lines.size(); ++i) {
                    EXPECT_EQ(lines[i] != '-', IsInSubset(subset, i)) << lines;
                }
            }
        }
    }
}

}  // namespace
}  // namespace mvp::test
