// The change-PIN dialogs when something is missing: controls of their templates, their panel,
// memory.
#include <algorithm>
#include <utility>

#include "dialogs/pin/change_pin_main_dialog.h"
#include "mvpingui/change_pin_dialog.h"
#include "mvpingui/policies_dialog.h"
#include "support/failing_heap.h"
#include "ui/dialogs/library_test.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

using ChangePinFaults = LibraryTest;
constexpr int kNothing = -1;

class IncompleteMain : public Incomplete<CChangePINDialogMain> {
public:
    explicit IncompleteMain(int nMissing, const PwdRuleArgs& rules = kAllRules)
        : Incomplete(nMissing, &rules, 0, true, nullptr, 15, 0, 6, "Reader A") {}
};

class IncompletePanel : public Incomplete<CChangePINDialog> {
public:
    IncompletePanel(HostWindow& host, int nMissing)
        : Incomplete(nMissing, 0, 0, true, nullptr, &kAllRules, &host.m_ok, &host, 15, 0, 6) {}
};

TEST_F(ChangePinFaults, MissingControlsOfTheFrameForbidNothingElse) {
    for (const int missing : {IDOK, IDCANCEL, IDC_CHANGE_PIN_MAIN_PANEL_PLACE}) {
        for (const int end : {IDOK, IDCANCEL}) {
            SCOPED_TRACE(std::to_string(missing) + " ended by " + std::to_string(end));
            IncompleteMain dialog(missing);
            const auto enter = [&](Dialog& d) {
                TypePins(d, "1234", "5838", "583");
                d.Run([&] { SendCommand(d, IDOK); });
                EXPECT_TRUE(d.IsOpen()) << "the verdict counts, button or none";
                d.Type(kConfirm, "8");
                d.Run([&] { SendCommand(d, end); });
            };
            EXPECT_EQ(Open(dialog, {enter}), end);
            EXPECT_STREQ(dialog.Panel()->NewPin(), "5838");
        }
    }
}

TEST_F(ChangePinFaults, WithoutItsPanelTheFrameCanOnlyBeLeft) {
    PwdRuleArgs mandatory = kAllRules;
    mandatory.bCancelDisabled = 1;
    IncompleteMain dialog(0, mandatory);
    const DialogDriver driver([](Dialog& d) {
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Run([&] {
            EnableWindow(d.Control(IDOK), TRUE);
            SendCommand(d, IDOK);
        });
        EXPECT_TRUE(d.IsOpen());
        d.Click(IDCANCEL);
    });
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_TRUE(m_log.Contains(1, "CChangePINDialogMain: the panel could not be created"));
}

TEST_F(ChangePinFaults, PanelNeedsItsEditsAndNothingElse) {
    HostWindow host;
    for (const int missing : {IDC_CHANGE_PIN_PANEL_CURRENT_LABEL, IDC_CHANGE_PIN_PANEL_NEW_LABEL,
                              IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL, IDC_CHANGE_PIN_PANEL_INSTRUCTION,
                              IDC_CHANGE_PIN_PANEL_POLICIES_PLACE, kCurrent, kNew, kConfirm}) {
        SCOPED_TRACE(missing);
        host.m_ok.EnableWindow(TRUE);
        IncompletePanel panel(host, missing);
        const bool made = panel.LocCreate(&host) != 0;
        EXPECT_EQ(made, missing != kCurrent && missing != kNew && missing != kConfirm);
        EXPECT_FALSE(host.m_ok.IsWindowEnabled());
        EXPECT_FALSE(panel.ReadAndCheck());
        if (!made) {
            continue;
        }
        SetPins(panel.m_hWnd, "1234", "5838", "583");
        EXPECT_FALSE(host.m_ok.IsWindowEnabled());
        EXPECT_FALSE(panel.ReadAndCheck());
        SetPins(panel.m_hWnd, "1234", "5838", "5838");
        EXPECT_TRUE(host.m_ok.IsWindowEnabled());
        EXPECT_TRUE(panel.ReadAndCheck());
        ::SetDlgItemTextA(panel.m_hWnd, kCurrent, "");
        EXPECT_FALSE(panel.ReadAndCheck());
    }
    CChangePINDialog windowless(0, 0, false, nullptr, nullptr, nullptr, &host, 0, 0, 0);
    EXPECT_FALSE(windowless.ReadAndCheck()) << "though no rule forbids two empty PINs";
}

