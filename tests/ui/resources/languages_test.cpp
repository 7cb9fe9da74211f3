// The languages hold the same things under the same numbers, and the numbers are those that are
// promised.

#include <windows.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "resource_module.h"
#include "stated_numbers.h"
#include "template_window.h"

namespace {

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

// The number and class of every control but the statics that no code asks for, which have none.
std::multimap<int, std::string> NumberedControls(const ResourceModule& module, int dialog) {
    std::multimap<int, std::string> found;
    for (const Control& control : TemplateWindow(module, dialog).Controls()) {
        // Such a static reads as 65535 here.
        if (static_cast<short>(control.nNumber) != IDC_STATIC)
            found.emplace(control.nNumber, control.strClass);
    }
    return found;
}

class EachLanguage : public ::testing::TestWithParam<std::string> {
protected:
    const ResourceModule m_module{GetParam()};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Resources, EachLanguage, ::testing::ValuesIn(Languages()),
                         [](const auto& test) { return test.param; });

TEST_P(EachLanguage, HasTheStatedDialogsAndNoOther) {
    std::set<int> dialogs;
    for (const StatedDialog& dialog : kStatedDialogs) {
        EXPECT_EQ(dialog.nNamed, dialog.nStated) << dialog;
        dialogs.insert(dialog.nStated);
        std::multimap<int, std::string> controls;
        for (const StatedControl& control : dialog.controls) {
            EXPECT_EQ(control.nNamed, control.nStated) << dialog;
            controls.emplace(control.nStated, control.pszClass);
        }
        EXPECT_EQ(NumberedControls(m_module, dialog.nStated), controls) << dialog;
    }
    EXPECT_EQ(m_module.Numbers(RT_DIALOG), dialogs);
}

TEST_P(EachLanguage, HasTheStatedStringsAndPicturesAndNoOther) {
    const std::pair<LPCSTR, const std::vector<StatedNumber>*> kinds[] = {
        {RT_STRING, &kStatedStrings}, {RT_GROUP_ICON, &kStatedIcons}, {RT_BITMAP, &kStatedBitmaps}};
    for (const auto& [type, pStated] : kinds) {
        std::set<int> numbers;
        for (const StatedNumber& number : *pStated) {
            EXPECT_EQ(number.nNamed, number.nStated);
            numbers.insert(number.nStated);
        }
        EXPECT_EQ(m_module.Numbers(type), numbers);
    }
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
