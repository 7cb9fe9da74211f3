// The change-PIN dialogs when something is missing: controls of their templates, their panel,
// memory. And that a dialog which moves takes its balloon down.
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>
#include <vkevtsub/vkevtsub.h>

#include "dialogs/pin/change_pin_main_dialog.h"
#include "mvpingui/change_pin_dialog.h"
#include "mvpingui/policies_dialog.h"
#include "resources/resource_numbers.h"
#include "services/resource_module.h"
#include "support/dialog_driver.h"
#include "support/failing_heap.h"
#include "support/log_recorder.h"
#include "ui/dialogs/attached_library.h"

namespace mvp::test {
namespace {

constexpr int kCurrent = IDC_CHANGE_PIN_PANEL_CURRENT_EDIT;
constexpr int kNew = IDC_CHANGE_PIN_PANEL_NEW_EDIT;
constexpr int kConfirm = IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT;
constexpr PwdRuleArgs kRules = {0, 1, 1, 1, 4, 8, 0};
constexpr PwdRuleArgs kMandatory = {0, 1, 1, 1, 4, 8, 1};

class ChangePinFaults : public testing::Test {
protected:
    AttachedLibrary m_library;
    LogRecorder m_log;
};

// The library's dialog over a template that lacks a control; 0: in a resource module without the
// panel.
class CIncompleteMain : public CChangePINDialogMain {
public:
    explicit CIncompleteMain(int nMissing, const PwdRuleArgs& rules = kRules,
                             const char* pszReader = "Reader A")
        : CChangePINDialogMain(&rules, 0, true, nullptr, 15, 0, 6, pszReader),
          m_nMissing(nMissing) {}

protected:
    BOOL OnInitDialog() override {
        ::DestroyWindow(::GetDlgItem(m_hWnd, m_nMissing));
        if (m_nMissing == 0)
            FreeResourceModule();
        return CChangePINDialogMain::OnInitDialog();
    }

private:
    int m_nMissing;
};

void SendCommand(Dialog& d, int nId) {
    d.Run([&] { SendMessageA(d.Handle(), WM_COMMAND, static_cast<WPARAM>(nId), 0); });
}

TEST_F(ChangePinFaults, MissingControlsOfTheFrameForbidNothingElse) {
    for (const int nMissing : {IDOK, IDCANCEL, IDC_CHANGE_PIN_MAIN_PANEL_PLACE}) {
        for (const bool bConfirm : {true, false}) {
            SCOPED_TRACE(std::to_string(nMissing) + (bConfirm ? " confirmed" : " cancelled"));
            CIncompleteMain dialog(nMissing);
            DialogDriver driver([&](Dialog& d) {
                d.Type(kCurrent, "1234");
                d.Type(kNew, "5838");
                d.Type(kConfirm, "583");
                SendCommand(d, IDOK);
                EXPECT_TRUE(d.IsOpen()) << "the verdict counts, button or none";
                d.Type(kConfirm, "8");
                SendCommand(d, bConfirm ? IDOK : IDCANCEL);
            });
            EXPECT_EQ(dialog.DoModal(), bConfirm ? IDOK : IDCANCEL);
            driver.Join();
            EXPECT_STREQ(dialog.Panel()->NewPin(), "5838");
        }
    }
}

TEST_F(ChangePinFaults, WithoutItsPanelTheFrameCanOnlyBeLeft) {
    CIncompleteMain dialog(0, kMandatory);
    DialogDriver driver([&](Dialog& d) {
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Run([&] { EnableWindow(d.Control(IDOK), TRUE); });
        SendCommand(d, IDOK);
        EXPECT_TRUE(d.IsOpen());
        d.Click(IDCANCEL);
    });
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_TRUE(m_log.Contains(1, "CChangePINDialogMain: the panel could not be created"));
}

// A host's window with an OK button.
class CHost : public CWnd {
public:
    CHost() {
        CreateEx(0, "STATIC", "host", WS_POPUP | WS_VISIBLE, 0, 0, 600, 400, nullptr, nullptr);
        m_ok.CreateEx(0, "BUTTON", "OK", WS_CHILD, 5, 350, 90, 30, m_hWnd, nullptr);
    }
    CButton m_ok;
};

class CIncompletePanel : public CChangePINDialog {
public:
    CIncompletePanel(CHost& host, int nMissing)
        : CChangePINDialog(0, 0, true, nullptr, &kRules, &host.m_ok, &host, 15, 0, 6),
          m_nMissing(nMissing) {}

protected:
    void DoDataExchange(CDataExchange* pDX) override {
        ::DestroyWindow(::GetDlgItem(m_hWnd, m_nMissing));
        CChangePINDialog::DoDataExchange(pDX);
    }

private:
    int m_nMissing;
};

void Enter(const CWnd& panel, const char* pszConfirm = "5838") {
    ::SetDlgItemTextA(panel.m_hWnd, kCurrent, "1234");
    ::SetDlgItemTextA(panel.m_hWnd, kNew, "5838");
    ::SetDlgItemTextA(panel.m_hWnd, kConfirm, pszConfirm);
}

TEST_F(ChangePinFaults, PanelNeedsItsEditsAndNothingElse) {
    CHost host;
    for (const int nMissing : {IDC_CHANGE_PIN_PANEL_CURRENT_LABEL, IDC_CHANGE_PIN_PANEL_NEW_LABEL,
                               IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL, IDC_CHANGE_PIN_PANEL_INSTRUCTION,
                               IDC_CHANGE_PIN_PANEL_POLICIES_PLACE}) {
        SCOPED_TRACE(nMissing);
        CIncompletePanel panel(host, nMissing);
        ASSERT_NE(panel.LocCreate(&host), 0);
        Enter(panel, "583");
        EXPECT_FALSE(host.m_ok.IsWindowEnabled());
        EXPECT_FALSE(panel.ReadAndCheck());
        Enter(panel);
        EXPECT_TRUE(host.m_ok.IsWindowEnabled());
        EXPECT_TRUE(panel.ReadAndCheck());
        ::SetDlgItemTextA(panel.m_hWnd, kCurrent, "");
        EXPECT_FALSE(panel.ReadAndCheck());
    }
    for (const int nMissing : {kCurrent, kNew, kConfirm}) {
        SCOPED_TRACE(nMissing);
        host.m_ok.EnableWindow(TRUE);
        CIncompletePanel panel(host, nMissing);
        EXPECT_EQ(panel.LocCreate(&host), 0);
        EXPECT_FALSE(host.m_ok.IsWindowEnabled());
        EXPECT_FALSE(panel.ReadAndCheck());
    }
    CChangePINDialog windowless(0, 0, false, nullptr, nullptr, nullptr, &host, 0, 0, 0);
    EXPECT_FALSE(windowless.ReadAndCheck()) << "though no rule forbids two empty PINs";
}

TEST_F(ChangePinFaults, WithoutMemoryNothingIsHandedOut) {
    CHost host;
    CIncompletePanel panel(host, 0);
    ASSERT_NE(panel.LocCreate(&host), 0);
    FailingHeap heap("dlgfw.dll");
    CString value;
    // What a host calls, and what the edits do.
    const auto change = [&panel](int nEdit) {
        panel.SendMessage(WM_COMMAND, MAKEWPARAM(nEdit, EN_CHANGE),
                          reinterpret_cast<LPARAM>(::GetDlgItem(panel.m_hWnd, nEdit)));
        return true;
    };
    const struct {
        const char* pszWhat;
        std::function<bool()> act;
    } acts[] = {
        {"ReadAndCheck", [&] { return panel.ReadAndCheck(); }},
        {"VerifyAndUpdateAllPolicies",
         [&] { return panel.VerifyAndUpdateAllPolicies(std::move(value)); }},
        {"current", [&] { return change(kCurrent); }},
        {"new", [&] { return change(kNew); }},
        {"confirmation", [&] { return change(kConfirm); }},
    };
    for (const auto& each : acts) {
        int nStopped = 0;
        bool bRefused = true;
        for (int i = 0; bRefused; ++i) {
            SCOPED_TRACE(each.pszWhat + std::to_string(i));
            Enter(panel);
            ASSERT_TRUE(host.m_ok.IsWindowEnabled());
            value = "5838";
            m_log.Clear();
            heap.FailAt(i);
            const bool bResult = each.act();
            bRefused = heap.Stop();
            // Where what fails is painting alone, everything else is as it should be.
            const bool bStopped = std::ranges::any_of(m_log.Texts(1), [](const std::string& line) {
                return line.find("Dlg::") != std::string::npos ||
                       line.find("Dialog::") != std::string::npos;
            });
            nStopped += bStopped ? 1 : 0;
            // What a reading of the edits was stopped in leaves nothing half read.
            const bool bLost = std::ranges::any_of(m_log.Texts(1), [](const std::string& line) {
                return line.find("::OnEnChange") != std::string::npos ||
                       line.find("::ReadAndCheck") != std::string::npos;
            });
            EXPECT_TRUE(!bLost || (panel.CurrentPin().IsEmpty() && panel.NewPin().IsEmpty()));
            EXPECT_EQ(host.m_ok.IsWindowEnabled() != FALSE, !bStopped) << m_log.Dump();
            EXPECT_TRUE(bResult || bStopped);
        }
        EXPECT_GT(nStopped, 6) << each.pszWhat;
    }
}

TEST_F(ChangePinFaults, WithoutMemoryForTheWatchTheDialogJustStays) {
    const std::string strReader(3000, 'r');
    CIncompleteMain dialog(-1, kRules, strReader.c_str());
    FailingHeap heap("dlgfw.dll");
    DialogDriver driver([&](Dialog& d) {
        VKRaiseEvent(VKEVENT_CARD_REMOVED, "Reader A");
        EXPECT_EQ(VKWaitForIdle(10'000), VKEVTSUB_OK);
        d.Settle();
        EXPECT_TRUE(d.IsOpen());
        d.Escape();
    });
    heap.FailAt(0, strReader.size());
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_TRUE(heap.Stop());
    EXPECT_EQ(m_log.Texts(1),
              std::vector<std::string>{"VKDelegateSubscriberCardRemoved Constructor: exception"});
    EXPECT_TRUE(m_log.Contains(16, "CChangePINDialogMain::OnInitDialog"));
}

// A panel of a host that watches what leaves the library's members.
template <class Panel>
class CWatchful : public Panel {
public:
    using Panel::Panel;
    bool m_bCrossed = false;
    bool m_bThrows = false;

protected:
    BOOL OnInitDialog() override {
        try {
            return Panel::OnInitDialog();
        } catch (...) {
            m_bCrossed = true;
            return FALSE;
        }
    }
    // Runs when a window could not be created at all, outside of any message.
    void PostNcDestroy() override {
        if (m_bThrows)
            throw std::runtime_error("a host's fault");
    }
};

template <class Panel>
void ExpectCreationStopsExceptions(const std::function<std::unique_ptr<CWatchful<Panel>>()>& make,
                                   CHost& host, LogRecorder& log, const std::string& strClass) {
    log.Clear();
    FailingHeap heap("dlgfw.dll");
    bool bRefused = true;
    for (int i = 0; bRefused; ++i) {
        const auto panel = make();
        heap.FailAt(i);
        const int nCreated = panel->LocCreate(&host);
        bRefused = heap.Stop();
        EXPECT_FALSE(panel->m_bCrossed) << i;
        EXPECT_TRUE(nCreated != 0 || bRefused) << i;
    }
    EXPECT_TRUE(log.Contains(1, strClass + "::OnInitDialog: exception"));
    CWnd gone;
    gone.m_hWnd = reinterpret_cast<HWND>(INT_PTR{0x7FFFFFF0});
    const auto panel = make();
    panel->m_bThrows = true;
    EXPECT_EQ(panel->LocCreate(&gone), 0);
    panel->m_bThrows = false;
    gone.m_hWnd = nullptr;
    EXPECT_TRUE(log.Contains(1, "CBaseDialog::CreateFromResourceModule: exception"));
}

TEST_F(ChangePinFaults, CreationLetsNoExceptionOut) {
    CHost host;
    ExpectCreationStopsExceptions<VKPoliciesDlg>(
        [&] {
            return std::make_unique<CWatchful<VKPoliciesDlg>>(&kRules, 0, nullptr, &host, 15, 0, 6);
        },
        host, m_log, "VKPoliciesDlg");
    ExpectCreationStopsExceptions<CChangePINDialog>(
        [&] {
            return std::make_unique<CWatchful<CChangePINDialog>>(0, 0, true, nullptr, &kRules,
                                                                 &host.m_ok, &host, 15, 0, 6);
        },
        host, m_log, "CChangePINDialog");
}

// Whether this thread shows a balloon.
bool IsBalloonUp() {
    bool bUp = false;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND hWnd, LPARAM lUp) -> BOOL {
            char className[32] = "";
            GetClassNameA(hWnd, className, sizeof className);
            if (IsWindowVisible(hWnd) && std::string(className) == TOOLTIPS_CLASSA)
                *reinterpret_cast<bool*>(lUp) = true;
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&bUp));
    return bUp;
}

TEST_F(ChangePinFaults, WhatMovesTakesItsBalloonDown) {
    for (const bool bFrame : {true, false}) {
        CIncompleteMain dialog(-1);
        DialogDriver driver([&](Dialog& d) {
            const auto isUp = [&d] {
                bool bUp = false;
                d.Run([&bUp] { bUp = IsBalloonUp(); });
                return bUp;
            };
            BYTE keys[256] = {};
            d.Run([&] {
                GetKeyboardState(keys);
                BYTE capsLock[256] = {};
                capsLock[VK_CAPITAL] = 1;
                SetKeyboardState(capsLock);
                auto* pEdit =
                    dynamic_cast<CCapsLockSensitiveEdit*>(CWnd::FromHandle(d.Control(kCurrent)));
                ASSERT_NE(pEdit, nullptr);
                pEdit->CheckCapsLockMessage();
            });
            d.WaitUntil("the balloon", isUp);
            m_log.Clear();
            d.Run([&] {
                const HWND hMoved = bFrame ? d.Handle() : GetParent(d.Control(kCurrent));
                SetWindowPos(hMoved, nullptr, 3, 3, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
                SetKeyboardState(keys);
            });
            EXPECT_FALSE(isUp()) << bFrame;
            EXPECT_EQ(m_log.Contains(16, "CChangePINDialogMain::OnMove"), bFrame);
            EXPECT_EQ(m_log.Contains(16, "CChangePINDialog::OnMove"), !bFrame);
            EXPECT_TRUE(m_log.Contains(16, "CChangePINDialog::ResetToolTip"));
            d.Escape();
        });
        EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    }
}

}  // namespace
}  // namespace mvp::test
