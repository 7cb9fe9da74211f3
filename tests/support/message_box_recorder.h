// The message boxes that the library shows through vkerrmes while this object lives. None appears;
// each is answered at once.
//
//     MessageBoxRecorder boxes;
//     boxes.SetAnswer(0);
//     EXPECT_EQ(DisplayLastPINTry("Reader A"), 0xFFFFFFFF);
//     ASSERT_EQ(boxes.Calls().size(), 1U);
//     EXPECT_EQ(boxes.Calls()[0].strReader, "Reader A");
//
// Use it on the thread that shows the boxes, one at a time. Without one every box is answered 1.
#pragma once

#include <string>
#include <vector>

#include "support/recording/recording.h"

namespace mvp::test {

// Null texts are recorded as empty ones.
struct MessageBoxCall : MessageBoxArguments {
    std::string strText;
    std::string strReader;
};

class MessageBoxRecorder {
public:
    MessageBoxRecorder() {
        RecordBoxesTo(
            [](void* pContext, const MessageBoxArguments& arguments, const char* pszText,
               const char* pszReader) {
                auto& recorder = *static_cast<MessageBoxRecorder*>(pContext);
                recorder.m_calls.push_back({arguments, pszText != nullptr ? pszText : "",
                                            pszReader != nullptr ? pszReader : ""});
                return recorder.m_nAnswer;
            },
            this);
    }
    MessageBoxRecorder(const MessageBoxRecorder&) = delete;
    MessageBoxRecorder& operator=(const MessageBoxRecorder&) = delete;
    ~MessageBoxRecorder() { RecordBoxesTo(nullptr, nullptr); }

    // What every box is answered from now on. 1, the accepting answer, at first.
    void SetAnswer(int nAnswer) { m_nAnswer = nAnswer; }

    const std::vector<MessageBoxCall>& Calls() const { return m_calls; }
    void Clear() { m_calls.clear(); }

private:
    std::vector<MessageBoxCall> m_calls;
    int m_nAnswer = 1;
};

}  // namespace mvp::test
