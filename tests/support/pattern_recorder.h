// The matches that the library makes through mvcext while this object lives. They are real ones.
// Use it on the thread that matches, one at a time.
#pragma once

#include <string>
#include <vector>

namespace mvp::test {

struct PatternRecord;

struct PatternCall {
    std::string strPattern;
    bool bIgnoreCase;
    std::string strText;
    bool bMatched;
};

class PatternRecorder {
public:
    PatternRecorder();
    PatternRecorder(const PatternRecorder&) = delete;
    PatternRecorder& operator=(const PatternRecorder&) = delete;
    ~PatternRecorder();

    const std::vector<PatternCall>& Calls() const { return m_calls; }

private:
    static void Receive(void* pContext, const PatternRecord& record);

    std::vector<PatternCall> m_calls;
};

}  // namespace mvp::test
