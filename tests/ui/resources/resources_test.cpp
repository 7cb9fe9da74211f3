// The numbers of the resource module are as they are promised to whoever translates it or embeds
// the library's panels, every language holds the same things under them, and every template of
// every language is a window in which nothing is clipped, nothing overlaps, and the keyboard finds
// its way. Texts that the code puts into controls are put there first.

#include <windows.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "resource_module.h"
#include "resources/resource_numbers.h"
#include "template_window.h"

namespace {

// The numbers behind the names that begin alike, in the order of resource_numbers.h: literals, so
// that a number that changes there, and with it in the sources and the scripts, is noticed.
const std::map<std::string, std::string> kStatedNumbers = {
    {"IDD_", "CHANGE_PIN_PANEL 3002, CHANGE_PIN_MAIN 3003, POLICIES 3011, ENTER_PIN 3073, "},
    {"IDC_CHANGE_PIN_PANEL_",
     "CURRENT_EDIT 3003, CONFIRM_EDIT 3004, NEW_EDIT 3005, CURRENT_LABEL 3017, "
     "CONFIRM_LABEL 3018, NEW_LABEL 3019, POLICIES_PLACE 3020, INSTRUCTION 3022, "},
    {"IDC_CHANGE_PIN_MAIN_", "PANEL_PLACE 3010, "},
    {"IDC_POLICIES_",
     "ALPHA_TEXT 3001, CONFIRM_TEXT 3002, MAX_TEXT 3006, MIN_TEXT 3007, BOX 3008, "
     "SAME_TEXT 3009, ALPHA_ICON 3011, CONFIRM_ICON 3012, MAX_ICON 3013, MIN_ICON 3014, "
     "SAME_ICON 3015, WEAK_ICON 3016, WEAK_TEXT 3023, "},
    {"IDC_ENTER_PIN_",
     "BANNER 3047, PROGRESS 3048, EDIT 3049, PROMPT 3074, BRAND_BANNER 3075, "
     "BRAND_PROGRESS 3076, "},
    {"IDS_",
     "POLICIES_ALPHA 3021, POLICIES_CONFIRM 3023, POLICIES_MAX_FORMAT 3025, "
     "POLICIES_MIN_FORMAT 3026, POLICIES_BOX 3031, POLICIES_SAME 3032, POLICIES_WEAK 3034, "
     "CARD_PIN_TITLE 3022, CHANGE_PIN_CURRENT_LABEL 3028, CHANGE_PIN_CONFIRM_LABEL 3029, "
     "CHANGE_PIN_NEW_LABEL 3030, CHANGE_PIN_INSTRUCTION 3033, "
     "CHANGE_PIN_INSTRUCTION_NEW_ONLY 3133, CAPS_LOCK_TITLE 3041, CAPS_LOCK_PIN 3042, "
     "CAPS_LOCK_PASSWORD 3043, CAPS_LOCK_SYSTEM_BEGIN 3044, ERROR_GENERAL 3059, "
     "ERROR_CARD_ABSENT 3060, ERROR_READER_ABSENT 3061, ERROR_WRONG_PIN 3062, "
     "ERROR_WRONG_UNLOCK_CODE 3063, ERROR_PIN_BLOCKED 3064, ERROR_UNLOCK_CODE_BLOCKED 3065, "
     "ERROR_PIN_REFUSED 3066, ERROR_CARD_UNKNOWN 3067, ERROR_CARD_NOT_INITIALIZED 3068, "
     "ERROR_CANCELLED 3071, ERROR_CARD_IN_USE 3069, ERROR_CARD_COMMUNICATION 3070, "
     "LAST_PIN_TRY 3073, "},
    {"IDI_", "CARD_PIN 3012, RULE_VIOLATED 3014, RULE_SATISFIED 3016, "},
    {"IDB_", "ENTER_PIN_BANNER 3201, ENTER_PIN_PROGRESS 3202, "},
};

struct RunTimeText {
    int dialog;
    int control;
    int string;
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
};

// Dialogs that stand in one window together, whose mnemonics share the keyboard. Every dialog is in
// one of them.
const std::vector<std::vector<int>> kWindows = {
    {IDD_ENTER_PIN},
    {IDD_CHANGE_PIN_MAIN, IDD_CHANGE_PIN_PANEL, IDD_POLICIES},
};

// The rule panel's code moves its lines to the right by at most this, in pixels.
constexpr int kLargestIndent = 20;

// The text with a long number in place of its conversion, if it has one. The text is no format
// here: one with other conversions is to fail its test, and not to break this one.
std::string Filled(std::string text) {
    if (const std::size_t at = text.find("%d"); at != std::string::npos) {
        text.replace(at, 2, "999");
    }
    return text;
}

// Puts the texts in one after the other, and says which does not fit. The last ones stay.
std::vector<std::string> PutRunTimeTexts(const ResourceModule& module, int dialog,
                                         const TemplateWindow& window) {
    std::vector<std::string> clipped;
    for (const RunTimeText& text : kRunTimeTexts) {
        if (text.dialog == dialog) {
            SetDlgItemTextA(window.get(), text.control, Filled(module.Text(text.string)).c_str());
            clipped.push_back(ClippedBecause(Control::Of(GetDlgItem(window.get(), text.control))));
        }
    }
    return clipped;
}

bool Contains(const RECT& outer, const RECT& inner) {
    RECT common{};
    return IntersectRect(&common, &outer, &inner) && EqualRect(&common, &inner);
}

// A group box lies around others; a hidden control may stand in for one in the very same place.
bool MayOverlap(const Control& a, const Control& b) {
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

class EachLanguage : public ::testing::TestWithParam<std::string> {
protected:
    const ResourceModule m_module{GetParam()};
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

// Every edit is for a PIN.
TEST_P(EachDialog, HidesEveryEditAndLabelsItForTheKeyboardAndScreenReaders) {
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const Control& edit = m_controls[i];
        if (!edit.IsEdit()) {
            continue;
        }
        EXPECT_TRUE(i > 0 && m_controls[i - 1].IsTextStatic() && MnemonicOf(m_controls[i - 1]) != 0)
            << "what stands before edit " << edit.nNumber << " is no label with a mnemonic";
        EXPECT_TRUE(edit.IsTabStop()) << "edit " << edit.nNumber;
        EXPECT_TRUE(edit.dwStyle & ES_PASSWORD) << "edit " << edit.nNumber;
    }
}

TEST_P(EachDialog, TabsTheWayTheEyeReads) {
    const Control* previous = nullptr;
    for (const Control& control : m_controls) {
        if (!control.IsTabStop()) {
            continue;
        }
        EXPECT_TRUE(previous == nullptr || ReadsOn(*previous, control))
            << "from control " << (previous == nullptr ? 0 : previous->nNumber) << " to "
            << control.nNumber;
        previous = &control;
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
        const mvp::Bitmap bitmap(LoadBitmapA(m_module.get(), MAKEINTRESOURCEA(picture)));
        BITMAP size{};
        GetObjectA(bitmap.get(), sizeof(size), &size);
        RECT rect{};
        GetClientRect(GetDlgItem(window.get(), control), &rect);
        EXPECT_EQ(size.bmWidth, rect.right) << "picture " << picture;
        EXPECT_EQ(size.bmHeight, rect.bottom) << "picture " << picture;
    }
}

TEST(ResourceNumbers, AreTheStatedOnes) {
    std::size_t named = 1;  // IDC_STATIC
    for (const auto& [prefix, stated] : kStatedNumbers) {
        std::string text;
        for (const auto& [name, number] : NamedNumbers(prefix)) {
            text += name.substr(prefix.size()) + " " + std::to_string(number) + ", ";
            ++named;
        }
        EXPECT_EQ(text, stated) << prefix;
    }
    EXPECT_EQ(named, NamedNumbers("ID").size()) << "one is in no group";
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

TEST_P(EachLanguage, TakesOneIntegerInTheLengthFormatsAlone) {
    for (const int string : m_module.Numbers(RT_STRING)) {
        const bool length = string == IDS_POLICIES_MIN_FORMAT || string == IDS_POLICIES_MAX_FORMAT;
        const std::string text = m_module.Text(string);
        EXPECT_EQ(std::ranges::count(text, '%'), length ? 1 : 0) << text;
        EXPECT_EQ(text.find("%d") != std::string::npos, length) << text;
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
        const mvp::Icon icon(static_cast<HICON>(
            LoadImageA(m_module.get(), MAKEINTRESOURCEA(number), IMAGE_ICON, 16, 16, 0)));
        ASSERT_TRUE(icon) << "icon " << number;
        ICONINFO info{};
        ASSERT_TRUE(GetIconInfo(icon.get(), &info));
        const mvp::Bitmap colour(info.hbmColor);
        const mvp::Bitmap mask(info.hbmMask);
        BITMAP bitmap{};
        GetObjectA(colour.get(), sizeof(bitmap), &bitmap);
        EXPECT_EQ(bitmap.bmWidth, 16) << "icon " << number;
        EXPECT_EQ(bitmap.bmBitsPixel, 32) << "icon " << number;
    }
}
