#include "pinhost/file_card.h"

#include <filesystem>
#include <functional>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "pinhost/card_file.h"

namespace pinhost {
namespace {

using enum Verdict;

constexpr FirstPinRules kRules{5, 12, 4, 7, true, true};

FirstPinRules WithCounters(std::uint32_t nTries, std::uint32_t nUnlocks) {
    FirstPinRules rules = kRules;
    rules.nMaxTries = nTries;
    rules.nMaxUnlocks = nUnlocks;
    return rules;
}

std::string PinOf(const SoftwareCard& card) {
    return {card.pin.begin(), card.pin.end()};
}

class FileCardTest : public testing::Test {
protected:
    ~FileCardTest() override { std::filesystem::remove(m_file); }

    const std::filesystem::path m_file =
        std::filesystem::temp_directory_path() / ("file_card_test" + std::to_string(getpid()));
};

TEST_F(FileCardTest, LeavesInItsFileWhatItAnswered) {
    const std::string code = "0123456789ABCDEF";
    const std::string next = "5678";
    const std::string tooLong(kMaxSecretLength + 1, '7');
    const struct {
        std::function<Verdict(FileCard&)> operation;
        Verdict verdict;
        const char* pszPin;
        std::uint32_t nTriesLeft;  // two of three at first
        std::uint32_t nUnlocksLeft;
    } cases[] = {
        {[&](FileCard& card) { return card.Verify(next); }, Wrong, "1234", 1, 6},
        {[&](FileCard& card) { return card.Change(next, next); }, Wrong, "1234", 1, 6},
        {[&](FileCard& card) { return card.Change(std::string("1234"), next); }, Accepted, "5678",
         3, 6},
        {[&](FileCard& card) { return card.Change(std::string("1234"), tooLong); }, Refused, "1234",
         3, 6},
        {[&](FileCard& card) { return card.Unlock(next, next); }, Wrong, "1234", 2, 5},
        {[&](FileCard& card) { return card.Unlock(code, next); }, Accepted, "5678", 3, 6},
        {[&](FileCard& card) { return card.Reset(next, true); }, Wrong, "1234", 1, 6},
        {[&](FileCard& card) { return card.Reset(next, false); }, Wrong, "1234", 2, 5},
        {[&](FileCard& card) { return card.Reset(code, false); }, Accepted, "", 3, 6},
        {[&](FileCard& card) { return card.Initialize(next, kRules); }, Accepted, "5678", 4, 7},
        {[&](FileCard& card) { return card.Initialize(next, WithCounters(0, 7)); }, Refused, "1234",
         2, 6},
        {[&](FileCard& card) { return card.Initialize(next, WithCounters(4, 256)); }, Refused,
         "1234", 2, 6},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SoftwareCard before;
        before.nTriesLeft = 2;
        WriteCard(m_file, before);
        FileCard card(m_file, true);  // only a new card is blank
        EXPECT_EQ(cases[i].operation(card), cases[i].verdict) << i;
        const SoftwareCard after = ReadCard(m_file);
        EXPECT_EQ(PinOf(after), cases[i].pszPin) << i;
        EXPECT_EQ(after.nTriesLeft, cases[i].nTriesLeft) << i;
        EXPECT_EQ(after.nUnlocksLeft, cases[i].nUnlocksLeft) << i;
    }
}

TEST_F(FileCardTest, KeepsTheRulesOfItsFirstPin) {
    FileCard card(m_file, true);
    EXPECT_FALSE(card.IsInitialized());
    EXPECT_EQ(card.Initialize(std::string("56789"), kRules), Accepted);
    const CardPolicy policy = ReadCard(m_file).policy;
    EXPECT_EQ(policy.dwMinPinLength, 5u);
    EXPECT_EQ(policy.dwMaxPinLength, 12u);
    EXPECT_TRUE(policy.bPreventWeakPin);
    EXPECT_TRUE(policy.bForceChangePin);
}

}  // namespace
}  // namespace pinhost
