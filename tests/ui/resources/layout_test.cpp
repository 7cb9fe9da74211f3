// Every template of every language as real windows: nothing is clipped, nothing overlaps, and the
// keyboard finds its way. Texts that the code puts into controls are put there first.

#include <windows.h>

#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "resource_module.h"
#include "stated_numbers.h"
#include "template_window.h"

namespace {

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
    if (const std::size_t at = text.find("%d"); at != std::string::npos)
        text.replace(at, 2, "999");
    return text;
}

// Puts the texts in one after the other, and says which does not fit. The last ones stay.
std::vector<std::string> PutRunTimeTexts(const ResourceModule& module, int dialog,
                                         const TemplateWindow& window) {
    std::vector<std::string> clipped;
    for (const RunTimeText& text : kRunTimeTexts) {
        if (text.dialog != dialog)
            continue;
        SetDlgItemTextA(window.get(), text.control, Filled(module.Text(text.string)).c_str());
        for (const Control& control : window.Controls()) {
            if (control.nNumber == text.control && !ClippedBecause(control).empty())
                clipped.push_back(ClippedBecause(control));
        }
    }
    return clipped;
}

bool Intersect(const RECT& a, const RECT& b) {
    RECT common{};
    return IntersectRect(&common, &a, &b) != FALSE;
}

bool Contains(const RECT& outer, const RECT& inner) {
    RECT common{};
    return IntersectRect(&common, &outer, &inner) != FALSE && EqualRect(&common, &inner) != FALSE;
}

// A group box lies around others; a hidden control may stand in for one in the very same place.
bool MayOverlap(const Control& a, const Control& b) {
    if ((a.IsGroupBox() && Contains(a.rect, b.rect)) ||
        (b.IsGroupBox() && Contains(b.rect, a.rect)))
        return true;
    return (!a.IsVisible() || !b.IsVisible()) && EqualRect(&a.rect, &b.rect) != FALSE;
}

// Whether the eye goes from `a` to `b`: on in the line, or down.
bool ReadsOn(const Control& a, const Control& b) {
    const bool oneLine = a.rect.top < b.rect.bottom && b.rect.top < a.rect.bottom;
    return oneLine ? b.rect.left >= a.rect.right : b.rect.top >= a.rect.bottom;
}

// A dialog of a language at a resolution in percent, with its run-time texts.
class EachDialog : public ::testing::TestWithParam<std::tuple<std::string, StatedDialog, int>> {
protected:
    const ResourceModule m_module{std::get<0>(GetParam())};
    const int m_nDialog = std::get<1>(GetParam()).nStated;
    const TemplateWindow m_window{m_module, m_nDialog, std::get<2>(GetParam())};
    const std::vector<std::string> m_clipped = PutRunTimeTexts(m_module, m_nDialog, m_window);
    const std::vector<Control> m_controls = m_window.Controls();
};

class EachLanguageWindows : public ::testing::TestWithParam<std::string> {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Resources, EachDialog,
                         ::testing::Combine(::testing::ValuesIn(Languages()),
                                            ::testing::ValuesIn(kStatedDialogs),
                                            ::testing::Values(100, 125, 150, 200)),
                         [](const auto& test) {
                             return std::get<0>(test.param) + "_" +
                                    std::get<1>(test.param).pszName + "_" +
                                    std::to_string(std::get<2>(test.param));
                         });
INSTANTIATE_TEST_SUITE_P(Resources, EachLanguageWindows, ::testing::ValuesIn(Languages()),
                         [](const auto& test) { return test.param; });

TEST_P(EachDialog, ClipsNoText) {
    for (const std::string& why : m_clipped)
        ADD_FAILURE() << why;
    for (const Control& control : m_controls)
        EXPECT_EQ(ClippedBecause(control), "");
}

TEST_P(EachDialog, KeepsControlsInsideAndApart) {
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const Control& control = m_controls[i];
        EXPECT_TRUE(Contains(m_window.ClientRect(), control.rect))
            << "control " << control.nNumber << " reaches outside the dialog";
        for (std::size_t j = i + 1; j < m_controls.size(); ++j)
            EXPECT_FALSE(Intersect(control.rect, m_controls[j].rect) &&
                         !MayOverlap(control, m_controls[j]))
                << "controls " << control.nNumber << " and " << m_controls[j].nNumber << " overlap";
    }
}

