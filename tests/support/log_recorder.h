// What the library logs while this object lives, whatever the level.
//
//     LogRecorder log;
//     FreeGetPinBuffer(nullptr, 0);
//     EXPECT_TRUE(log.Contains(8, "--->FreeBuffer")) << log.Dump();
//
// A recorder starts empty. Make one in each test; while two live, the younger one records.
// Lines of every thread are recorded; the functions may be called at any time.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "support/recording/recording.h"

namespace mvp::test {

struct RecordedLine {
    std::string strTag;
    int nLevel;
    std::string strText;

    bool operator==(const RecordedLine&) const = default;
};

class LogRecorder {
public:
    LogRecorder() {
        RecordLogTo(
            [](void* pContext, const char* pszTag, int nLevel, const char* pszText) {
                auto& recorder = *static_cast<LogRecorder*>(pContext);
                const std::lock_guard lock(recorder.m_lock);
                recorder.m_lines.push_back({pszTag, nLevel, pszText});
            },
            this);
    }
    ~LogRecorder() { RecordLogTo(nullptr, nullptr); }

    void Clear() {
        const std::lock_guard lock(m_lock);
        m_lines.clear();
    }
    std::vector<RecordedLine> Lines() const {
        const std::lock_guard lock(m_lock);
        return m_lines;
    }
    // The texts of one level, in order.
    std::vector<std::string> Texts(int nLevel) const {
        std::vector<std::string> texts;
        for (RecordedLine& line : Lines()) {
            if (line.nLevel == nLevel) {
                texts.push_back(std::move(line.strText));
            }
        }
        return texts;
    }
    // Whether there is a line of that level with exactly that text.
    bool Contains(int nLevel, std::string_view text) const {
        return std::ranges::count(Texts(nLevel), text) > 0;
    }
    // Whether there is a line, of whatever level, with this in its text.
    bool ContainsPart(std::string_view part) const {
        return std::ranges::any_of(Lines(), [=](const auto& line) {
            return line.strText.find(part) != line.strText.npos;
        });
    }
    // Every line on a line of its own, for the message of a failure.
    std::string Dump() const {
        std::string text = "the log:\n";
        for (const auto& [tag, level, content] : Lines()) {
            text.append("  ").append(tag).append(" ").append(std::to_string(level));
            text.append(": ").append(content).append("\n");
        }
        return text;
    }

private:
    mutable std::mutex m_lock;
    std::vector<RecordedLine> m_lines;
};

}  // namespace mvp::test
