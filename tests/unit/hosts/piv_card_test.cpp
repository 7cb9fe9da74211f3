#include "pinhost/piv_card.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace pinhost {
namespace {

constexpr char kSelect[] = "00A4040009A00000030800001000";

std::string Hex(std::span<const unsigned char> bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789ABCDEF"[byte & 15];
    }
    return text;
}

// Answers every SELECT with one status word and everything else with another.
struct Line {
    std::string strSelected = "9000";
    std::string strAnswer = {};
    std::string strSent = {};  // what came after SELECT
    int nOpen = 0;
    int nResets = 0;
};

class ScriptedChannel final : public IApduChannel {
public:
    explicit ScriptedChannel(Line& line) : m_line(line) {}

    void Begin() override { ++m_line.nOpen; }
    void End(bool bReset) noexcept override {
        --m_line.nOpen;
        m_line.nResets += bReset ? 1 : 0;
    }
    Apdu Transmit(std::span<const unsigned char> command) override {
        EXPECT_EQ(m_line.nOpen, 1);
        const std::string text = Hex(command);
        if (text == kSelect) {
            m_bSelected = true;
            return Answer(m_line.strSelected);
        }
        EXPECT_TRUE(m_bSelected);
        m_line.strSent = text;
        return Answer(m_line.strAnswer);
    }
    bool IsGone() override { return false; }

private:
    static Apdu Answer(const std::string& strHex) {
        if (strHex == "gone") {
            throw CardGone();
        }
        Apdu answer;
        for (std::size_t i = 0; i + 1 < strHex.size(); i += 2) {
            answer.push_back(
                static_cast<unsigned char>(std::stoi(strHex.substr(i, 2), nullptr, 16)));
        }
        return answer;
    }

    Line& m_line;
    bool m_bSelected = false;
};

PivCard CardOn(Line& line) {
    const std::string transport = "000000";
    return {std::make_unique<ScriptedChannel>(line), Secret(transport.begin(), transport.end())};
}

using Operation = std::function<Verdict(PivCard&)>;
const Operation kVerify = [](PivCard& card) { return card.Verify(std::string("123456")); };
const Operation kChange = [](PivCard& card) {
    return card.Change(std::string("123456"), std::string("87654321"));
};
const Operation kUnlock = [](PivCard& card) {
    return card.Unlock(std::string("12345678"), std::string("654321"));
};

TEST(PivCard, SendsPinsPaddedAndResetsWhatItOpened) {
    const struct {
        Operation operation;
        const char* pszSent;
    } cases[] = {
        {kVerify, "0020008008313233343536FFFF"},
        {kChange, "0024008010313233343536FFFF3837363534333231"},
        {kUnlock, "002C0080103132333435363738363534333231FFFF"},
        // As the unlock dialog takes it.
        {[](PivCard& card) {
             return card.Unlock(std::string("0123456789abcDEF"), std::string("654321"));
         },
         "002C0080100123456789ABCDEF363534333231FFFF"},
        {[](PivCard& card) { return card.Initialize(std::string("123456"), {}); },
         "0024008010303030303030FFFF313233343536FFFF"},
        {[](PivCard& card) { return card.Reset(std::string("123456"), true); },
         "0024008010313233343536FFFF303030303030FFFF"},
        {[](PivCard& card) { return card.Reset(std::string("12345678"), false); },
         "002C0080103132333435363738303030303030FFFF"},
    };
    for (const auto& [operation, sent] : cases) {
        Line line{.strSelected = "4F006110", .strAnswer = "9000"};
        PivCard card = CardOn(line);
        EXPECT_EQ(operation(card), Verdict::Accepted) << sent;
        EXPECT_EQ(line.strSent, sent);
        EXPECT_EQ(line.nResets, 1) << sent;
        EXPECT_EQ(line.nOpen, 0) << sent;
    }
}

