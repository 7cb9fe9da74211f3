#include "suite/vkerrmes/vkerrmes.h"

#include <functional>
#include <set>
#include <string>

#include "common/thread_windows.h"
#include "real_module.h"
#include "support/dialog_driver.h"

namespace mvp::test {
namespace {

// A message box as it stands on the screen: "caption: text [icon] 1 2*", the buttons by their
// numbers, the default one with a star.
std::string Describe(const Dialog& dialog) {
    std::string text;
    std::string icon;
    std::set<int> buttons;
    for (HWND h = GetWindow(dialog.Handle(), GW_CHILD); h; h = GetWindow(h, GW_HWNDNEXT)) {
        if (ClassOf(h) == "Button") {
            buttons.insert(GetDlgCtrlID(h));
        } else if ((GetWindowLongPtrA(h, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
            const LRESULT shown = SendMessageA(h, STM_GETICON, 0, 0);
            for (const auto& [name, id] : {std::pair{"warning", IDI_WARNING},
                                           {"question", IDI_QUESTION},
                                           {"error", IDI_ERROR},
                                           {"information", IDI_INFORMATION}}) {
                icon += shown == reinterpret_cast<LRESULT>(LoadIconA(nullptr, id)) ? name : "";
            }
        } else {
            text = dialog.Text(GetDlgCtrlID(h));
        }
    }
    std::string all = dialog.Title() + ": " + text + " [" + icon + "]";
    for (const int id : buttons) {
        all += " " + std::to_string(id) + (id == dialog.FocusedId() ? "*" : "");
    }
    return all;
}

constexpr int kEnterKey = -1;

class VkErrMes : public testing::Test {
protected:
    // What `show`, which opens a box, returned when `nButton` was pressed in it.
    int Answer(const std::function<int()>& show, int nButton) {
        DialogDriver driver([&](Dialog& dialog) {
            m_strBox = Describe(dialog);
            m_hOwner = GetWindow(dialog.Handle(), GW_OWNER);
            m_bForeground = GetForegroundWindow() == dialog.Handle();
            nButton == kEnterKey ? dialog.Enter() : dialog.Click(nButton);
        });
        return show();
    }
    int Notice(const char* pszText) {
        const auto show = m_module.Get<decltype(VKErrMesDisplayEx)>("VKErrMesDisplayEx");
        return Answer([&] { return show(-1, pszText, 0, 0, 0); }, kEnterKey);
    }
    int Warn(HWND hParent, const char* pszText, const char* pszReader, int nButton,
             UINT nButtons = 0, UINT nIcon = 0, UINT nFlags = 0) {
        const auto show = m_module.Get<decltype(VKErrMesDisplayExWithParentParamAndReader)>(
            "VKErrMesDisplayExWithParentParamAndReader");
        return Answer(
            [&] { return show(hParent, 5, pszText, nButtons, nIcon, nFlags, nullptr, pszReader); },
            nButton);
    }

    RealModule m_module{"vkerrmes"};
    std::string m_strBox;
    HWND m_hOwner = nullptr;
    bool m_bForeground = false;
};

TEST_F(VkErrMes, NoticesHaveOneButtonAndWarningsCanBeDeclined) {
    EXPECT_EQ(Notice("The code is wrong"), 1);
    EXPECT_EQ(m_strBox.substr(0, m_strBox.rfind(' ')), "Veskara: The code is wrong [warning]");
    EXPECT_TRUE(m_hOwner == nullptr && m_bForeground);
    EXPECT_EQ(Warn(nullptr, "Last try", "Reader A", IDOK), 1);
    EXPECT_EQ(Warn(nullptr, "Last try", "Reader A", IDCANCEL), 0);
    EXPECT_EQ(Warn(nullptr, "Last try", "Reader A", kEnterKey), 0) << "Enter must not accept it";
    EXPECT_EQ(m_strBox, "Veskara - Reader A: Last try [warning] 1 2*");
    EXPECT_TRUE(m_bForeground);
}

TEST_F(VkErrMes, ButtonsIconAndFlagsCanBeChosen) {
    const struct {
        UINT nButtons, nIcon, nFlags;
        int nPress, nResult;
        const char* pszBox;
    } cases[] = {
        {MB_YESNO, MB_ICONQUESTION, 0, IDYES, 1, "[question] 6* 7"},
        {MB_YESNO, MB_ICONERROR, MB_DEFBUTTON2, IDNO, 0, "[error] 6 7*"},
        {MB_OKCANCEL, MB_ICONINFORMATION, 0, IDOK, 1, "[information] 1* 2"},
        {MB_RETRYCANCEL, 0, 0, IDRETRY, 0, "[warning] 2 4*"},
        // Values that are none: the defaults.
        {77, 0x70, MB_SERVICE_NOTIFICATION, IDOK, 1, "[warning] 1 2*"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Warn(nullptr, "text", "", c.nPress, c.nButtons, c.nIcon, c.nFlags), c.nResult);
        EXPECT_EQ(m_strBox, std::string("Veskara: text ") + c.pszBox);
    }
}

TEST_F(VkErrMes, StandsOverItsParentAndOutlivesAMissingOne) {
    const HWND parent = CreateWindowA("STATIC", "parent", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200,
                                      nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Warn(parent, "text", nullptr, IDOK), 1);
    EXPECT_EQ(m_hOwner, parent);
    EXPECT_TRUE(IsWindowEnabled(parent));
    DestroyWindow(parent);
    EXPECT_EQ(Warn(parent, "text", nullptr, IDOK), 1);
    EXPECT_EQ(m_hOwner, nullptr);
}

TEST_F(VkErrMes, TextsAreBoundedAndMayBeNull) {
    const std::string huge(100000, 'w');
    Warn(nullptr, huge.c_str(), huge.c_str(), IDCANCEL);
    const std::size_t caption = m_strBox.find(": ");
    EXPECT_LT(caption, 300U);
    EXPECT_EQ(m_strBox.substr(caption),
              ": " + huge.substr(0, VKERRMES_TEXT_MAX) + " [warning] 1 2*");
    EXPECT_EQ(Notice(nullptr), 1);
    EXPECT_TRUE(m_strBox.starts_with("Veskara:  [")) << m_strBox;
}

}  // namespace
}  // namespace mvp::test
