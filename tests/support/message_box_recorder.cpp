#include "support/message_box_recorder.h"

#include <utility>

#include "support/recording/recording_module.h"

namespace mvp::test {
namespace {

void RecordTo(MessageBoxReceiver receiver, void* pContext) {
    static const auto s_recordTo =
        RecordingFunction<MessageBoxRecordTo>("vkerrmes.dll", "VKErrMesRecordTo");
    s_recordTo(receiver, pContext);
}

std::string TextOrNone(const char* pszText) {
    return pszText != nullptr ? pszText : "";
}

}  // namespace

MessageBoxRecorder::MessageBoxRecorder() {
    SetAnswer(1);
    RecordTo(
        [](void* pContext, const MessageBoxArguments& arguments, const char* pszText,
           const char* pszReader) {
            auto& recorder = *static_cast<MessageBoxRecorder*>(pContext);
            const MessageBoxCall call{arguments, TextOrNone(pszText), TextOrNone(pszReader)};
            recorder.m_calls.push_back(call);
            // The function may set another answer, and may lead to another box.
            const auto answer = recorder.m_answer;
            return answer(call);
        },
        this);
}

MessageBoxRecorder::~MessageBoxRecorder() {
    RecordTo(nullptr, nullptr);
}

void MessageBoxRecorder::SetAnswer(int nAnswer) {
    m_answer = [nAnswer](const MessageBoxCall&) { return nAnswer; };
}

void MessageBoxRecorder::SetAnswer(std::function<int(const MessageBoxCall&)> answer) {
    m_answer = std::move(answer);
}

}  // namespace mvp::test
