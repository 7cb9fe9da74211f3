// CChangePINDialog in windows of the host's own, and GetChangePINInfoFromUser reading it there; and
// the change-PIN dialogs when something is missing: controls of their templates, their panel,
// memory.
#include <memory>
#include <tuple>
#include <utility>

#include "dialogs/pin/change_pin_main_dialog.h"
#include "dialogs/pin/change_pin_panels.h"
#include "mvpingui/change_pin_dialog.h"
#include "mvpingui/policies_dialog.h"
#include "support/failing_heap.h"
#include "ui/dialogs/library_test.h"
#include "ui/dialogs/pin/pin_requests.h"

namespace mvp::test {
namespace {

using ChangePinPanel = LibraryTest;

std::unique_ptr<CChangePINDialog> Embed(CWnd& host, CButton* pOk) {
    const RECT place = {150, 20, 0, 0};
    auto panel =
        std::make_unique<CChangePINDialog>(99, 0, true, &place, &kAllRules, pOk, &host, 15, 0, 6);
    EXPECT_NE(panel->LocCreate(&host), 0);
    panel->ShowWindow(SW_SHOW);
    return panel;
}

std::string Read(const CWnd& host) {
    return ChangePinRequest{.hHost = host.m_hWnd}.Ask();
}

TEST_F(ChangePinPanel, IsReadWithoutADialog) {
    HostWindow host;
    const HINSTANCE before = AfxGetResourceHandle();
    const auto panel = Embed(host, &host.m_ok);
    EXPECT_EQ(AfxGetResourceHandle(), before);
    EXPECT_EQ(RectIn(host.m_hWnd, panel->m_hWnd).TopLeft(), CPoint(150, 20));
    EXPECT_FALSE(host.m_ok.IsWindowEnabled());
    EXPECT_EQ(::GetFocus(), ::GetDlgItem(panel->m_hWnd, kCurrent));
    SetPins(panel->m_hWnd, "1234", "58381", "58381");
    EXPECT_TRUE(host.m_ok.IsWindowEnabled());
    EXPECT_EQ(Read(host), "1234/58381");
    SetPins(panel->m_hWnd, "1234", "5838", "583");
    // Whatever the host has done to its button, the call puts it right.
    host.m_ok.EnableWindow(TRUE);
    EXPECT_EQ(Read(host), kRefused);
    EXPECT_FALSE(host.m_ok.IsWindowEnabled());
    // An empty current PIN disables OK, but breaks no rule.
    SetPins(panel->m_hWnd, "", "5838", "5838");
    EXPECT_FALSE(host.m_ok.IsWindowEnabled());
    EXPECT_TRUE(panel->VerifyAndUpdateAllPolicies("5838"));
    EXPECT_FALSE(host.m_ok.IsWindowEnabled());
    // Length, weakness and digits are those of the value that is passed.
    EXPECT_FALSE(panel->VerifyAndUpdateAllPolicies("583"));
}

TEST_F(ChangePinPanel, YoungestOfItsHostIsRead) {
    HostWindow host;
    HostWindow other;
    const auto first = Embed(host, nullptr);
    auto second = Embed(host, nullptr);
    const auto elsewhere = Embed(other, nullptr);
    SetPins(first->m_hWnd, "1", "58381", "58381");
    SetPins(second->m_hWnd, "2", "58382", "58382");
    SetPins(elsewhere->m_hWnd, "3", "58383", "58383");
    EXPECT_EQ(Read(host), "2/58382");
    EXPECT_EQ(Read(other), "3/58383");
    second.reset();
    EXPECT_EQ(Read(host), "1/58381");
}

TEST_F(ChangePinPanel, NobodysPanelIsNotFound) {
    HostWindow host;
    HostWindow without;
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
    EXPECT_EQ(ChangePinRequest{.hHost = host.m_hWnd}.Ask(Leave), kRefused)
        << "asked in the library's own dialog";
    // The panel of a thread that ended stays in the list, its object's memory does not.
    auto* const gone = reinterpret_cast<CChangePINDialog*>(&host);
    AddChangePinPanel(gone);
    SetChangePinPanelWindow(gone, host.m_ok.m_hWnd);
    EXPECT_EQ(FindChangePinPanel(host.m_hWnd), nullptr) << "its window is another's now";
    RemoveChangePinPanel(gone);
}

// A host's OK button that takes the panel down as soon as it hears of it.
class DestroyingButton : public CButton {
public:
    std::unique_ptr<CChangePINDialog>* m_pPanel = nullptr;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        const LRESULT result = CButton::WindowProc(message, wParam, lParam);
        message == WM_ENABLE&& m_pPanel != nullptr ? m_pPanel->reset() : void();
        return result;
    }
};

TEST_F(ChangePinPanel, MayBeDestroyedWhileItsCheckRuns) {
    for (const bool byTyping : {false, true}) {
        HostWindow host;
        DestroyingButton ok;
        ok.CreateEx(0, "BUTTON", "OK", WS_CHILD | WS_VISIBLE, 5, 50, 90, 30, host.m_hWnd, nullptr);
        auto panel = Embed(host, &ok);
        SetPins(panel->m_hWnd, "1234", "5838", byTyping ? "583" : "5838");
        ASSERT_EQ(ok.IsWindowEnabled() != FALSE, !byTyping);
        ok.EnableWindow(FALSE);
        ok.m_pPanel = &panel;
        if (byTyping) {
            const HWND edit = ::GetDlgItem(panel->m_hWnd, kConfirm);
            SendMessageA(edit, EM_SETSEL, 3, 3);
            SendMessageA(edit, WM_CHAR, '8', 0);
        } else {
            EXPECT_EQ(Read(host), kRefused);
        }
        EXPECT_EQ(panel, nullptr);
        EXPECT_EQ(FindChangePinPanel(host.m_hWnd), nullptr);
    }
}

TEST_F(ChangePinPanel, HostMayGoFirst) {
    auto host = std::make_unique<HostWindow>();
    const auto panel = Embed(*host, &host->m_ok);
    SetPins(panel->m_hWnd, "12345", "58381", "58382");
    host.reset();
    EXPECT_EQ(panel->m_hWnd, nullptr);
    // What was read last stays with the object until it is erased, in place.
    const char* current = panel->CurrentPin();
    const char* newObject = panel->NewPin();
    EXPECT_STREQ(current, "12345");
    EXPECT_STREQ(newObject, "58381");
    panel->EraseAllPinBuffers();
    EXPECT_EQ(std::string(current, 5) + std::string(newObject, 5), std::string(10, '\0'));
    EXPECT_TRUE(panel->CurrentPin().IsEmpty() && panel->NewPin().IsEmpty());
}

TEST_F(ChangePinPanel, ReadsItsConfiguration) {
    constexpr char kKey[] = R"(Software\Quillon\Veskara\PXRM)";
    const std::string path = std::string(kKey) + R"(\EnableSmallPINEntryPrevention)";
    const std::string followed = "Setting is no REG_DWORD, its first bytes are followed as ";
    const std::tuple<DWORD, std::string, std::uint32_t, std::string> cases[] = {
        {REG_NONE, "", 0, ""},
        {REG_DWORD, {"\x01\0\0\x80", 4}, 0x80000001, ""},
        {REG_BINARY, "\x05", 5, followed + "5: " + path},
        {REG_SZ, {"0\0", 2}, '0', followed + "48: " + path},
        {REG_DWORD, "", 0, followed + "0: " + path},
        {REG_BINARY, std::string(255, 'x'), 0x78787878, followed + "2021161080: " + path},
        {REG_BINARY, std::string(256, 'x'), 0,
         "Setting ignored: " + path + ": larger than 255 bytes"}};
    const auto expect = [&](std::uint32_t read, const std::string& strError) {
        m_log.Clear();
        const CChangePINDialog panel(0, 0, true, nullptr, nullptr, nullptr, nullptr, 0, 0, 0);
        EXPECT_EQ(panel.SmallPinEntryPrevention(), read);
        EXPECT_EQ(m_log.Texts(1), std::vector<std::string>(strError.empty() ? 0 : 1, strError));
    };
    expect(0, "");
    m_hive.CreateKey(kKey);
    for (const auto& [type, bytes, read, error] : cases) {
        if (type != REG_NONE) {
            m_hive.SetRaw(kKey, "EnableSmallPINEntryPrevention", type, bytes);
        }
        expect(read, error);
    }
}

using ChangePinFaults = LibraryTest;

class IncompleteMain : public Incomplete<CChangePINDialogMain> {
public:
    explicit IncompleteMain(int nMissing, const PwdRuleArgs& rules = kAllRules)
        : Incomplete(nMissing, &rules, 0, true, nullptr, 15, 0, 6, "Reader A") {}
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
    const auto leave = [](Dialog& d) {
        EXPECT_FALSE(d.IsEnabled(IDOK));
        d.Run([&] {
            EnableWindow(d.Control(IDOK), TRUE);
            SendCommand(d, IDOK);
        });
        EXPECT_TRUE(d.IsOpen());
        d.Click(IDCANCEL);
    };
    EXPECT_EQ(Open(dialog, {leave}), IDCANCEL);
    EXPECT_TRUE(m_log.Contains(1, "CChangePINDialogMain: the panel could not be created"));
}

TEST_F(ChangePinFaults, PanelNeedsItsEditsAndNothingElse) {
    HostWindow host;
    for (const int missing : {IDC_CHANGE_PIN_PANEL_CURRENT_LABEL, IDC_CHANGE_PIN_PANEL_NEW_LABEL,
                              IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL, IDC_CHANGE_PIN_PANEL_INSTRUCTION,
                              IDC_CHANGE_PIN_PANEL_POLICIES_PLACE, kCurrent, kNew, kConfirm}) {
        SCOPED_TRACE(missing);
        host.m_ok.EnableWindow(TRUE);
        Incomplete<CChangePINDialog> panel(missing, 0, 0, true, nullptr, &kAllRules, &host.m_ok,
                                           &host, 15, 0, 6);
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
    CChangePINDialog panel(0, 0, true, nullptr, &kAllRules, &host.m_ok, &host, 15, 0, 6);
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
            EXPECT_EQ(std::string(panel.CurrentPin()).append(panel.NewPin()), "12345838");
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
