// Every language of the resource module holds the same things, and every template of every language
// is a window in which nothing is clipped, nothing overlaps, and the keyboard finds its way. Texts
// that the code puts into controls are put there first.

#include <windows.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "dialogs/card/notice_height.h"
#include "resource_module.h"
#include "resources/resource_numbers.h"
#include "template_window.h"

namespace {

struct RunTimeText {
    int dialog, control, string;
};
const RunTimeText kRunTimeTexts[] = {
    {IDD_POLICIES, IDC_POLICIES_BOX, IDS_POLICIES_BOX},
    {IDD_POLICIES, IDC_POLICIES_MIN_TEXT, IDS_POLICIES_MIN_FORMAT},
    {IDD_POLICIES, IDC_POLICIES_MAX_TEXT, IDS_POLICIES_MAX_FORMAT},
    {IDD_POLICIES, IDC_POLICIES_WEAK_TEXT, IDS_POLICIES_WEAK},
    {IDD_POLICIES, IDC_POLICIES_SAME_TEXT, IDS_POLICIES_SAME},
    {IDD_POLICIES, IDC_POLICIES_ALPHA_TEXT, IDS_POLICIES_ALPHA},
    {IDD_POLICIES, IDC_POLICIES_CONFIRM_TEXT, IDS_POLICIES_CONFIRM},
    {IDD_CHANGE_PIN_PANEL, IDC_CHANGE_PIN_PANEL_INSTRUCTION, IDS_CHANGE_PIN_INSTRUCTION_NEW_ONLY},
    {IDD_CHANGE_PIN_PANEL, IDC_CHANGE_PIN_PANEL_INSTRUCTION, IDS_CHANGE_PIN_INSTRUCTION},
    {IDD_CHANGE_PIN_PANEL, IDC_CHANGE_PIN_PANEL_CURRENT_LABEL, IDS_CHANGE_PIN_CURRENT_LABEL},
    {IDD_CHANGE_PIN_PANEL, IDC_CHANGE_PIN_PANEL_NEW_LABEL, IDS_CHANGE_PIN_NEW_LABEL},
    {IDD_CHANGE_PIN_PANEL, IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL, IDS_CHANGE_PIN_CONFIRM_LABEL},
    {IDD_UNLOCK_CARD, IDC_UNLOCK_CARD_HELP_DESK, IDS_UNLOCK_HELP_DESK},
    {IDD_UNLOCK_CARD, IDC_UNLOCK_CARD_HELP_DESK, IDS_UNLOCK_HELP_DESK_FORMAT},
    {IDD_UNLOCK_FAILED, IDC_UNLOCK_RESULT_HEADING, IDS_INITIALIZE_FAILED_HEADING},
    {IDD_UNLOCK_FAILED, IDC_UNLOCK_RESULT_MESSAGE, IDS_UNLOCK_WRONG_CODE},
    {IDD_UNLOCK_FAILED, IDC_UNLOCK_RESULT_MESSAGE, IDS_UNLOCK_FAILED_FORMAT},
    {IDD_UNLOCK_FAILED, IDC_UNLOCK_RESULT_MESSAGE, IDS_INITIALIZE_FAILED_FORMAT},
    {IDD_UNLOCK_INIT_TOOL, IDC_UNLOCK_RESULT_HEADING, IDS_UNLOCK_INIT_TOOL_HEADING},
    {IDD_CARD_EXPIRY, IDCANCEL, IDS_CARD_EXPIRY_CLOSE},
    {IDD_ABOUT, IDC_ABOUT_VERSION, IDS_ABOUT_VERSION_FORMAT},
    {IDD_ABOUT, IDC_ABOUT_CREDITS_NOTE, IDS_ABOUT_CREDITS_NOTE},
    {IDD_ABOUT, IDC_ABOUT_NOTICE, IDS_ABOUT_NOTICE},
};

// Dialogs that stand in one window together, whose mnemonics share the keyboard. Every dialog is in
// one of them.
const std::vector<std::vector<int>> kWindows = {
    {IDD_ENTER_PIN},
    {IDD_CHANGE_PIN_MAIN, IDD_CHANGE_PIN_PANEL, IDD_POLICIES},
    {IDD_UNLOCK_CARD, IDD_POLICIES},
    {IDD_UNLOCK_FAILED},
    {IDD_UNLOCK_SUCCESS},
    {IDD_UNLOCK_INIT_TOOL},
    {IDD_INITIALIZE_PIN, IDD_POLICIES},
    {IDD_RESET_CARD_MAIN, IDD_RESET_CARD_PANEL},
    {IDD_UNLOCK_CODE, IDD_UNLOCK_CODE_PANEL},
    {IDD_CARD_MANAGER_LOCKED},
    {IDD_CARD_EXPIRY},
    {IDD_ABOUT}};

// The rule panel's code moves its lines to the right by at most this, in pixels.
constexpr int kLargestIndent = 20;

// The text with a long number or `inserted` in place of its conversion, if it has one. The text is
// no format here: one with other conversions is to fail its test, and not to break this one.
std::string Filled(const std::string& text, const std::string& inserted) {
    const std::string numbered = std::regex_replace(text, std::regex("%d"), "999");
    return std::regex_replace(numbered, std::regex("%s"), inserted);
}

// What is put into the texts of the dialog: a long telephone number, or the longest failure.
std::string Inserted(const ResourceModule& module, int dialog) {
    std::string longest;
    for (const NamedNumber& error : NamedNumbers("IDS_ERROR_")) {
        longest = std::max(longest, module.Text(error.nNumber),
                           [](const auto& a, const auto& b) { return a.size() < b.size(); });
    }
    return dialog == IDD_UNLOCK_FAILED ? longest : "+44 20 7946 0123, extension 4567";
}

// Puts the texts in one after the other, and says which does not fit. The last ones stay.
std::vector<std::string> PutRunTimeTexts(const ResourceModule& module, int dialog,
                                         const TemplateWindow& window) {
    std::vector<std::string> clipped;
    for (const RunTimeText& text : kRunTimeTexts) {
        if (text.dialog == dialog) {
            const std::string filled = Filled(module.Text(text.string), Inserted(module, dialog));
            SetDlgItemTextA(window.get(), text.control, filled.c_str());
            clipped.push_back(ClippedBecause(Control::Of(GetDlgItem(window.get(), text.control))));
        }
    }
    return clipped;
}

bool Contains(const RECT& outer, const RECT& inner) {
    RECT common{};
    return IntersectRect(&common, &outer, &inner) && EqualRect(&common, &inner);
}

// A group box lies around others; a hidden control may stand in for one in the very same place, and
// a hidden edit for all that belongs to another one.
bool MayOverlap(const Control& a, const Control& b) {
    if ((a.IsEdit() && !a.IsVisible()) || (b.IsEdit() && !b.IsVisible())) {
        return true;
    }
    return (a.IsGroupBox() && Contains(a.rect, b.rect)) ||
           (b.IsGroupBox() && Contains(b.rect, a.rect)) ||
           ((!a.IsVisible() || !b.IsVisible()) && EqualRect(&a.rect, &b.rect) != FALSE);
}

// Whether the eye goes from `a` to `b`: on in the line, or down.
bool ReadsOn(const Control& a, const Control& b) {
    const bool oneLine = a.rect.top < b.rect.bottom && b.rect.top < a.rect.bottom;
    return oneLine ? b.rect.left >= a.rect.right : b.rect.top >= a.rect.bottom;
}

// A dialog of a language at a resolution in percent, with its run-time texts.
class EachDialog : public ::testing::TestWithParam<std::tuple<std::string, NamedNumber, int>> {
protected:
    const ResourceModule m_module{std::get<0>(GetParam())};
    const int m_nDialog = std::get<1>(GetParam()).nNumber;
    const TemplateWindow m_window{m_module, m_nDialog, std::get<2>(GetParam())};
    const std::vector<std::string> m_clipped = PutRunTimeTexts(m_module, m_nDialog, m_window);
    const std::vector<Control> m_controls = m_window.Controls();
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Resources, EachDialog,
                         ::testing::Combine(::testing::ValuesIn(Languages()),
                                            ::testing::ValuesIn(NamedNumbers("IDD_")),
                                            ::testing::Values(100, 125, 150, 200)),
                         [](const auto& test) {
                             return WithoutHyphen(std::get<0>(test.param)) +
                                    std::get<1>(test.param).strName +
                                    std::to_string(std::get<2>(test.param));
                         });
INSTANTIATE_TEST_SUITE_P(Resources, EachLanguage, ::testing::ValuesIn(Languages()),
                         [](const auto& test) { return WithoutHyphen(test.param); });

TEST_P(EachDialog, ClipsNoText) {
    for (const std::string& why : m_clipped) {
        EXPECT_EQ(why, "");
    }
    for (const Control& control : m_controls) {
        EXPECT_EQ(ClippedBecause(control), "");
    }
}

TEST_P(EachDialog, KeepsControlsInsideAndApart) {
    for (auto control = m_controls.begin(); control != m_controls.end(); ++control) {
        RECT reach = control->rect;
        reach.right += m_nDialog == IDD_POLICIES && !control->IsGroupBox() ? kLargestIndent + 1 : 0;
        EXPECT_TRUE(Contains(m_window.ClientRect(), reach))
            << "control " << control->nNumber << " reaches outside the dialog";
        for (auto other = control + 1; other != m_controls.end(); ++other) {
            RECT common{};
            EXPECT_FALSE(IntersectRect(&common, &control->rect, &other->rect) &&
                         !MayOverlap(*control, *other))
                << "controls " << control->nNumber << " and " << other->nNumber << " overlap";
        }
    }
}

// A challenge is no secret, nor is a number of days. What is one, and is shown all the same, the
// library draws over masks.
const std::set<std::pair<int, int>> kEditsInClear = {
    {IDD_UNLOCK_CARD, IDC_UNLOCK_CARD_CHALLENGE},
    {IDD_RESET_CARD_PANEL, IDC_RESET_CARD_CHALLENGE},
    {IDD_CARD_EXPIRY, IDC_CARD_EXPIRY_DAYS},
};

TEST_P(EachDialog, HidesEveryPinAndLabelsEveryEditForTheKeyboardAndScreenReaders) {
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const Control& edit = m_controls[i];
        if (!edit.IsEdit()) {
            continue;
        }
        const Control& label = m_controls[std::max<std::size_t>(i, 1) - 1];
        EXPECT_TRUE((label.IsTextStatic() || label.IsCheckButton()) && MnemonicOf(label) != 0)
            << "what stands before edit " << edit.nNumber << " is no label with a mnemonic";
        EXPECT_TRUE(edit.IsTabStop()) << "edit " << edit.nNumber;
        EXPECT_NE((edit.dwStyle & ES_PASSWORD) != 0,
                  kEditsInClear.contains({m_nDialog, edit.nNumber}))
            << "edit " << edit.nNumber;
    }
}

