#include "pinhost/software_card.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>
#include <unistd.h>

#include "pinhost/card_file.h"

namespace pinhost {
namespace {

Verdict Try(SoftwareCard& card, std::string_view pin) {
    return card.Verify({pin.data(), pin.size()});
}

// The comparison reads the stored PIN in turns, so what repeats it must not pass for it.
TEST(SoftwareCard, AcceptsNothingButThePin) {
    const std::string_view candidates[] = {"",         "1",    "123",  "12345",
                                           "12341234", "1235", "0234", {"1234\0", 5}};
    for (const std::string_view candidate : candidates) {
        SoftwareCard card;
        EXPECT_EQ(Try(card, candidate), Verdict::Wrong) << candidate;
    }
    const std::string tooLong(256, '1');
    SoftwareCard card;
    card.pin.clear();
    EXPECT_EQ(Try(card, tooLong), Verdict::Wrong);
}

TEST(SoftwareCard, StoresWhatItsFileHolds) {
    SoftwareCard card;
    for (const std::size_t length : {std::size_t{0}, kMaxSecretLength + 1}) {
        EXPECT_FALSE(card.SetPin(std::string(length, '7'))) << length;
        EXPECT_EQ(Try(card, "1234"), Verdict::Accepted) << length;
    }
    const std::string longest(kMaxSecretLength, '7');
    EXPECT_TRUE(card.SetPin(longest));
    EXPECT_EQ(Try(card, longest), Verdict::Accepted);
}

constexpr char kGood[] = R"({"reader": "R 0", "pin": "12\u00e934", "unlockCode": "87654321",
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

bool Same(const SoftwareCard& a, const SoftwareCard& b) {
    return a.strReader == b.strReader && a.pin == b.pin && a.unlockCode == b.unlockCode &&
           a.nTriesLeft == b.nTriesLeft && a.nMaxTries == b.nMaxTries && a.policy == b.policy;
}

TEST(CardFile, KeepsEveryFieldOverAWriteAndARead) {
    const SoftwareCard card = ParseCard(kGood);
    EXPECT_EQ(card.strReader, "R 0");
    EXPECT_EQ(std::string(card.pin.begin(), card.pin.end()),
              "12\xe9"
              "34");
    EXPECT_EQ(card.nTriesLeft, 2u);
    EXPECT_EQ(card.policy, (CardPolicy{true, true, true, 4, 10}));
    const Secret text = FormatCard(card);
    EXPECT_TRUE(Same(ParseCard({text.data(), text.size()}), card));
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
        {With("12\\u00e934", ""), "\"pin\" is empty"},
        {With("12\\u00e934", std::string(256, '1')), "\"pin\" is empty or too long"},
        {With("\"pin\"", "\"pen\""), "\"pin\" is missing"},
        {With("12\\u00e934", "\xff"), "not valid JSON"},
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
    EXPECT_EQ(FaultOf(With("12\\u00e934\"", "98765")).find("98765"), std::string::npos)
        << "the fault shows the PIN";
}

class CardFiles : public testing::Test {
protected:
    CardFiles() { std::filesystem::create_directories(m_folder); }
    ~CardFiles() override { std::filesystem::remove_all(m_folder); }

    std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("card_file_test" + std::to_string(getpid()));
    std::filesystem::path m_file = m_folder / "card.json";
};

TEST_F(CardFiles, StartWithANewCardAndAreReplacedWhole) {
    SoftwareCard card = ReadCard(m_file);
    EXPECT_TRUE(Same(card, SoftwareCard()));
    card.nTriesLeft = 1;
    WriteCard(m_file, card);
    EXPECT_TRUE(Same(ReadCard(m_file), card));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder), {}), 1)
        << "something is left beside the card";
}

TEST_F(CardFiles, TellWhatCannotBeReadOrWritten) {
    std::ofstream(m_file) << "{}";
    EXPECT_THROW(ReadCard(m_file), CardFileError);
    EXPECT_THROW(ReadCard(m_folder), CardFileError);
    EXPECT_THROW(WriteCard(m_folder / "missing" / "card.json", SoftwareCard()), CardFileError);
    // A folder in the card's place: written beside, but not to be replaced.
    EXPECT_THROW(WriteCard(m_folder, SoftwareCard()), CardFileError);
    EXPECT_FALSE(std::filesystem::exists(m_folder.string() + ".new"));
}

}  // namespace
}  // namespace pinhost
