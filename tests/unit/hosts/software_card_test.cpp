#include "pinhost/software_card.h"

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
    card.pin.clear();
    EXPECT_EQ(Try(card, std::string(256, '1')), Verdict::Wrong);
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

TEST(CardFile, KeepsEveryField) {
    SoftwareCard card = ParseCard(kGood);
    EXPECT_EQ(Try(card, "12\xe9z"), Verdict::Accepted);
    EXPECT_EQ(JsonOf(ParseCard(kGood)), nlohmann::json::parse(kGood));
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