TEST_P(EachDialog, TabsTheWayTheEyeReads) {
    std::vector<Control> stops = m_controls;
    std::erase_if(stops, [](const Control& c) { return !c.IsTabStop() || !c.IsVisible(); });
    for (std::size_t i = 1; i < stops.size(); ++i) {
        EXPECT_TRUE(ReadsOn(stops[i - 1], stops[i]))
            << "from control " << stops[i - 1].nNumber << " to " << stops[i].nNumber;
    }
}

// OK and Cancel have Enter and Esc; a mnemonic of theirs would be taken from a field.
TEST_P(EachLanguage, MnemonicsAreUniqueInAWindow) {
    std::set<int> looked;
    for (const std::vector<int>& dialogs : kWindows) {
        std::map<char, std::string> taken;
        for (const int dialog : dialogs) {
            looked.insert(dialog);
            const TemplateWindow window(m_module, dialog);
            PutRunTimeTexts(m_module, dialog, window);
            for (const Control& control : window.Controls()) {
                const char mnemonic = MnemonicOf(control);
                if (mnemonic == 0) {
                    continue;
                }
                EXPECT_TRUE(control.nNumber != IDOK && control.nNumber != IDCANCEL) << dialog;
                EXPECT_TRUE(taken.emplace(mnemonic, control.strText).second)
                    << "\"" << taken[mnemonic] << "\" and \"" << control.strText << "\"";
            }
        }
    }
    EXPECT_EQ(looked, m_module.Numbers(RT_DIALOG));
    std::set<int> menu;
    for (const int item : {IDS_EDIT_MENU_PASTE, IDS_EDIT_MENU_DELETE, IDS_EDIT_MENU_SELECT_ALL}) {
        const std::string text = m_module.Text(item);
        EXPECT_TRUE(menu.insert(std::tolower(text.at(text.find('&') + 1))).second) << text;
    }
}

