#include "pinhost/software_card.h"

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>
#include <unistd.h>

#include "pinhost/card_file.h"
#include <nlohmann/json.hpp>

namespace pinhost {
namespace {

using namespace std::string_view_literals;

Verdict Try(SoftwareCard& card, std::string_view pin) {
    return card.Verify({pin.data(), pin.size()});
}

TEST(SoftwareCard, AcceptsNothingButAPinThatItsFileHolds) {
    // The comparison reads the stored PIN in turns, so what repeats it must not pass for it.
    for (const std::string_view candidate :
         {""sv, "1"sv, "123"sv, "12345"sv, "12341234"sv, "1235"sv, "0234"sv, "1234\0"sv}) {
        SoftwareCard card;
        EXPECT_EQ(Try(card, candidate), Verdict::Wrong) << candidate;
    }
    SoftwareCard card;
    for (const std::size_t length : {std::size_t{0}, kMaxSecretLength + 1}) {
        EXPECT_FALSE(card.SetPin(std::string(length, '7'))) << length;
        EXPECT_EQ(Try(card, "1234"), Verdict::Accepted) << length;
    }
    const std::string longest(kMaxSecretLength, '7');
    EXPECT_TRUE(card.SetPin(longest));
    EXPECT_EQ(Try(card, longest), Verdict::Accepted);
    // As long as no PIN at all, to a byte.
    card.Reset();
    EXPECT_EQ(Try(card, ""), Verdict::Wrong);
    EXPECT_EQ(Try(card, std::string(256, '1')), Verdict::Wrong);
}

// In the place of the cryptography: tells key and message apart.
std::array<unsigned char, 32> Keyed(std::span<const char> key, std::span<const char> message) {
    std::array<unsigned char, 32> hash = {0xAB};
    for (std::size_t i = 0; i < message.size(); ++i) {
        hash.at(i % 7 + 1) ^= static_cast<unsigned char>(message[i] + key[i % key.size()]);
    }
    return hash;
}

constexpr std::array<unsigned char, kChallengeBytes> kRandom = {0, 0x12, 0x9A, 0xFF, 4, 5, 6, 7};

TEST(SoftwareCard, CountsWrongUnlockCodesAndResponsesTogether) {
    SoftwareCard card;
    card.nUnlocksLeft = card.nMaxUnlocks = 3;
    EXPECT_EQ(card.Challenge(kRandom), "00129AFF04050607");
    const Secret response = card.ResponseTo(card.strChallenge, Keyed);
    using enum Verdict;
    const auto unlock = [&](std::string_view code) { return card.VerifyUnlockCode(code); };
    EXPECT_EQ(unlock("0123456789ABCDEE"), Wrong);
    EXPECT_EQ(unlock("0123456789abcdef"), Accepted);
    EXPECT_EQ(unlock(""), Wrong);
    EXPECT_EQ(card.VerifyResponse(Secret(16, 'A'), Keyed), Wrong);
    EXPECT_EQ(card.Challenge(std::array<unsigned char, kChallengeBytes>{}), "00129AFF04050607")
        << "it waits for its response";
    EXPECT_EQ(card.VerifyResponse(response, Keyed), Accepted);
    EXPECT_EQ(card.VerifyResponse(response, Keyed), Wrong) << "a response serves once";
    EXPECT_EQ(card.VerifyResponse("", Keyed), Wrong);
    EXPECT_EQ(unlock("0"), Blocked);
    EXPECT_EQ(unlock("0123456789ABCDEF"), Blocked);
}

TEST(SoftwareCard, AnUnlockedCardHasItsTriesAndAResetOneNoPin) {
    SoftwareCard card;
    card.nTriesLeft = 0;
    card.policy.bForceChangePin = true;
    EXPECT_FALSE(card.Unlock({}));
    EXPECT_FALSE(card.IsLastTry());
    card.bUnlockCodeSeen = true;
    EXPECT_TRUE(card.IsBlocked());
    EXPECT_TRUE(card.Unlock(std::string_view("5678")));
    EXPECT_FALSE(card.policy.bForceChangePin);
    EXPECT_EQ(Try(card, "1234"), Verdict::Wrong);
    card.nUnlocksLeft = 0;
    card.Reset();
    EXPECT_FALSE(card.IsInitialized() || card.bUnlockCodeSeen);
    EXPECT_EQ(card.nTriesLeft + card.nUnlocksLeft, card.nMaxTries + card.nMaxUnlocks);
}

constexpr char kGood[] = R"({"reader": "R 0", "pin": "12\u00e9z", "unlockCode": "87654321",
 "triesLeft": 2, "maxTries": 5, "policy": {"minLength": 4, "maxLength": 10, "digitsOnly": true,
 "notWeak": true, "notSame": true}})";

std::string With(const std::string& strFrom, const std::string& strTo) {
    std::string text = kGood;
    const auto at = text.find(strFrom);
    EXPECT_NE(at, std::string::npos) << strFrom;
    return text.replace(at, strFrom.size(), strTo);
}

