#include "dialogs/pin/enter_pin_rules.h"

#include <string>

#include <gtest/gtest.h>

namespace mvp {
namespace {

TEST(EnterPinRules, LengthCountsWithinBothBounds) {
    const struct {
        std::size_t cbPin;
        std::uint32_t dwMin, dwMax;
        bool bAllowed;
    } cases[] = {
        {3, 4, 8, false}, {4, 4, 8, true},          {8, 4, 8, true},
        {9, 4, 8, false}, {0, 0, 8, true},          {0, 1, 8, false},
        {5, 6, 4, false}, {4, 4, 0xFFFFFFFF, true}, {0x100000004, 4, 8, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsPinLengthAllowed(c.cbPin, c.dwMin, c.dwMax), c.bAllowed) << c.cbPin;
    }
}

TEST(EnterPinRules, IgnoredPictureHasItsReason) {
    const struct {
        const char* pszPath;
        bool bText, bFileThere;
        const char* pszReason;
    } cases[] = {
        {"C:\\a.bmp", true, true, "the file is not a bitmap that can be shown"},
        {"C:\\100%", true, false, "there is no such file"},
        {"C:\\%a%b", true, true, "the file is not a bitmap that can be shown"},
        {"%WINDIR%\\a", true, false,
         "variables in the path are not replaced, and there is no such file"},
        {R"("C:\a.bmp")", true, false, "the path stands in quotation marks"},
        {"A", false, false, "the value is not a text"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(std::string(WhyNoPicture(c.pszPath, c.bText, c.bFileThere)), c.pszReason);
    }
}

}  // namespace
}  // namespace mvp
