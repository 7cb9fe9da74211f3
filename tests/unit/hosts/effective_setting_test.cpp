#include "pinhost/effective_setting.h"

#include <gtest/gtest.h>

#include "settings/settings_table.h"

namespace pinhost {
namespace {

using namespace std::string_literals;

const mvp::settings::SettingRow& Row(std::string_view strId) {
    for (const auto& row : mvp::settings::kSettings) {
        if (row.pszId == strId) {
            return row;
        }
    }
    throw std::out_of_range(std::string(strId));
}

// The value, "!" when it is the default's, and what is told of it.
std::string Told(std::string_view strId, const FoundValue* pFound) {
    const EffectiveSetting effective = Judge(Row(strId), pFound);
    return (Row(strId).bNumber ? std::to_string(effective.nValue) : effective.strText) +
           (effective.bFromRegistry ? "" : "!") +
           (effective.strIgnored.empty() ? "" : " " + effective.strIgnored);
}

constexpr std::uint32_t kText = 1;
constexpr std::uint32_t kExpandText = 2;
constexpr std::uint32_t kBinary = 3;
constexpr std::uint32_t kNumber = 4;

TEST(EffectiveSetting, IsWhatTheLibraryGoesBy) {
    const std::string full(260, 'x');
    const struct {
        const char* pszId;
        FoundValue found;
        std::string strTold;
    } cases[] = {
        {"InjectedKeys", {kNumber, "\2\0\0\0"s}, "2"},
        {"InjectedKeys", {kNumber, "\3\0\0\0"s}, "0! 3 is beyond 0 to 2"},
        {"InjectedKeys", {kNumber, "\1\0\0"s}, "0! it has 3 bytes, not 4"},
        {"MaxPinTries", {kText, "9\0"s}, "6! the type is not REG_DWORD"},
        {"MaxPinTries", {kNumber, "\377\377\377\377"s}, "4294967295"},
        {"SmallPinEntryPrevention",
         {kBinary, "\7"s},
         "7 it is no REG_DWORD: its first bytes count"},
        {"SmallPinEntryPrevention",
         {kBinary, std::string(256, 'x')},
         "0! it is longer than 255 bytes"},
        {"SmallPinEntryPrevention",
         {kBinary, "\7\0\0\0"s + std::string(251, 'x')},
         "7 it is no REG_DWORD: its first bytes count"},
        {"SmallPinEntryPrevention",
         {kBinary, "\7\0\0\0"s},
         "7 it is no REG_DWORD: its first bytes count"},
        {"SmallPinEntryPrevention",
         {kNumber, "\7"s},
         "7 it is no REG_DWORD: its first bytes count"},
        {"NoReaderDuration",
         {kNumber, "\0\0\0\0"s},
         "1 0 is beyond 1 to 2147483: the nearest counts"},
        {"NoReaderDuration",
         {kNumber, "\377\377\377\377"s},
         "2147483 4294967295 is beyond 1 to 2147483: the nearest counts"},
        {"OtpTimeout", {kNumber, "\0\0\0\0"s}, "0"},
        {"OtpTimeout", {kNumber, "\7\0\0\0\0"s}, "15! it has 5 bytes, not 4"},
        {"LogLevels", {kNumber, "\377\0\0\0"s}, "255"},
        {"ContactTel", {kExpandText, "42\0"s}, "42"},
        {"ContactTel", {kText, "4\0"s}, "! it has fewer than 2 characters"},
        {"ContactTel", {kBinary, "42\0"s}, "! the type is not REG_SZ or REG_EXPAND_SZ"},
        {"HelpPath", {kBinary, "a.chm"s}, "a.chm"},
        {"NoReaderMessage", {kText, full}, full},
        {"NoReaderMessage", {kText, full + "x"}, "! it is longer than 260 bytes"},
        {"BlockedCardManagerMessage", {kText, full}, "! it is longer than 260 bytes"},
        {"BlockedCardManagerMessage", {kText, full.substr(1)}, full.substr(1)},
        {"BlockedCardManagerMessage", {kText, full.substr(1) + "\0"s}, full.substr(1)},
        {"BlockedCardManagerMessage", {kExpandText, "a\0"s}, "! the type is not REG_SZ"},
        {"BlockedCardManagerMessage", {kText, "a\0b"s}, "a"},
        {"ProductCode",
         {kNumber, "\0\0\0\0"s},
         "{5B21C0D4-7A93-4E6F-B812-3C9D0E4F6A17}! the type is not REG_SZ"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Told(one.pszId, &one.found), one.strTold);
    }
    EXPECT_EQ(Told("OtpTimeout", nullptr), "15!");
    EXPECT_EQ(Told("ContactTel", nullptr), "!");
}

}  // namespace
}  // namespace pinhost