TEST_P(EachDialog, LabelsEveryEditForTheKeyboardAndScreenReaders) {
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const Control& edit = m_controls[i];
        if (!edit.IsEdit())
            continue;
        ASSERT_GT(i, 0U) << "edit " << edit.nNumber << " has no label";
        const Control& label = m_controls[i - 1];
        EXPECT_TRUE(label.IsTextStatic() && MnemonicOf(label) != 0)
            << "what stands before edit " << edit.nNumber << " is no label with a mnemonic: \""
            << label.strText << "\"";
        EXPECT_TRUE(edit.IsTabStop()) << "edit " << edit.nNumber;
    }
}

TEST_P(EachDialog, TabsTheWayTheEyeReads) {
    const Control* previous = nullptr;
    for (const Control& control : m_controls) {
        if (!control.IsTabStop())
            continue;
        EXPECT_TRUE(previous == nullptr || ReadsOn(*previous, control))
            << "from control " << (previous == nullptr ? 0 : previous->nNumber) << " to "
            << control.nNumber;
        previous = &control;
    }
}

// OK and Cancel have Enter and Esc; a mnemonic of theirs would be taken from a field.
TEST_P(EachLanguageWindows, MnemonicsAreUniqueInAWindow) {
    const ResourceModule module(GetParam());
    std::set<int> looked;
    for (const std::vector<int>& dialogs : kWindows) {
        std::map<char, std::string> taken;
        for (const int dialog : dialogs) {
            looked.insert(dialog);
            const TemplateWindow window(module, dialog);
            PutRunTimeTexts(module, dialog, window);
            for (const Control& control : window.Controls()) {
                const char mnemonic = MnemonicOf(control);
                if (mnemonic == 0)
                    continue;
                EXPECT_TRUE(control.nNumber != IDOK && control.nNumber != IDCANCEL) << dialog;
                EXPECT_TRUE(taken.emplace(mnemonic, control.strText).second)
                    << "\"" << taken[mnemonic] << "\" and \"" << control.strText << "\"";
            }
        }
    }
    EXPECT_EQ(looked, module.Numbers(RT_DIALOG));
}

TEST_P(EachLanguageWindows, RuleLinesStayInTheirBoxWhenIndented) {
    const TemplateWindow window(ResourceModule(GetParam()), IDD_POLICIES);
    for (const Control& control : window.Controls()) {
        if (control.IsGroupBox())
            continue;
        EXPECT_LT(control.rect.right + kLargestIndent, window.ClientRect().right)
            << "control " << control.nNumber;
    }
}

TEST_P(EachLanguageWindows, PinEditsHideTheirText) {
    const ResourceModule module(GetParam());
    const std::pair<int, int> edits[] = {
        {IDD_ENTER_PIN, IDC_ENTER_PIN_EDIT},
        {IDD_CHANGE_PIN_PANEL, IDC_CHANGE_PIN_PANEL_CURRENT_EDIT},
        {IDD_CHANGE_PIN_PANEL, IDC_CHANGE_PIN_PANEL_NEW_EDIT},
        {IDD_CHANGE_PIN_PANEL, IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT},
    };
    for (const auto& [dialog, edit] : edits) {
        const TemplateWindow window(module, dialog);
        const HWND hEdit = GetDlgItem(window.get(), edit);
        EXPECT_TRUE(GetWindowLongA(hEdit, GWL_STYLE) & ES_PASSWORD) << "edit " << edit;
    }
}

// Drawn at another size than its control's, a picture would be stretched on an ordinary screen.
TEST_P(EachLanguageWindows, PicturesHaveTheSizeOfTheirControls) {
    const ResourceModule module(GetParam());
    const TemplateWindow window(module, IDD_ENTER_PIN);
    const std::pair<int, int> pictures[] = {{IDC_ENTER_PIN_BANNER, IDB_ENTER_PIN_BANNER},
                                            {IDC_ENTER_PIN_PROGRESS, IDB_ENTER_PIN_PROGRESS}};
    for (const auto& [control, picture] : pictures) {
        const mvp::Bitmap bitmap(LoadBitmapA(module.get(), MAKEINTRESOURCEA(picture)));
        BITMAP size{};
        GetObjectA(bitmap.get(), sizeof(size), &size);
        RECT rect{};
        GetClientRect(GetDlgItem(window.get(), control), &rect);
        EXPECT_EQ(size.bmWidth, rect.right) << "picture " << picture;
        EXPECT_EQ(size.bmHeight, rect.bottom) << "picture " << picture;
    }
}
