// CChangePINDialog in windows of the host's own, and GetChangePINInfoFromUser reading it there.
#include <memory>
#include <string>
#include <vector>

#include <dlgfw/dlgfw.h>
#include <dlgfw/message_map.h>
#include <gtest/gtest.h>

#include "dialogs/pin/change_pin_panels.h"
#include "mvpingui/change_pin_dialog.h"
#include "resources/resource_numbers.h"
#include "services/resource_module.h"
#include "support/dialog_driver.h"
#include "support/dialog_template.h"
#include "support/log_recorder.h"
#include "support/registry_hive.h"
#include "ui/dialogs/attached_library.h"
#include "ui/dialogs/change_pin_request.h"
#include "ui/policy/rule_lines.h"

namespace mvp::test {
namespace {

constexpr int kCurrent = IDC_CHANGE_PIN_PANEL_CURRENT_EDIT;
constexpr int kNew = IDC_CHANGE_PIN_PANEL_NEW_EDIT;
constexpr int kConfirm = IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT;
constexpr int kHostOk = 77;
constexpr PwdRuleArgs kAllRules = {0xDEAD, 1, 1, 1, 4, 8, 1};

// A wide, low window with its OK button at the left.
class CHost : public CWnd {
public:
    CHost() {
        CreateEx(WS_EX_CONTROLPARENT, "STATIC", "host", WS_POPUP | WS_VISIBLE, 30, 40, 900, 330,
                 nullptr, nullptr);
        m_ok.CreateEx(0, "BUTTON", "Go on", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 5, 5, 90, 30,
                      m_hWnd, reinterpret_cast<HMENU>(INT_PTR{kHostOk}));
    }
    ~CHost() override {
        if (m_hWnd != nullptr)
            DestroyWindow();
    }