// Its notice is as high as the text is long in one line; what words leave free at the ends of lines
// counts as well.
TEST_P(EachLanguage, FitsTheNoticeOfABlockedCardManager) {
    const TemplateWindow window(m_module, IDD_CARD_MANAGER_LOCKED);
    const HWND text = GetDlgItem(window.get(), IDC_CARD_MANAGER_LOCKED_TEXT);
    SetWindowTextA(text, m_module.Text(IDS_CARD_MANAGER_LOCKED).c_str());
    const Control control = Control::Of(text);
    const mvp::WindowDc dc(text);
    const mvp::DcSelection font(dc.get(),
                                reinterpret_cast<HFONT>(SendMessageA(text, WM_GETFONT, 0, 0)));
    SIZE line{};
    GetTextExtentPoint32A(dc.get(), control.strText.c_str(),
                          static_cast<int>(control.strText.size()), &line);
    const int width = control.rect.right - control.rect.left;
    SetWindowPos(text, nullptr, 0, 0, width, mvp::NoticeTextHeight(line.cx, line.cy, width),
                 SWP_NOMOVE);
    EXPECT_EQ(ClippedBecause(Control::Of(text)), "");
}

// Drawn at another size than its control's, a picture would be stretched on an ordinary screen.
TEST_P(EachLanguage, PicturesHaveTheSizeOfTheirControls) {
    const TemplateWindow window(m_module, IDD_ENTER_PIN);
    const std::pair<int, int> pictures[] = {{IDC_ENTER_PIN_BANNER, IDB_ENTER_PIN_BANNER},
                                            {IDC_ENTER_PIN_PROGRESS, IDB_ENTER_PIN_PROGRESS}};
    for (const auto& [control, picture] : pictures) {
        const BITMAP size = m_module.BitmapPixels(picture).size;
        RECT rect{};
        GetClientRect(GetDlgItem(window.get(), control), &rect);
        EXPECT_EQ(size.bmWidth, rect.right) << "picture " << picture;
        EXPECT_EQ(size.bmHeight, rect.bottom) << "picture " << picture;
        const BITMAP large = m_module.BitmapPixels(picture + BITMAP_AT_200_PERCENT).size;
        EXPECT_TRUE(large.bmWidth == 2 * size.bmWidth && large.bmHeight == 2 * size.bmHeight);
    }
}

