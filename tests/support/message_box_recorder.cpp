#include "support/message_box_recorder.h"

#include "support/recording/recording_module.h"

namespace mvp::test {
namespace {

std::string TextOrNone(const char* pszText) {
    return pszText != nullptr ? pszText : "";
}

}  // namespace

MessageBoxRecorder::MessageBoxRecorder() {
    SetAnswer(1);
    RecordingFunction<MessageBoxRecordTo>("vkerrmes.dll", "VKErrMesRecordTo")(
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
    RecordingFunction<MessageBoxRecordTo>("vkerrmes.dll", "VKErrMesRecordTo")(nullptr, nullptr);
}

}  // namespace mvp::test