TEST(PivCard, JudgesByTheStatusWord) {
    const struct {
        const char* pszAnswer;
        Verdict verify;
        Verdict change;
        std::optional<std::uint32_t> left;  // of the unlock code
    } cases[] = {
        {"63C2", Verdict::Wrong, Verdict::Wrong, 2},
        {"63CF", Verdict::Wrong, Verdict::Wrong, 15},
        {"63C0", Verdict::Blocked, Verdict::Blocked, 0},
        {"6983", Verdict::Blocked, Verdict::Blocked, 0},
        {"6A80", Verdict::Wrong, Verdict::Refused, {}},
    };
    for (const auto& [answer, verify, change, left] : cases) {
        Line line{.strAnswer = answer};
        PivCard card = CardOn(line);
        EXPECT_EQ(kVerify(card), verify) << answer;
        EXPECT_EQ(card.UnlocksLeft(), std::nullopt) << answer;
        EXPECT_EQ(kChange(card), change) << answer;
        EXPECT_EQ(card.UnlocksLeft(), std::nullopt) << answer;
        EXPECT_EQ(kUnlock(card), change) << answer;
        EXPECT_EQ(card.UnlocksLeft(), left) << answer;
        EXPECT_EQ(line.nResets, 0) << answer;
        line.strAnswer = "9000";
        EXPECT_EQ(kUnlock(card), Verdict::Accepted) << answer;
        EXPECT_EQ(card.UnlocksLeft(), std::nullopt) << answer;
    }
}

TEST(PivCard, ReadsItsTriesWithoutCostingOne) {
    for (const auto& [answer, tries] :
         {std::pair<const char*, std::optional<std::uint32_t>>{"63C3", 3},
          {"63C0", 0},
          {"6983", 0},
          {"9000", {}}}) {
        Line line{.strAnswer = answer};
        PivCard card = CardOn(line);
        EXPECT_EQ(card.TriesLeft(), tries) << answer;
        EXPECT_EQ(line.strSent, "00200080");
        EXPECT_EQ(line.nResets, 0);
    }
    Line line{.strAnswer = "6A80"};
    EXPECT_THROW(CardOn(line).TriesLeft(), CardError) << "no answer to the question";
}

TEST(PivCard, SendsNothingThatCouldBeTakenForSomethingElse) {
    // Nothing at all asks for the tries, and what ends in padding is a shorter one.
    for (const std::string& text :
         {std::string(), std::string("123456789"), std::string("123\xFF")}) {
        Line line{.strAnswer = "9000"};
        PivCard card = CardOn(line);
        EXPECT_EQ(card.Verify(text), Verdict::Wrong) << text;
        EXPECT_EQ(card.Change(text, std::string("123456")), Verdict::Wrong) << text;
        EXPECT_EQ(card.Change(std::string("123456"), text), Verdict::Refused) << text;
        EXPECT_EQ(card.Unlock(text, std::string("123456")), Verdict::Wrong) << text;
        EXPECT_EQ(line.strSent, "") << text;
    }
    for (const char* code : {"0123456789ABCDEG", "G123456789ABCDEF", "0123456789ABCDEF01"}) {
        Line line{.strAnswer = "9000"};
        PivCard card = CardOn(line);
        EXPECT_EQ(card.Unlock(std::string(code), std::string("123456")), Verdict::Wrong);
        EXPECT_EQ(line.strSent, "") << code;
    }
}

TEST(PivCard, TellsWhatItCannotUnderstand) {
    const struct {
        const char* pszSelected;
        const char* pszAnswer;
        const char* pszWords;
    } cases[] = {
        {"6A82", "9000", "the card has no PIV application"},
        {"6D00", "9000", "the card answered SELECT with status 6D00"},
        {"9000", "6700", "the card answered CHANGE REFERENCE DATA with status 6700"},
        {"9000", "6300", "the card answered CHANGE REFERENCE DATA with status 6300"},
        {"9000", "90", "the card answered without a status"},
        {"9000", "", "the card answered without a status"},
        {"9000", "gone", "the card was removed"},
    };
    for (const auto& [selected, answer, words] : cases) {
        Line line{.strSelected = selected, .strAnswer = answer};
        PivCard card = CardOn(line);
        try {
            kChange(card);
            ADD_FAILURE() << words;
        } catch (const CardError& error) {
            EXPECT_STREQ(error.what(), words);
        }
        EXPECT_EQ(line.nOpen, 0) << words;
    }
}

}  // namespace
}  // namespace pinhost
