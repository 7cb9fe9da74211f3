// Keyboard navigation with real key strokes through a dialog, a panel in it, and a panel in that.
#include <string>
#include <utility>
#include <vector>

#include <dlgfw/dialog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/dialog_driver.h"
#include "support/dialog_template.h"

namespace mvp::test {
namespace {

using testing::ElementsAre;

constexpr int kHostEdit = 1001;
constexpr int kPanelEdit = 1002;
constexpr int kPanelButton = 1003;
constexpr int kInnerEdit = 1004;
constexpr int kInnerCheck = 1005;
constexpr int kInnerOption1 = 1006;
constexpr int kInnerOption2 = 1007;
constexpr int kHostButton = 1008;

constexpr DWORD kPlainChild = WS_CHILD | WS_VISIBLE | DS_SETFONT;  // without DS_CONTROL
constexpr DWORD kEditStyle = WS_BORDER | WS_TABSTOP;

// Which commands reached which dialog.
std::vector<std::string> g_commands;

class KeysDlg : public CDialog {
public:
    KeysDlg(const char* name, DialogTemplate form) : m_name(name), m_template(std::move(form)) {
        InitModalIndirect(m_template.Get());
    }
    BOOL Open(CWnd* pParent) { return CreateIndirect(m_template.Get(), pParent); }

