#include "pinhost/software_card.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace pinhost {
namespace {

Verdict Try(SoftwareCard& card, std::string_view pin) {
    return card.Verify({pin.data(), pin.size()});
}

TEST(SoftwareCard, CountsTriesDownAndGivesThemBack) {
    SoftwareCard card;
    EXPECT_EQ(Try(card, "0000"), Verdict::kWrong);
    EXPECT_EQ(Try(card, "0000"), Verdict::kWrong);
    EXPECT_TRUE(card.IsLastTry());
    EXPECT_EQ(Try(card, "1234"), Verdict::kAccepted);
    EXPECT_EQ(card.nTriesLeft, 3u);
    for (const Verdict expected : {Verdict::kWrong, Verdict::kWrong, Verdict::kBlocked})
        EXPECT_EQ(Try(card, "0000"), expected);
    EXPECT_TRUE(card.IsBlocked());
    EXPECT_EQ(Try(card, "1234"), Verdict::kBlocked) << "a blocked card must not accept";
    EXPECT_EQ(card.nTriesLeft, 0u);
}

// The comparison reads the stored PIN in turns, so what repeats it must not pass for it.
TEST(SoftwareCard, AcceptsNothingButThePin) {
    const std::string_view candidates[] = {"",         "1",    "123",  "12345",
                                           "12341234", "1235", "0234", {"1234\0", 5}};
    for (const std::string_view candidate : candidates) {
        SoftwareCard card;
        EXPECT_EQ(Try(card, candidate), Verdict::kWrong) << candidate;
    }
    const std::string strTooLong(256, '1');
    SoftwareCard card;
    card.pin.clear();
    EXPECT_EQ(Try(card, strTooLong), Verdict::kWrong);
}

TEST(SoftwareCard, StoresWhatItsFileHolds) {
    SoftwareCard card;
    for (const std::size_t nLength : {std::size_t{0}, kMaxSecretLength + 1}) {
        EXPECT_FALSE(card.SetPin(std::string(nLength, '7'))) << nLength;
        EXPECT_EQ(Try(card, "1234"), Verdict::kAccepted) << nLength;
    }
    const std::string strLongest(kMaxSecretLength, '7');
    EXPECT_TRUE(card.SetPin(strLongest));
    EXPECT_EQ(Try(card, strLongest), Verdict::kAccepted);
}

}  // namespace
}  // namespace pinhost
