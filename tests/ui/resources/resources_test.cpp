// The numbers of the resource module are as they are promised to whoever translates it or embeds
// the library's panels, every language holds the same things under them, and every template of
// every language is a window in which nothing is clipped, nothing overlaps, and the keyboard finds
// its way. Texts that the code puts into controls are put there first.

#include <windows.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "resource_module.h"
#include "resources/resource_numbers.h"
#include "template_window.h"

namespace {

// The numbers behind the names that begin alike: literals, so that a number that changes in
// resource_numbers.h, and with it in the sources and the scripts, is noticed.
constexpr char kStatedNumbers[] = R"(
IDD_: CHANGE_PIN_PANEL 3002 CHANGE_PIN_MAIN 3003 UNLOCK_CODE 3005 INITIALIZE_PIN 3006
    UNLOCK_CARD 3007 UNLOCK_FAILED 3008 UNLOCK_INIT_TOOL 3009 UNLOCK_SUCCESS 3010 POLICIES 3011
    CARD_MANAGER_LOCKED 3040 ENTER_PIN 3073 UNLOCK_CODE_PANEL 3077 RESET_CARD_PANEL 3079
    RESET_CARD_MAIN 3081 CARD_EXPIRY 3082 ABOUT 3104
IDC_CHANGE_PIN_PANEL_: CURRENT_EDIT 3003 CONFIRM_EDIT 3004 NEW_EDIT 3005 CURRENT_LABEL 3017
    CONFIRM_LABEL 3018 NEW_LABEL 3019 POLICIES_PLACE 3020 INSTRUCTION 3022
IDC_CHANGE_PIN_MAIN_: PANEL_PLACE 3010
IDC_POLICIES_: ALPHA_TEXT 3001 CONFIRM_TEXT 3002 MAX_TEXT 3006 MIN_TEXT 3007 BOX 3008
    SAME_TEXT 3009 ALPHA_ICON 3011 CONFIRM_ICON 3012 MAX_ICON 3013 MIN_ICON 3014 SAME_ICON 3015
    WEAK_ICON 3016 WEAK_TEXT 3023
IDC_ENTER_PIN_: BANNER 3047 PROGRESS 3048 EDIT 3049 PROMPT 3074 BRAND_BANNER 3075
    BRAND_PROGRESS 3076
IDC_UNLOCK_CARD_: CHALLENGE 3026 CONFIRM_EDIT 3028 NEW_EDIT 3029 CODE_EDIT 3030 HEADING 3032
    CHALLENGE_LABEL 3033 CHALLENGE_NOTE 3034 HELP_DESK 3035 PIN_BOX 3037 CONFIRM_LABEL 3038
    NEW_LABEL 3039 POLICIES_PLACE 3040 INSTRUCTION 3042 CODE_BOX 3043 CODE_LABEL 3044
    CODE_NOTE 3046
IDC_UNLOCK_RESULT_: HEADING 3032 ICON 3036 MESSAGE 3041
IDC_INITIALIZE_PIN_: NEW_EDIT 3029 CONFIRM_EDIT 3031 HEADING 3032 POLICIES_PLACE 3040
IDC_UNLOCK_CODE_: PANEL_PLACE 3050 NEVER_AGAIN 3024 CODE 3045
IDC_CARD_MANAGER_LOCKED_: TEXT 3025
IDC_RESET_CARD_: PANEL_PLACE 3061 PIN_EDIT 3003 PIN_ROUTE 3051 CODE_ROUTE 3052 CODE_EDIT 3053
    CHALLENGE_LABEL 3054 CHALLENGE 3055 RESPONSE_LABEL 3056 RESPONSE_EDIT 3057
    CHALLENGE_NOTE 3059 RESPONSE_NOTE 3060
IDC_CARD_EXPIRY_: HEADING 3022 DAYS 3049 SPIN 3064 REMIND 3065 LIST 3066 LIST_LABEL 3067
    SEPARATOR 3068 DAYS_LABEL 3069 NEVER_AGAIN 3071 SENTENCE 3073
IDC_ABOUT_: CAPTION 1000 CREDITS_NOTE 1001 NAME 1005 VERSION 1006 NOTICE 1007 CREDITS 1008 MARK 1009
IDS_: POLICIES_ALPHA 3021 POLICIES_CONFIRM 3023 POLICIES_MAX_FORMAT 3025 POLICIES_MIN_FORMAT 3026
    POLICIES_BOX 3031 POLICIES_SAME 3032 POLICIES_WEAK 3034 CARD_PIN_TITLE 3022
    CHANGE_PIN_CURRENT_LABEL 3028 CHANGE_PIN_CONFIRM_LABEL 3029 CHANGE_PIN_NEW_LABEL 3030
    CHANGE_PIN_INSTRUCTION 3033 CHANGE_PIN_INSTRUCTION_NEW_ONLY 3133
    UNLOCK_INIT_TOOL_HEADING 3035 INITIALIZE_FAILED_TITLE 3036 INITIALIZE_FAILED_HEADING 3037
    UNLOCK_WRONG_CODE 3053 UNLOCK_PINS_DIFFER 3054 UNLOCK_FAILED_FORMAT 3055
    UNLOCK_HELP_DESK 3056 UNLOCK_HELP_DESK_FORMAT 3057 CARD_MANAGER_LOCKED 3040
    UNLOCK_CODE_NONE 3048 UNLOCK_CODE_FAILED_FORMAT 3051 INITIALIZE_FAILED_FORMAT 3052
    CAPS_LOCK_TITLE 3041 CAPS_LOCK_PIN 3042 CAPS_LOCK_PASSWORD 3043 CAPS_LOCK_SYSTEM_BEGIN 3044
    ERROR_GENERAL 3059 ERROR_CARD_ABSENT 3060 ERROR_READER_ABSENT 3061 ERROR_WRONG_PIN 3062
    ERROR_WRONG_UNLOCK_CODE 3063 ERROR_PIN_BLOCKED 3064 ERROR_UNLOCK_CODE_BLOCKED 3065
    ERROR_PIN_REFUSED 3066 ERROR_CARD_UNKNOWN 3067 ERROR_CARD_NOT_INITIALIZED 3068
    ERROR_CANCELLED 3071 ERROR_CARD_IN_USE 3069 ERROR_CARD_COMMUNICATION 3070 LAST_PIN_TRY 3073
    CARD_EXPIRY_EXPIRED 3093 CARD_EXPIRY_NAME_COLUMN 3094 CARD_EXPIRY_DATE_COLUMN 3095
    CARD_EXPIRY_DATE_EXPIRED 3096 CARD_EXPIRY_EXPIRES_FORMAT 3116 CARD_EXPIRY_CLOSE 3117
    POPUP_NO_READER 3038 POPUP_CARD_ALERT 3039 POPUP_CLOSE_LINK 3102 POPUP_HELP_LINK 3115
    POPUP_TITLE 3127 ABOUT_VERSION_FORMAT 3104 ABOUT_CREDITS_NOTE 3106 ABOUT_TITLE 3107
    ABOUT_NOTICE 3109
IDI_: CARD_PIN 3012 CARD_INITIALIZE 3013 RULE_VIOLATED 3014 RULE_SATISFIED 3016 CARD_UNLOCK 3018
    CERTIFICATE_VALID 3083 CERTIFICATE_EXPIRED 3084 ABOUT 3104 POPUP_OTP 3128 POPUP_CARD_ALERT 3129 POPUP_NO_READER 3130
IDB_: POPUP_SKIN 3102 POPUP_LINK_BULLET 3125 POPUP_HELP_BULLET 3126 ENTER_PIN_BANNER 3201
    ENTER_PIN_PROGRESS 3202)";

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
                             return std::get<0>(test.param) + std::get<1>(test.param).strName +
                                    std::to_string(std::get<2>(test.param));
                         });
INSTANTIATE_TEST_SUITE_P(Resources, EachLanguage, ::testing::ValuesIn(Languages()),
                         [](const auto& test) { return test.param; });

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
    }
}

TEST(ResourceNumbers, AreTheStatedOnes) {
    std::map<std::string, int> stated = {{"IDC_STATIC", -1}};
    std::istringstream words(kStatedNumbers);
    for (std::string word, prefix; words >> word;) {
        if (word.back() == ':') {
            prefix = word.substr(0, word.size() - 1);
        } else {
            words >> stated[prefix + word];
        }
    }
    std::map<std::string, int> named;
    for (const auto& [name, number] : NamedNumbers("ID")) {
        named.emplace(name, number);
    }
    EXPECT_EQ(named, stated);
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