    KeysDlg* m_pPanel = nullptr;
    bool m_bCloses = false;

protected:
    BOOL OnInitDialog() override {
        if (m_pPanel != nullptr) {
            EXPECT_TRUE(m_pPanel->Open(this));
            // The panel's place in the order of Tab is where it stands among the children.
            m_pPanel->SetWindowPos(GetDlgItem(kHostEdit), 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
        }
        return CDialog::OnInitDialog();
    }
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override {
        const int id = LOWORD(wParam);
        if (HIWORD(wParam) == BN_CLICKED) {
            g_commands.push_back(m_name + std::to_string(id));
        }
        if (id != IDOK && id != IDCANCEL) {
            return CDialog::OnCommand(wParam, lParam);
        }
        if (m_bCloses) {
            EndDialog(id);
        }
        return TRUE;
    }

private:
    std::string m_name;
    DialogTemplate m_template;
};

class KeyboardTest : public testing::TestWithParam<DWORD> {
protected:
    KeyboardTest()
        : m_inner("inner:",
                  DialogTemplate("", {2, 20, 120, 40}, GetParam())
                      .Add("EDIT", kInnerEdit, "", {2, 2, 40, 12}, kEditStyle)
                      .Add("BUTTON", kInnerCheck, "&Remember", {45, 2, 70, 12},
                           BS_AUTOCHECKBOX | WS_TABSTOP)
                      .Add("BUTTON", kInnerOption1, "o&ne", {2, 20, 40, 12},
                           BS_AUTORADIOBUTTON | WS_TABSTOP | WS_GROUP)
                      .Add("BUTTON", kInnerOption2, "&two", {45, 20, 40, 12}, BS_AUTORADIOBUTTON)),
          m_panel("panel:",
                  DialogTemplate("", {7, 25, 130, 65}, GetParam())
                      .Add("EDIT", kHostEdit, "", {0, 0, 0, 0}, WS_DISABLED, false)
                      .Add("EDIT", kPanelEdit, "", {2, 2, 40, 12}, kEditStyle)
                      .Add("BUTTON", kPanelButton, "&Panel", {45, 2, 40, 12}, WS_TABSTOP)),
          m_host("host:",
                 DialogTemplate("Keys", {0, 0, 150, 120})
                     .Add("EDIT", kHostEdit, "", {7, 7, 40, 12}, kEditStyle)
                     .Add("BUTTON", kHostButton, "&Host", {60, 7, 40, 12}, WS_TABSTOP)
                     .Add("BUTTON", IDOK, "OK", {7, 100, 50, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP)
                     .Add("BUTTON", IDCANCEL, "Cancel", {67, 100, 50, 14}, WS_TABSTOP)) {
        m_panel.m_pPanel = &m_inner;
        m_host.m_pPanel = &m_panel;
        g_commands.clear();
    }

    static bool IsDefault(const Dialog& dialog, int nId) {
        return (dialog.Send(nId, WM_GETDLGCODE) & DLGC_DEFPUSHBUTTON) != 0;
    }

    KeysDlg m_inner;
    KeysDlg m_panel;
    KeysDlg m_host;
};

INSTANTIATE_TEST_SUITE_P(Panels, KeyboardTest, testing::Values(DialogTemplate::kChild, kPlainChild),
                         [](const auto& style) {
                             return style.param == kPlainChild ? "plain" : "control";
                         });

TEST_P(KeyboardTest, TabAndArrowsWalkThroughEveryPanelAndBack) {
    m_host.m_bCloses = true;
    const DialogDriver driver([](Dialog& dialog) {
        const auto walk = [&](int nSteps, std::initializer_list<WORD> modifiers) {
            std::vector<int> way;
            for (int i = 0; i < nSteps; ++i) {
                dialog.RealKey(VK_TAB, modifiers);
                way.push_back(dialog.FocusedId());
            }
            return way;
        };
        EXPECT_EQ(dialog.FocusedId(), kHostEdit);
        EXPECT_THAT(walk(9, {}), ElementsAre(kInnerEdit, kInnerCheck, kInnerOption1, kPanelEdit,
                                             kPanelButton, kHostButton, IDOK, IDCANCEL, kHostEdit));
        EXPECT_THAT(walk(5, {VK_SHIFT}),
                    ElementsAre(IDCANCEL, IDOK, kHostButton, kPanelButton, kPanelEdit));
        dialog.Focus(kInnerOption1);
        dialog.RealKey(VK_DOWN);
        EXPECT_EQ(dialog.FocusedId(), kInnerOption2);
        EXPECT_TRUE(dialog.IsChecked(kInnerOption2));
        dialog.RealKey(VK_UP);
        EXPECT_EQ(dialog.FocusedId(), kInnerOption1);
        dialog.RealKey(VK_ESCAPE);
    });
    EXPECT_EQ(m_host.DoModal(), IDCANCEL);
}

// What the thread gets for a letter that is pressed with Alt. The strokes themselves would lose
// their Alt when the system matches its key states with the real keyboard's in between.
void PressMnemonic(Dialog& dialog, int nFocus, char chKey) {
    dialog.Focus(nFocus);
    PostMessageA(dialog.Control(nFocus), WM_SYSCHAR, static_cast<WPARAM>(chKey), 0x20000001);
    dialog.Settle();
}

TEST_P(KeyboardTest, EnterEscapeAndMnemonicsReachWhomTheyAreMeantFor) {
    const std::vector<std::string> commands = {
        "host:1",     "host:1", "host:1",    "host:2",     "host:2",      // from inside panels
        "panel:1003", "host:1", "host:1008", "panel:1003", "inner:1005",  // buttons' own
        "host:2"};
    const DialogDriver driver([this](Dialog& dialog) {
        const auto press = [&](int nFocus, WORD vk) {
            dialog.Focus(nFocus);
            dialog.RealKey(vk);
        };
        for (const int focus : {kInnerEdit, kPanelEdit, kInnerCheck}) {
            press(focus, VK_RETURN);
        }
        for (const int focus : {kInnerEdit, kPanelButton}) {
            press(focus, VK_ESCAPE);
        }
        HWND ok = dialog.Control(IDOK);
        dialog.Run([=] { EnableWindow(ok, FALSE); });
        press(kInnerEdit, VK_RETURN);  // is nobody's now
        dialog.Run([=] { EnableWindow(ok, TRUE); });

        // Enter presses the button that has the focus, and the border follows the focus.
        press(kPanelEdit, VK_TAB);
        ASSERT_EQ(dialog.FocusedId(), kPanelButton);
        EXPECT_TRUE(IsDefault(dialog, kPanelButton) && !IsDefault(dialog, IDOK));
        dialog.RealKey(VK_RETURN);
        dialog.RealKey(VK_TAB, {VK_SHIFT});
        EXPECT_TRUE(!IsDefault(dialog, kPanelButton) && IsDefault(dialog, IDOK));
        dialog.RealKey(VK_RETURN);

        PressMnemonic(dialog, kInnerEdit, 'h');
        PressMnemonic(dialog, kHostEdit, 'p');
        PressMnemonic(dialog, kHostEdit, 'r');
        EXPECT_TRUE(dialog.IsChecked(kInnerCheck));
        dialog.RealType(kInnerEdit, "abc");
        EXPECT_EQ(dialog.Text(kInnerEdit), "abc");
        dialog.Run([this] { m_host.m_bCloses = true; });
        dialog.RealKey(VK_ESCAPE);
    });
    EXPECT_EQ(m_host.DoModal(), IDCANCEL);
    EXPECT_EQ(g_commands, commands);
}

// A dialog of the bare system that has a panel of the framework's: its own loop knows nothing of
// it.
TEST_P(KeyboardTest, PanelWorksInADialogOfTheBareSystem) {
    static KeysDlg* panel = nullptr;
    panel = &m_panel;
    DialogTemplate form("Bare", {0, 0, 150, 120});
    form.Add("EDIT", kHostEdit, "", {7, 7, 40, 12}, kEditStyle)
        .Add("BUTTON", IDOK, "OK", {7, 100, 50, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP);
    const auto proc = [](HWND hDialog, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG) {
            return panel->Open(CWnd::FromHandle(hDialog));
        }
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK) {
            return EndDialog(hDialog, 5);
        }
        return FALSE;
    };
    DialogDriver driver([](Dialog& dialog) {
        dialog.Focus(kPanelButton);
        dialog.RealKey(VK_TAB);
        EXPECT_EQ(dialog.FocusedId(), kHostEdit);
        dialog.Focus(kInnerEdit);
        dialog.RealKey(VK_RETURN);
    });
    EXPECT_EQ(DialogBoxIndirectParamA(GetModuleHandleA(nullptr), form.Get(), nullptr, proc, 0), 5);
}

}  // namespace
}  // namespace mvp::test
