// What the card dialogs decide without a window.
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dialogs/card/code_groups.h"
#include "dialogs/card/notice_height.h"
#include "dialogs/card/policy_values.h"
#include "dialogs/card/reset_fields.h"
#include "dialogs/card/static_mode.h"
#include "dialogs/card/unlock_code.h"

namespace mvp {
namespace {

TEST(CodeGroups, AreBuiltByBothRules) {
    struct Case {
        const char* pszCode;
        const char* pszByFour;
        const char* pszFourGroups;
    };
    for (const auto& [code, byFour, fourGroups] :
         {Case{"", "", "---"},
          {"A", "A", "A---"},
          {"ABCD", "ABCD", "ABCD---"},
          {"ABCDE", "ABCD-E", "ABCD-E--"},
          {"0123456", "0123-456", "0123-456--"},
          {"ABCDEFGH", "ABCD-EFGH", "ABCD-EFGH--"},
          {"0123456789ABCDE", "0123-4567-89AB-CDE", "0123-4567-89AB-CDE"},
          {"0123456789ABCDEF", "0123-4567-89AB-CDEF", "0123-4567-89AB-CDEF"},
          {"0123456789ABCDEFXY", "0123-4567-89AB-CDEF-XY", "0123-4567-89AB-CDEF"},
          {"\xC4-\xFF", "\xC4-\xFF", "\xC4-\xFF---"}}) {
        EXPECT_EQ(GroupByFour<std::string>(code), byFour);
        EXPECT_EQ(GroupInFourGroups<std::string>(code), fourGroups);
    }
}

TEST(UnlockCode, IsSixteenHexadecimalDigitsAndDashesAnywhere) {
    for (const char* code : {"0123456789ABCDEF", "1234-5678-9abc-def0", "--0123456789ABCDEF--",
                             "0-1-2-3-4-5-6-7-8-9-a-B-c-D-e-F"}) {
        EXPECT_TRUE(IsUnlockCode(code)) << code;
    }
    for (const char* code :
         {"", "----------------", "1234-5678-9abc-def", "0123456789ABCDEF0", "G234567890ABCDEF",
          "0123 4567 89AB CDEF", "0123456789ABCDEF\r\n", "0123456789ABCDE\xE9", "@123456789ABCDEF",
          "`123456789ABCDEF", "/123456789ABCDEF", ":123456789ABCDEF"}) {
        EXPECT_FALSE(IsUnlockCode(code)) << code;
    }
}

TEST(PolicyValues, ComeFromTheCallerTheConfigurationOrTheDefaults) {
    constexpr auto kUnset = MVP_POLICY_FROM_CONFIGURATION;
    std::map<std::string, std::uint32_t> configured;
    const auto read = [&](const NumberSetting& setting, std::uint32_t& value) {
        const auto found = configured.find(setting.pszName);
        value = found != configured.end() ? found->second : 99;  // a failed read may leave anything
        return found != configured.end();
    };
    const auto values = [&](const PINPolicies* pCallers) {
        const PINPolicies p = EffectivePolicies(pCallers, read);
        return std::array{p.MinimumPINLength, p.MaximumPINLength, p.MaxPINTries,
                          p.dwUnused4,        p.MaxPINUnlock,     p.dwUnused6,
                          p.WeakPINAllowed,   p.ForceChangePIN,   p.AlphaPINAllowed};
    };
    using Values = std::array<std::uint32_t, 9>;
    PINPolicies record{kUnset, kUnset, kUnset, kUnset, kUnset, kUnset, kUnset, kUnset, kUnset};
    EXPECT_EQ(values(nullptr), (Values{4, 25, 6, 0, 6, 0, 0, 0, 1}));
    EXPECT_EQ(values(&record), (Values{4, 25, 6, 0, 6, 0, 0, 0, 1}));

    configured = {{"MinimumPINLength", 11}, {"MaximumPINLength", 12}, {"MaxPINTries", 13},
                  {"MaxPINUnlock", 15},     {"WeakPINAllowed", 17},   {"ForceChangePIN", 18},
                  {"AlphaPINAllowed", 0}};
    EXPECT_EQ(values(&record), (Values{11, 12, 13, 0, 15, 0, 17, 18, 0}));
    record = {0, 22, kUnset, 24, 25, 26, 27, kUnset, 29};
    EXPECT_EQ(values(&record), (Values{0, 22, 13, 24, 25, 26, 27, 18, 29}));
}

TEST(PolicyValues, MakeTheRules) {
    PINPolicies policies{8, 16, 3, 1, 5, 1, 0, 1, 1};
    for (const std::uint32_t value : {0U, 1U, 2U, 0xFFFFFFFFU}) {
        policies.WeakPINAllowed = value;
        policies.AlphaPINAllowed = value;
        const PwdRuleArgs rules = RulesOf(policies);
        EXPECT_EQ(rules.bPreventWeakPIN, value == 1 ? 1U : 0U) << value;
        EXPECT_EQ(rules.bPreventAlphaPIN, value == 1 ? 0U : 1U) << value;
        EXPECT_EQ(rules.bPreventSamePIN, 0U);
        EXPECT_EQ(rules.bCancelDisabled, 0U);
        EXPECT_EQ(rules.dwMinPINLen, 8U);
        EXPECT_EQ(rules.dwMaxPINLen, 16U);
    }
}

TEST(NoticeHeight, AddsALineToTheFullOnes) {
    EXPECT_EQ(NoticeTextHeight(600, 13, 250), 39);
    EXPECT_EQ(NoticeTextHeight(500, 13, 250), 39);
    EXPECT_EQ(NoticeTextHeight(249, 13, 250), 13);
    EXPECT_EQ(NoticeTextHeight(0, 13, 250), 13);
    EXPECT_EQ(NoticeTextHeight(2, 13, 0), 39);  // a control without a width
}

TEST(StaticMode, HidesTheChallengeAndMovesTheRest) {
    std::set<int> hidden(std::begin(kChallengePart), std::end(kChallengePart));
    EXPECT_EQ(hidden, (std::set{3026, 3033, 3034, 3035}));
    EXPECT_EQ(
        std::vector<int>(std::begin(kBelowChallengePart), std::end(kBelowChallengePart)),
        (std::vector{3042, 3043, 3044, 3030, 3037, 3039, 3038, 3046, 3029, 3028, 3040, 1, 2}));
    EXPECT_EQ(kChallengePartHeight, 100);
}

TEST(ResetFields, FollowTheRouteAndTheChallenge) {
    EXPECT_EQ(ActiveResetField(true, true), ResetField::Pin);
    EXPECT_EQ(ActiveResetField(true, false), ResetField::Pin);
    EXPECT_EQ(ActiveResetField(false, true), ResetField::Response);
    EXPECT_EQ(ActiveResetField(false, false), ResetField::UnlockCode);
}

}  // namespace
}  // namespace mvp