    CButton m_ok;
};

std::unique_ptr<CChangePINDialog> Embed(CWnd& host, CButton* pOk, bool bAskCurrentPin = true,
                                        const PwdRuleArgs* pRules = &kAllRules) {
    const RECT place = {150, 20, 0, 0};
    auto panel = std::make_unique<CChangePINDialog>(99, 0, bAskCurrentPin, &place, pRules, pOk,
                                                    &host, 15, 0, 6);
    EXPECT_NE(panel->LocCreate(&host), 0);
    panel->ShowWindow(SW_SHOW);
    return panel;
}

void Enter(const CChangePINDialog& panel, const char* pszCurrent, const char* pszNew,
           const char* pszConfirm) {
    SetDlgItemTextA(panel.m_hWnd, kCurrent, pszCurrent);
    SetDlgItemTextA(panel.m_hWnd, kNew, pszNew);
    SetDlgItemTextA(panel.m_hWnd, kConfirm, pszConfirm);
}

class ChangePinPanel : public testing::Test {
protected:
    AttachedLibrary m_library;
    RegistryHive m_hive;
    LogRecorder m_log;
};

TEST_F(ChangePinPanel, IsReadWithoutADialog) {
    CHost host;
    const auto panel = Embed(host, &host.m_ok);
    EXPECT_FALSE(host.m_ok.IsWindowEnabled());
    EXPECT_EQ(::GetFocus(), ::GetDlgItem(panel->m_hWnd, kCurrent));
    Enter(*panel, "1234", "58381", "58381");
    EXPECT_TRUE(host.m_ok.IsWindowEnabled());
    const DialogDriver noDialog;
    ChangePinRequest request{.hHost = host.m_hWnd};
    EXPECT_EQ(request.Call(), MVPINGUI_OK);
    EXPECT_EQ(request.OldPin(), "1234");
    EXPECT_EQ(request.NewPin(), "58381");
}

TEST_F(ChangePinPanel, StandsInItsHostAsToldAndEndsWithItsRules) {
    CHost host;
    const HINSTANCE before = AfxGetResourceHandle();
    const auto panel = Embed(host, nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), before);
    const RECT rect = RectIn(host.m_hWnd, panel->m_hWnd);
    EXPECT_EQ(rect.left, 150);
    EXPECT_EQ(rect.top, 20);
    const HWND hRules = ::GetParent(
        ::GetDlgItem(FindWindowExA(panel->m_hWnd, nullptr, "#32770", nullptr), IDC_POLICIES_BOX));
    const RECT place =
        RectIn(panel->m_hWnd, ::GetDlgItem(panel->m_hWnd, IDC_CHANGE_PIN_PANEL_POLICIES_PLACE));
    const RECT rules = RectIn(panel->m_hWnd, hRules);
    EXPECT_EQ(rules.left, place.left);
    EXPECT_EQ(rules.top, place.top);
    RECT client;
    GetClientRect(panel->m_hWnd, &client);
    EXPECT_EQ(client.bottom, rules.bottom);
}

TEST_F(ChangePinPanel, RefusesPinsThatBreakARule) {
    CHost host;
    const auto panel = Embed(host, &host.m_ok);
    Enter(*panel, "1234", "5838", "583");
    // Whatever the host has done to its button, the call puts it right.
    host.m_ok.EnableWindow(TRUE);
    const DialogDriver noDialog;
    ChangePinRequest request{.hHost = host.m_hWnd};
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
    EXPECT_TRUE(request.IsUntouched());
    EXPECT_FALSE(host.m_ok.IsWindowEnabled());
}

TEST_F(ChangePinPanel, EmptyCurrentPinDisablesOkButBreaksNoRule) {
    CHost host;
    const auto panel = Embed(host, &host.m_ok);
    Enter(*panel, "", "5838", "5838");
    EXPECT_FALSE(host.m_ok.IsWindowEnabled());
    EXPECT_TRUE(panel->VerifyAndUpdateAllPolicies("5838"));
    EXPECT_FALSE(host.m_ok.IsWindowEnabled());
    // Length, weakness and digits are those of the value that is passed.
    EXPECT_FALSE(panel->VerifyAndUpdateAllPolicies("583"));
}

TEST_F(ChangePinPanel, CurrentPinThatIsNotAskedIsEmpty) {
    CHost host;
    const auto panel = Embed(host, &host.m_ok, false, nullptr);
    EXPECT_EQ(::GetFocus(), ::GetDlgItem(panel->m_hWnd, kNew));
    EXPECT_TRUE(host.m_ok.IsWindowEnabled()) << "two empty PINs match";
    SetDlgItemTextA(panel->m_hWnd, kNew, "1");
    EXPECT_FALSE(host.m_ok.IsWindowEnabled());
    SetDlgItemTextA(panel->m_hWnd, kConfirm, "1");
    const DialogDriver noDialog;
    ChangePinRequest request{.hHost = host.m_hWnd};
    EXPECT_EQ(request.Call(), MVPINGUI_OK);
    EXPECT_EQ(request.OldPin(), "");
    EXPECT_EQ(request.NewPin(), "1");
}

TEST_F(ChangePinPanel, YoungestOfItsHostIsRead) {
    CHost host;
    CHost other;
    const auto first = Embed(host, nullptr);
    auto second = Embed(host, nullptr);
    const auto elsewhere = Embed(other, nullptr);
    Enter(*first, "1", "58381", "58381");
    Enter(*second, "2", "58382", "58382");
    Enter(*elsewhere, "3", "58383", "58383");
    const DialogDriver noDialog;
    const auto read = [](const CHost& from) {
        ChangePinRequest request{.hHost = from.m_hWnd};
        EXPECT_EQ(request.Call(), MVPINGUI_OK);
        return request.OldPin();
    };
    EXPECT_EQ(read(host), "2");
    EXPECT_EQ(read(other), "3");
    second.reset();
    EXPECT_EQ(read(host), "1");
}

TEST_F(ChangePinPanel, NobodysPanelIsNotFound) {
    CHost host;
    CHost without;
    const CChangePINDialog windowless(0, 0, true, nullptr, nullptr, nullptr, &host, 15, 0, 6);
    auto panel = Embed(host, nullptr);
    EXPECT_EQ(FindChangePinPanel(nullptr), nullptr);
    EXPECT_EQ(FindChangePinPanel(without.m_hWnd), nullptr);
    EXPECT_EQ(FindChangePinPanel(::GetDesktopWindow()), nullptr);
    EXPECT_EQ(FindChangePinPanel(host.m_hWnd), panel.get());
    panel->DestroyWindow();
    EXPECT_TRUE(IsChangePinPanel(panel.get()));
    EXPECT_EQ(FindChangePinPanel(host.m_hWnd), nullptr);
    panel.reset();
    DialogDriver driver([](Dialog& d) { d.Escape(); });
    ChangePinRequest request{.hHost = host.m_hWnd};
    EXPECT_EQ(request.Call(), MVPINGUI_REFUSED) << "asked in the library's own dialog";
}

// A host's OK button that takes the panel down as soon as it hears of it.
class CDestroyingButton : public CButton {
public:
    std::unique_ptr<CChangePINDialog>* m_pPanel = nullptr;

protected:
    afx_msg void OnEnable(BOOL bEnable) {
        CButton::OnEnable(bEnable);
        if (m_pPanel != nullptr)
            m_pPanel->reset();
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CDestroyingButton, CButton)
    ON_WM_ENABLE()
END_MESSAGE_MAP()

// The panel of a thread that ended stays in the list, its object's memory does not.
TEST_F(ChangePinPanel, WhoseWindowIsAnothersNowIsNotFound) {
    CHost host;
    const HWND hOther = CreateWindowExA(0, "STATIC", "", WS_CHILD, 0, 0, 1, 1, host.m_hWnd, nullptr,
                                        nullptr, nullptr);
    auto* const pGone = reinterpret_cast<CChangePINDialog*>(&host);
    AddChangePinPanel(pGone);
    SetChangePinPanelWindow(pGone, hOther);
    EXPECT_EQ(FindChangePinPanel(host.m_hWnd), nullptr);
    RemoveChangePinPanel(pGone);
}

TEST_F(ChangePinPanel, MayBeDestroyedWhileItsCheckRuns) {
    for (const bool bByTyping : {false, true}) {
        CHost host;
        CDestroyingButton ok;
        ok.CreateEx(0, "BUTTON", "OK", WS_CHILD | WS_VISIBLE, 5, 50, 90, 30, host.m_hWnd, nullptr);
        auto panel = Embed(host, &ok);
        Enter(*panel, "1234", "5838", bByTyping ? "583" : "5838");
        ASSERT_EQ(ok.IsWindowEnabled() != FALSE, !bByTyping);
        if (bByTyping) {
            ok.m_pPanel = &panel;
            const HWND hEdit = ::GetDlgItem(panel->m_hWnd, kConfirm);
            SendMessageA(hEdit, EM_SETSEL, 3, 3);
            SendMessageA(hEdit, WM_CHAR, '8', 0);
        } else {
            ok.EnableWindow(FALSE);
            ok.m_pPanel = &panel;
            const DialogDriver noDialog;
            ChangePinRequest request{.hHost = host.m_hWnd};
            EXPECT_EQ(request.Call(), MVPINGUI_REFUSED);
            EXPECT_TRUE(request.IsUntouched());
        }
        EXPECT_EQ(panel, nullptr);
        EXPECT_EQ(FindChangePinPanel(host.m_hWnd), nullptr);
    }
}

TEST_F(ChangePinPanel, HostMayGoFirst) {
    auto host = std::make_unique<CHost>();
    const auto panel = Embed(*host, &host->m_ok);
    Enter(*panel, "1234", "5838", "5838");
    host.reset();
    EXPECT_EQ(panel->m_hWnd, nullptr);
    // What was read last stays with the object until it is erased.
    EXPECT_STREQ(panel->NewPin(), "5838");
}

TEST_F(ChangePinPanel, ErasesItsPinsInPlace) {
    CHost host;
    const auto panel = Embed(host, nullptr);
    Enter(*panel, "12345", "58381", "58382");
    const char* pCurrent = panel->CurrentPin();
    const char* pNew = panel->NewPin();
    EXPECT_STREQ(pCurrent, "12345");
    EXPECT_STREQ(pNew, "58381");
    panel->EraseAllPinBuffers();
    EXPECT_EQ(std::string(pCurrent, 5), std::string(5, '\0'));
    EXPECT_EQ(std::string(pNew, 5), std::string(5, '\0'));
    EXPECT_TRUE(panel->CurrentPin().IsEmpty());
    EXPECT_TRUE(panel->NewPin().IsEmpty());
}

TEST_F(ChangePinPanel, ReadsItsConfiguration) {
    constexpr char kKey[] = R"(Software\Quillon\Veskara\PXRM)";
    constexpr char kValue[] = "EnableSmallPINEntryPrevention";
    const auto read = [] {
        return CChangePINDialog(0, 0, true, nullptr, nullptr, nullptr, nullptr, 0, 0, 0)
            .SmallPinEntryPrevention();
    };
    EXPECT_EQ(read(), 0U);
    m_hive.CreateKey(kKey);
    EXPECT_EQ(read(), 0U);
    m_hive.SetDword(kKey, kValue, 0x80000001);
    EXPECT_EQ(read(), 0x80000001U);
    EXPECT_TRUE(m_log.Texts(1).empty()) << m_log.Dump();
    struct Case {
        DWORD dwType;
        std::string strBytes;
        std::uint32_t dwRead;
        std::string strLine;
    };
    const std::string strPath = std::string(kKey) + "\\" + kValue;
    const auto followed = [&](std::uint32_t dwValue) {
        return "Setting is no REG_DWORD, its first bytes are followed as " +
               std::to_string(dwValue) + ": " + strPath;
    };
    const Case cases[] = {
        {REG_BINARY, "\x05", 5, followed(5)},
        {REG_BINARY, std::string("\x05\0\0\0", 4), 5, followed(5)},
        {REG_SZ, std::string("0\0", 2), '0', followed('0')},
        {REG_DWORD, "", 0, followed(0)},
        {REG_BINARY, std::string(255, 'x'), 0x78787878, followed(0x78787878)},
        {REG_BINARY, std::string(256, 'x'), 0,
         "Setting ignored: " + strPath + ": larger than 255 bytes"},
    };
    for (const Case& c : cases) {
        m_hive.SetRaw(kKey, kValue, c.dwType, c.strBytes);
        m_log.Clear();
        EXPECT_EQ(read(), c.dwRead) << c.strLine;
        EXPECT_EQ(m_log.Texts(1), std::vector<std::string>{c.strLine});
    }
}

// A dialog of the host's own around the panel, of another shape than the library's.
class CHostDialog : public CDialog {
public:
    CHostDialog() : m_template("Host", {10, 10, 400, 220}) {
        m_template.Add("BUTTON", IDOK, "OK", {10, 10, 60, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP);
        m_template.Add("BUTTON", IDCANCEL, "Cancel", {10, 30, 60, 14}, WS_TABSTOP);
        InitModalIndirect(m_template.Get());
    }

    std::unique_ptr<CChangePINDialog> m_panel;
    uint32_t m_dwResult = 0;
    ChangePinRequest m_request;

protected:
    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        m_ok.SubclassDlgItem(IDOK, this);
        m_panel = Embed(*this, &m_ok);
        return FALSE;
    }
    void OnOK() override {
        m_request.hHost = m_hWnd;
        m_dwResult = m_request.Call();
        CDialog::OnOK();
    }

private:
    DialogTemplate m_template;
    CButton m_ok;
};

TEST_F(ChangePinPanel, WorksInAHostsDialog) {
    CHostDialog dialog;
    DialogDriver driver([](Dialog& d) {
        EXPECT_EQ(d.FocusedId(), kCurrent);
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Type(kCurrent, "1234");
        d.Tab();
        EXPECT_EQ(d.FocusedId(), kNew);
        d.Type(kNew, "5838");
        d.Type(kConfirm, "5838");
        d.Tab();
        EXPECT_EQ(d.FocusedId(), IDOK);
        d.Focus(kConfirm);
        d.Enter();
    });
    EXPECT_EQ(dialog.DoModal(), IDOK);
    driver.Join();
    EXPECT_EQ(dialog.m_dwResult, MVPINGUI_OK);
    EXPECT_EQ(dialog.m_request.OldPin(), "1234");
    EXPECT_EQ(dialog.m_request.NewPin(), "5838");
}

}  // namespace
}  // namespace mvp::test