std::string FaultOf(const std::string& text) {
    try {
        ParseCard(text);
    } catch (const CardFileError& error) {
        return error.what();
    }
    return "none";
}

nlohmann::json JsonOf(const SoftwareCard& card) {
    return nlohmann::json::parse(FormatCard(card));
}

// What a card of today has more than one of yesterday.
constexpr char kToday[] = R"("challengeKey": "k", "challenge": "0123456789ABCDEF",
 "unlocksLeft": 1, "maxUnlocks": 9, "unlockCodeSeen": true, "reader")";

TEST(CardFile, KeepsEveryField) {
    SoftwareCard card = ParseCard(kGood);
    EXPECT_EQ(Try(card, "12\xe9z"), Verdict::Accepted);
    // What a file of yesterday lacks has its defaults.
    nlohmann::json known = JsonOf(ParseCard(kGood));
    known.update(nlohmann::json::parse(kGood), true);
    EXPECT_EQ(JsonOf(ParseCard(kGood)), known);
    EXPECT_EQ(card.nUnlocksLeft, SoftwareCard().nUnlocksLeft);
    EXPECT_EQ(card.challengeKey, SoftwareCard().challengeKey);
    SoftwareCard today = ParseCard(With("\"reader\"", kToday));
    today.pin.clear();
    today.policy.bForceChangePin = true;
    EXPECT_EQ(today.strChallenge, "0123456789ABCDEF");
    EXPECT_EQ(std::pair(today.nUnlocksLeft, today.nMaxUnlocks), std::pair(1u, 9u));
    const Secret text = FormatCard(today);
    EXPECT_EQ(ParseCard({text.data(), text.size()}), today);
}

TEST(CardFile, RefusesWhatIsNoCard) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "not valid JSON"},
        {"[1]", "not a JSON object"},
        {std::string(100000, ' '), "too large"},
        {std::string(10000, '['), "not valid JSON"},
        {With("R 0", "R\\u0000"), "\"reader\" has control"},
        {With("R 0", std::string(128, 'r')), "\"reader\" is too long"},
        {With("\"R 0\"", "7"), "\"reader\" is not a text"},
        {With("\\u00e9", "\\u0100"), "\"pin\" has a character beyond"},
        {With("12\\u00e9z", ""), "\"pin\" is empty"},
        {With("12\\u00e9z", std::string(256, '1')), "\"pin\" is empty or too long"},
        {With("\"pin\"", "\"pen\""), "\"pin\" is missing"},
        {With("12\\u00e9z", "\xff"), "not valid JSON"},
        {With(": 2", ": -1"), "\"triesLeft\" is not a whole"},
        {With(": 2", ": 2.5"), "\"triesLeft\" is not a whole"},
        {With(": 2", ": 6"), "\"triesLeft\" is greater"},
        {With(": 5", ": 256"), "\"maxTries\" is too large"},
        {With(": 2, \"maxTries\": 5", ": 0, \"maxTries\": 0"), "\"maxTries\" is 0"},
        {With(": 10", ": 4294967296"), "\"maxLength\" is too large"},
        {With(": 10", ": 3"), "\"minLength\" is greater"},
        {With("true", "1"), "\"digitsOnly\" is neither"},
        {With("{", R"({"unlocksLeft": 1, )"), "\"maxUnlocks\" is missing"},
        {With("{", R"({"challenge": "12", )"), "\"challenge\" is not 16"},
        {With("{", R"({"challengeKey": "", )"), "\"challengeKey\" is empty"},
        {With("true}", R"(true, "forceChange": 1})"), "\"forceChange\" is neither"},
        {With(R"("policy": {)", R"("policy": 1, "x": {)"), "\"policy\" is not an object"},
    };
    for (const auto& [text, fault] : cases) {
        EXPECT_NE(FaultOf(text).find(fault), std::string::npos) << text.substr(0, 200) << "\n"
                                                                << FaultOf(text);
    }
    EXPECT_EQ(FaultOf(With("12\\u00e9z\"", "98765")).find("98765"), std::string::npos)
        << "the fault shows the PIN";
}

TEST(CardFile, IsNewAtFirstAndReplacedWholeOrNotAtAll) {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("card_file_test" + std::to_string(getpid()));
    const std::filesystem::path file = folder / "card.json";
    std::filesystem::create_directories(folder);
    EXPECT_EQ(JsonOf(ReadCard(file)), JsonOf(SoftwareCard()));
    WriteCard(file, ParseCard(kGood));
    EXPECT_EQ(JsonOf(ReadCard(file)), JsonOf(ParseCard(kGood)));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1)
        << "something is left beside the card";
    EXPECT_THROW(ReadCard(folder), CardFileError);
    EXPECT_THROW(WriteCard(folder / "missing" / "card.json", SoftwareCard()), CardFileError);
    // A folder in the card's place: written beside, but not to be replaced.
    EXPECT_THROW(WriteCard(folder, SoftwareCard()), CardFileError);
    EXPECT_FALSE(std::filesystem::exists(folder.string() + ".new"));
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace pinhost
