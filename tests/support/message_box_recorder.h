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

#include <windows.h>

#include <functional>
#include <string>
#include <utility>
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
    MessageBoxRecorder();
    MessageBoxRecorder(const MessageBoxRecorder&) = delete;
    MessageBoxRecorder& operator=(const MessageBoxRecorder&) = delete;
    ~MessageBoxRecorder();

    // What every box is answered from now on. 1, the accepting answer, at first.
    void SetAnswer(int nAnswer) {
        m_answer = [nAnswer](const MessageBoxCall&) { return nAnswer; };
    }
    // The same by a function, which may also do what a test wants to happen while a box is open.
    void SetAnswer(std::function<int(const MessageBoxCall&)> answer) {
        m_answer = std::move(answer);
    }

    const std::vector<MessageBoxCall>& Calls() const { return m_calls; }
    void Clear() { m_calls.clear(); }

private:
    std::vector<MessageBoxCall> m_calls;
    std::function<int(const MessageBoxCall&)> m_answer;
};

}  // namespace mvp::test