TEST_P(EachLanguage, HasTheStatedThingsAndNoOther) {
    const std::pair<LPCSTR, const char*> kinds[] = {
        {RT_DIALOG, "IDD_"}, {RT_STRING, "IDS_"}, {RT_GROUP_ICON, "IDI_"}, {RT_BITMAP, "IDB_"}};
    for (const auto& [type, prefix] : kinds) {
        std::set<int> numbers;
        for (const NamedNumber& named : NamedNumbers(prefix)) {
            numbers.insert(named.nNumber);
        }
        EXPECT_EQ(m_module.Numbers(type), numbers) << prefix;
    }
}

TEST_P(EachLanguage, TakesInEachFormatWhatTheCodePutsIn) {
    std::map<int, std::string> formats = {
        {IDS_POLICIES_MIN_FORMAT, "%d"},        {IDS_POLICIES_MAX_FORMAT, "%d"},
        {IDS_UNLOCK_HELP_DESK_FORMAT, "%s"},    {IDS_UNLOCK_FAILED_FORMAT, "%s"},
        {IDS_UNLOCK_CODE_FAILED_FORMAT, "%s"},  {IDS_INITIALIZE_FAILED_FORMAT, "%s"},
        {IDS_CARD_EXPIRY_EXPIRES_FORMAT, "%s"}, {IDS_ABOUT_VERSION_FORMAT, "%s"},
    };
    for (const int string : m_module.Numbers(RT_STRING)) {
        const std::string conversion = formats[string];
        const std::string text = m_module.Text(string);
        EXPECT_EQ(std::ranges::count(text, '%'), conversion.empty() ? 0 : 1) << text;
        EXPECT_NE(text.find(conversion), std::string::npos) << text;
    }
}

// The texts of the Caps Lock balloon are kept in 260 characters; a balloon's title holds 99.
TEST_P(EachLanguage, FitsTheBuffersOfTheCapsLockBalloon) {
    EXPECT_LT(m_module.Text(IDS_CAPS_LOCK_TITLE).size(), 100U);
    EXPECT_LT(m_module.Text(IDS_CAPS_LOCK_PIN).size(), 260U);
    EXPECT_LT(m_module.Text(IDS_CAPS_LOCK_PASSWORD).size(), 260U);
}

TEST_P(EachLanguage, DrawsEveryIconAtSixteenPixels) {
    for (const int number : m_module.Numbers(RT_GROUP_ICON)) {
        const BITMAP size = m_module.IconPixels(number, 16).size;
        EXPECT_EQ(size.bmWidth, 16) << "icon " << number;
        EXPECT_EQ(size.bmBitsPixel, 32) << "icon " << number;
    }
}
