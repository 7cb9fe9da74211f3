#include "suite/vkerrmes/vkerrmes.h"

#include <functional>
#include <set>
#include <string>

#include "common/thread_windows.h"
#include "real_module.h"
#include "support/dialog_driver.h"

namespace mvp::test {
namespace {

// A message box as it stands on the screen.
struct Box {
    std::string caption;
    std::string text;
    HICON hIcon = nullptr;
    std::set<int> buttons;
    int nDefaultButton = 0;
    HWND hOwner = nullptr;
    bool bForeground = false;
};

Box Read(const Dialog& dialog) {
    Box box;
    box.caption = dialog.Title();
    box.nDefaultButton = dialog.FocusedId();
    box.hOwner = GetWindow(dialog.Handle(), GW_OWNER);
    box.bForeground = GetForegroundWindow() == dialog.Handle();
    for (HWND h = GetWindow(dialog.Handle(), GW_CHILD); h; h = GetWindow(h, GW_HWNDNEXT)) {
        const int nId = GetDlgCtrlID(h);
        if (ClassOf(h) == "Button")
            box.buttons.insert(nId);
        else if ((GetWindowLongPtrA(h, GWL_STYLE) & SS_TYPEMASK) == SS_ICON)
            box.hIcon = reinterpret_cast<HICON>(SendMessageA(h, STM_GETICON, 0, 0));
        else
            box.text = dialog.Text(nId);
    }
    return box;
}

constexpr int kEnterKey = -1;

class VkErrMes : public testing::Test {
protected:
    // What `show`, which opens a box, returned when `nButton` was pressed in it.
    int Run(const std::function<int()>& show, int nButton) {
        DialogDriver driver([&](Dialog& dialog) {
            m_box = Read(dialog);
            nButton == kEnterKey ? dialog.Enter() : dialog.Click(nButton);
        });
        return show();
    }
    int Notice(const char* pszText, int nButton) {
        return Run([&] { return m_pDisplay(-1, pszText, 0, 0, 0); }, nButton);
    }
    int Warn(HWND hParent, const char* pszText, const char* pszReader, int nButton,
             UINT nButtons = 0, UINT nIcon = 0, UINT nFlags = 0) {
        return Run(
            [&] {
                return m_pDisplayWithParent(hParent, 5, pszText, nButtons, nIcon, nFlags, nullptr,
                                            pszReader);
            },
            nButton);
    }

    CRealModule m_module{"vkerrmes"};
    decltype(VKErrMesDisplayEx)* m_pDisplay =
        m_module.Get<decltype(VKErrMesDisplayEx)>("VKErrMesDisplayEx");
    decltype(VKErrMesDisplayExWithParentParamAndReader)* m_pDisplayWithParent =
        m_module.Get<decltype(VKErrMesDisplayExWithParentParamAndReader)>(
            "VKErrMesDisplayExWithParentParamAndReader");
    Box m_box;
};

using Buttons = std::set<int>;

TEST_F(VkErrMes, TheNoticeHasAWarningIconAndOkAlone) {
    EXPECT_EQ(Notice("The code is wrong", kEnterKey), 1);
    EXPECT_EQ(m_box.caption, "Veskara");
    EXPECT_EQ(m_box.text, "The code is wrong");
    EXPECT_EQ(m_box.hIcon, LoadIconA(nullptr, IDI_WARNING));
    EXPECT_EQ(m_box.buttons.size(), 1U);
    EXPECT_EQ(m_box.hOwner, nullptr);
    EXPECT_TRUE(m_box.bForeground);
}

TEST_F(VkErrMes, TheWarningCanBeDeclined) {
    EXPECT_EQ(Warn(nullptr, "Last try", "Reader A", IDOK), 1);
    EXPECT_EQ(Warn(nullptr, "Last try", "Reader A", IDCANCEL), 0);
    EXPECT_EQ(Warn(nullptr, "Last try", "Reader A", kEnterKey), 0) << "Enter must not accept it";
    EXPECT_EQ(m_box.caption, "Veskara - Reader A");
    EXPECT_EQ(m_box.text, "Last try");
    EXPECT_EQ(m_box.hIcon, LoadIconA(nullptr, IDI_WARNING));
    EXPECT_EQ(m_box.buttons, (Buttons{IDOK, IDCANCEL}));
    EXPECT_EQ(m_box.nDefaultButton, IDCANCEL);
    EXPECT_TRUE(m_box.bForeground);
}

TEST_F(VkErrMes, ButtonsIconAndFlagsCanBeChosen) {
    const struct {
        UINT nButtons, nIcon, nFlags;
        Buttons buttons;
        LPCSTR pszIcon;
        int nDefault, nPress, nResult;
    } cases[] = {
        {MB_YESNO, MB_ICONQUESTION, 0, {IDYES, IDNO}, IDI_QUESTION, IDYES, IDYES, 1},
        {MB_YESNO, MB_ICONERROR, MB_DEFBUTTON2, {IDYES, IDNO}, IDI_ERROR, IDNO, IDNO, 0},
        {MB_OKCANCEL, MB_ICONINFORMATION, 0, {IDOK, IDCANCEL}, IDI_INFORMATION, IDOK, IDOK, 1},
        {MB_RETRYCANCEL, 0, 0, {IDRETRY, IDCANCEL}, IDI_WARNING, IDRETRY, IDRETRY, 0},
        // Values that are none: the defaults.
        {77, 0x70, MB_SERVICE_NOTIFICATION, {IDOK, IDCANCEL}, IDI_WARNING, IDCANCEL, IDOK, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.nButtons);
        EXPECT_EQ(Warn(nullptr, "text", "", c.nPress, c.nButtons, c.nIcon, c.nFlags), c.nResult);
        EXPECT_EQ(m_box.buttons, c.buttons);
        EXPECT_EQ(m_box.hIcon, LoadIconA(nullptr, c.pszIcon));
        EXPECT_EQ(m_box.nDefaultButton, c.nDefault);
        EXPECT_EQ(m_box.caption, "Veskara");
    }
}

TEST_F(VkErrMes, StandsOverItsParentAndOutlivesAMissingOne) {
    const HWND hParent = CreateWindowA("STATIC", "parent", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200,
                                       nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Warn(hParent, "text", nullptr, IDOK), 1);
    EXPECT_EQ(m_box.hOwner, hParent);
    EXPECT_TRUE(IsWindowEnabled(hParent));
    DestroyWindow(hParent);
    EXPECT_EQ(Warn(hParent, "text", nullptr, IDOK), 1);
    EXPECT_EQ(m_box.hOwner, nullptr);
}

TEST_F(VkErrMes, TextsAreBoundedAndMayBeNull) {
    const std::string huge(100000, 'w');
    Warn(nullptr, huge.c_str(), huge.c_str(), IDCANCEL);
    EXPECT_EQ(m_box.text, huge.substr(0, VKERRMES_TEXT_MAX));
    EXPECT_LT(m_box.caption.size(), 300U);
    EXPECT_EQ(Notice(nullptr, IDOK), 1);
    EXPECT_EQ(m_box.text, "");
}

}  // namespace
}  // namespace mvp::test
