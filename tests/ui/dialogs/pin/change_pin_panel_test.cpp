// CChangePINDialog in windows of the host's own, and GetChangePINInfoFromUser reading it there.
#include <memory>
#include <tuple>

#include <dlgfw/message_map.h>

#include "dialogs/pin/change_pin_panels.h"
#include "mvpingui/change_pin_dialog.h"
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
    afx_msg void OnEnable(BOOL bEnable) {
        CButton::OnEnable(bEnable);
        if (m_pPanel != nullptr) {
            m_pPanel->reset();
        }
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(DestroyingButton, CButton)
    ON_WM_ENABLE()
END_MESSAGE_MAP()

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

}  // namespace
}  // namespace mvp::test
