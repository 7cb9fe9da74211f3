// The languages hold the same things under the same numbers, and the numbers are those that
// resource_numbers.h names.

#include <windows.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "resource_module.h"
#include "resources/resource_numbers.h"
#include "template_window.h"

namespace {

struct Kind {
    const char* prefix;
    LPCSTR type;
};
const Kind kKinds[] = {
    {"IDD_", RT_DIALOG}, {"IDS_", RT_STRING}, {"IDI_", RT_GROUP_ICON}, {"IDB_", RT_BITMAP}};

// The conversions of a printf-style text, in order: what the code's arguments must match.
std::vector<std::string> Conversions(const std::string& text) {
    std::vector<std::string> found;
    for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at)) {
        const std::size_t end = text.find_first_of("diouxXcsp%", at + 1);
        found.push_back(text.substr(at, end == std::string::npos ? end : end - at + 1));
        at = end == std::string::npos ? text.size() : end + 1;
    }
    return found;
}

// What a template's code relies on: which controls there are, of which kind, in which order.
std::vector<std::string> Outline(const ResourceModule& module, int dialog) {
    std::vector<std::string> lines;
    for (const Control& control : TemplateWindow(module, dialog).Controls())
        lines.push_back(std::to_string(control.nNumber) + " " + control.strClass + " " +
                        std::to_string(control.dwStyle));
    return lines;
}

// The dialog whose name, without IDD_, begins the control's name, without IDC_.
int DialogOf(const std::string& controlName) {
    NamedNumber best{"", 0};
    for (const NamedNumber& dialog : NamedNumbers("IDD_")) {
        const std::string stem = dialog.name.substr(4) + "_";
        if (controlName.compare(4, stem.size(), stem) == 0 && stem.size() > best.name.size())
            best = {stem, dialog.number};
    }
    return best.number;
}

class EachLanguage : public ::testing::TestWithParam<std::string> {
protected:
    const ResourceModule m_module{GetParam()};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Resources, EachLanguage, ::testing::ValuesIn(Languages()),
                         [](const auto& test) { return test.param; });

TEST_P(EachLanguage, HasEveryNamedNumberAndNoOther) {
    for (const Kind& kind : kKinds) {
        std::set<int> named;
        for (const NamedNumber& number : NamedNumbers(kind.prefix))
            named.insert(number.number);
        ASSERT_FALSE(named.empty()) << kind.prefix;
        EXPECT_EQ(m_module.Numbers(kind.type), named) << kind.prefix;
    }
}

TEST_P(EachLanguage, EveryNamedControlIsInItsDialogAndNoOther) {
    std::set<std::pair<int, int>> named;
    for (const NamedNumber& control : NamedNumbers("IDC_")) {
        const int dialog = DialogOf(control.name);
        ASSERT_NE(dialog, 0) << control.name << " names no dialog";
        EXPECT_TRUE(named.emplace(dialog, control.number).second) << control.name << " is taken";
    }
    std::set<std::pair<int, int>> present;
    for (const NamedNumber& dialog : NamedNumbers("IDD_")) {
        for (const Control& control : TemplateWindow(m_module, dialog.number).Controls()) {
            // A static without a number reads as 65535 here.
            const bool common = control.nNumber == IDOK || control.nNumber == IDCANCEL ||
                                static_cast<short>(control.nNumber) == IDC_STATIC;
            if (common)
                continue;
            EXPECT_TRUE(present.emplace(dialog.number, control.nNumber).second)
                << dialog.name << " has control " << control.nNumber << " twice";
        }
    }
    EXPECT_EQ(present, named);
}

TEST_P(EachLanguage, AgreesWithTheFirstLanguage) {
    const ResourceModule first(Languages().front());
    for (const int dialog : first.Numbers(RT_DIALOG))
        EXPECT_EQ(Outline(m_module, dialog), Outline(first, dialog)) << "template " << dialog;
    for (const int string : first.Numbers(RT_STRING))
        EXPECT_EQ(Conversions(m_module.Text(string)), Conversions(first.Text(string)))
            << "string " << string;
}

TEST_P(EachLanguage, TakesOneIntegerInTheLengthFormats) {
    for (const int format : {IDS_POLICIES_MIN_FORMAT, IDS_POLICIES_MAX_FORMAT})
        EXPECT_EQ(Conversions(m_module.Text(format)), std::vector<std::string>{"%d"});
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