TEST_F(ChangePinFaults, WithoutMemoryNothingIsHandedOut) {
    HostWindow host;
    IncompletePanel panel(host, kNothing);
    ASSERT_NE(panel.LocCreate(&host), 0);
    FailingHeap heap("dlgfw.dll");
    CString value;
    // What the edits do, and what a host calls.
    const auto act = [&](int n) {
        if (n < 3) {
            const int edit = n == 0 ? kCurrent : n == 1 ? kNew : kConfirm;
            panel.SendMessage(WM_COMMAND, MAKEWPARAM(edit, EN_CHANGE),
                              reinterpret_cast<LPARAM>(::GetDlgItem(panel.m_hWnd, edit)));
            return true;
        }
        return n == 3 ? panel.ReadAndCheck() : panel.VerifyAndUpdateAllPolicies(std::move(value));
    };
    for (int n = 0; n < 5; ++n) {
        int stops = 0;
        bool refused = true;
        for (int i = 0; refused; ++i) {
            SCOPED_TRACE(std::to_string(n) + " " + std::to_string(i));
            SetPins(panel.m_hWnd, "1234", "5838", "5838");
            ASSERT_TRUE(host.m_ok.IsWindowEnabled());
            value = "5838";
            m_log.Clear();
            heap.FailAt(i);
            const bool result = act(n);
            refused = heap.Stop();
            std::string errors;
            for (const std::string& line : m_log.Texts(1)) {
                errors += line;
            }
            const auto hasError = [&](const char* pszPart) {
                return errors.find(pszPart) != std::string::npos;
            };
            // Where what fails is painting alone, everything else is as it should be.
            const bool stopped = hasError("Dlg::") || hasError("Dialog::");
            stops += stopped ? 1 : 0;
            // What a reading of the edits was stopped in leaves nothing half read.
            EXPECT_TRUE(!(hasError("::OnEnChange") || hasError("::ReadAndCheck")) ||
                        (panel.CurrentPin().IsEmpty() && panel.NewPin().IsEmpty()));
            EXPECT_EQ(host.m_ok.IsWindowEnabled() != FALSE, !stopped) << m_log.Dump();
            EXPECT_TRUE(result || stopped);
        }
        EXPECT_GT(stops, 6) << n;
    }
}

TEST_F(ChangePinFaults, InitialisationLetsNoExceptionOut) {
    HostWindow host;
    FailingHeap heap("dlgfw.dll");
    bool refused = true;
    const auto createWithoutMemory = [&](auto& panel, int nAllocation) {
        heap.FailAt(nAllocation);
        const bool created = panel.LocCreate(&host) != 0;
        const bool isShort = heap.Stop();
        EXPECT_TRUE(created || isShort) << nAllocation;
        refused = refused || isShort;
    };
    for (int i = 0; std::exchange(refused, false); ++i) {
        VKPoliciesDlg lines(&kAllRules, 0, nullptr, &host, 15, 0, 6);
        CChangePINDialog panel(0, 0, true, nullptr, &kAllRules, &host.m_ok, &host, 15, 0, 6);
        createWithoutMemory(lines, i);
        createWithoutMemory(panel, i);
    }
    EXPECT_TRUE(m_log.Contains(1, "VKPoliciesDlg::OnInitDialog: exception"));
    EXPECT_TRUE(m_log.Contains(1, "CChangePINDialog::OnInitDialog: exception"));
    EXPECT_FALSE(m_log.ContainsPart("handler of message 0x110")) << "left to the framework";
}

}  // namespace
}  // namespace mvp::test
