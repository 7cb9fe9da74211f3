// Lines of the transcripts, changed at random: whatever comes, each request gets one answer.
// MVP_MUTATED_LINES sets how many; the seed is always the same.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "pinentry/checked_session.h"
#include "pinentry/played_session.h"

namespace pinentry {
namespace {

class Mutator {
public:
    Mutator() {
        std::set<std::string> lines;
        for (const auto& entry : std::filesystem::directory_iterator(PINENTRY_TRANSCRIPTS)) {
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);) {
                if (line.rfind("C: ", 0) == 0) {
                    lines.insert(line.substr(3, line.find(" | ") - 3));
                }
            }
        }
        m_lines.assign(lines.begin(), lines.end());
    }

    std::string Line() {
        std::string line = Any();
        for (std::size_t left = Below(4); left > 0; --left) {
            Change(line);
        }
        return line + "\n";
    }

    std::size_t Below(std::size_t n) { return m_random() % n; }

private:
    const std::string& Any() { return m_lines[Below(m_lines.size())]; }

    void Change(std::string& strLine) {
        static constexpr char kBytes[] = "%0A_& =-D#\r\t\x01\xC3\xA9\xFF";
        const std::size_t at = Below(strLine.size() + 1);
        switch (Below(7)) {
            case 0:
                strLine.insert(at, 1, kBytes[Below(sizeof kBytes)]);
                break;
            case 1:
                strLine.erase(at, 1 + Below(4));
                break;
            case 2:
                strLine.insert(at, Any());
                break;
            case 3:
                strLine.insert(at, Below(20) == 0 ? 2000 : 40, 'x');
                break;
            case 4:
                strLine.insert(at, "\n");
                break;
            case 5:
                strLine = Any().substr(0, Below(9)) + strLine;
                break;
            default:
                strLine.insert(at, "%" + std::to_string(Below(100)));
                break;
        }
    }

    std::mt19937 m_random{20'261'123};
    std::vector<std::string> m_lines;
};

TEST(MutatedLinesTest, EachRequestIsAnsweredOnce) {
    const char* count = std::getenv("MVP_MUTATED_LINES");
    Mutator mutator;
    for (long left = count != nullptr ? std::strtol(count, nullptr, 10) : 300'000; left > 0;) {
        std::string bytes;
        for (std::size_t lines = 1 + mutator.Below(12); lines > 0; --lines, --left) {
            bytes += mutator.Line();
        }
        ASSERT_EQ(FaultOfSession(bytes), "") << testing::PrintToString(bytes);
    }
}

}  // namespace
}  // namespace pinentry
