#include "suite/vklog/log_line.h"

#include <string>

#include <gtest/gtest.h>

namespace mvp {
namespace {

std::string Compose(const char* pszTag, int nLevel, const std::string& text) {
    LogLine line;
    ComposeLogLine({{2024, 3, 9, 4, 5, 6, 7}, 4711, 12, pszTag, nLevel, text.c_str()}, line);
    return {line.text, line.nLength};
}

TEST(LogLine, HoldsTimeIdentifiersTagLevelAndText) {
    const std::pair<int, std::string> levels[] = {{VKLOG_DETAIL, "detail"},
                                                  {VKLOG_ERROR, "error"},
                                                  {VKLOG_INFORMATION, "information"},
                                                  {VKLOG_ENTRY, "entry"},
                                                  {VKLOG_EXIT, "exit"},
                                                  {32, "32"},
                                                  {-1, "-1"}};
    for (const auto& [level, name] : levels) {
        EXPECT_EQ(Compose("MVPINGUI", level, "GetPINFromUser"),
                  "2024-03-09 04:05:06.007 [4711:12] MVPINGUI " + name + ": GetPINFromUser\r\n");
    }
}

TEST(LogLine, EscapesWhatWouldLeaveTheLine) {
    const std::pair<std::string, std::string> texts[] = {
        {"a\r\nb", "a\\r\\nb"},
        {"\tx\x01\x1b\x7f", R"(\tx\x01\x1b\x7f)"},
        {"C:\\new", "C:\\new"},
        {"caf\xe9 \x80", "caf\xe9 \x80"},
    };
    for (const auto& [text, escaped] : texts) {
        EXPECT_NE(Compose("T", 2, text).find(": " + escaped + "\r\n"), std::string::npos)
            << escaped;
        EXPECT_NE(Compose(text.c_str(), 2, "x").find(" " + escaped + " information: x\r\n"),
                  std::string::npos);
    }
}

TEST(LogLine, EveryLengthStaysOneBoundedLine) {
    const std::string mark = VKLOG_CUT_MARK "\r\n";
    for (const char filler : {'x', '\n', '\x01'}) {
        bool cutSeen = false;
        for (std::size_t length = 900; length < VKLOG_LINE_MAX + 10; ++length) {
            const std::string line = Compose("TAG", 2, std::string(length, filler));
            ASSERT_LE(line.size(), std::size_t{VKLOG_LINE_MAX});
            ASSERT_EQ(line.find_first_of("\r\n"), line.size() - 2) << length;
            const bool cut = line.ends_with(mark);
            ASSERT_TRUE(cut || !cutSeen) << length;
            // No escape is cut in the middle.
            ASSERT_TRUE(!cut || filler != '\x01' || line.ends_with("\\x01" + mark)) << length;
            cutSeen = cut;
        }
        EXPECT_TRUE(cutSeen);
    }
}

TEST(LogLine, BoundsTheTagAndKnowsTheMaskOfEachLevel) {
    const std::string line = Compose(std::string(5000, 't').c_str(), 2, "text");
    EXPECT_LT(line.size(), 200U);
    EXPECT_TRUE(line.ends_with("t information: text\r\n"));
    EXPECT_EQ(LogLevelBits(VKLOG_DETAIL), 4U);
    for (const int level : {1, 2, 8, 16, 32}) {
        EXPECT_EQ(LogLevelBits(level), static_cast<unsigned>(level));
    }
}

}  // namespace
}  // namespace mvp
