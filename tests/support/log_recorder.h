// What the library logs while this object lives, whatever the level.
//
//     LogRecorder log;
//     FreeGetPinBuffer(nullptr, 0);
//     EXPECT_TRUE(log.Contains(8, "--->FreeBuffer")) << log.Dump();
//
// A recorder starts empty. Make one in each test; while two live, the younger one records.
// Lines of every thread are recorded; the functions may be called at any time.
#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace mvp::test {

struct RecordedLine {
    std::string strTag;
    int nLevel;
    std::string strText;

    bool operator==(const RecordedLine&) const = default;
};

class LogRecorder {
public:
    LogRecorder();
    ~LogRecorder();

    void Clear();
    std::vector<RecordedLine> Lines() const;
    // The texts of one level, in order.
    std::vector<std::string> Texts(int nLevel) const;
    // Whether there is a line of that level with exactly that text.
    bool Contains(int nLevel, std::string_view text) const;
    // Whether there is a line, of whatever level, with this in its text.
    bool ContainsPart(std::string_view part) const;
    // Every line on a line of its own, for the message of a failure.
    std::string Dump() const;

private:
    mutable std::mutex m_lock;
    std::vector<RecordedLine> m_lines;
};

}  // namespace mvp::test
