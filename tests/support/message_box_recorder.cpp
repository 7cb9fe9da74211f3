#include "support/message_box_recorder.h"

#include <utility>

#include "support/recording/recording.h"
#include "support/recording/recording_module.h"

namespace mvp::test {
namespace {

MessageBoxRecordTo RecordTo() {
    static const auto function =
        RecordingFunction<MessageBoxRecordTo>("vkerrmes.dll", "VKErrMesRecordTo");
    return function;
}

std::string TextOrNone(const char* pszText) {
    return pszText != nullptr ? pszText : "";
}

}  // namespace

MessageBoxRecorder::MessageBoxRecorder() {
    SetAnswer(1);
    RecordTo()(&MessageBoxRecorder::Receive, this);
}

MessageBoxRecorder::~MessageBoxRecorder() {
    RecordTo()(nullptr, nullptr);
}

void MessageBoxRecorder::SetAnswer(int nAnswer) {
    m_answer = [nAnswer](const MessageBoxCall&) { return nAnswer; };
}

void MessageBoxRecorder::SetAnswer(std::function<int(const MessageBoxCall&)> answer) {
    m_answer = std::move(answer);
}

int MessageBoxRecorder::Receive(void* pContext, const MessageBoxRecord& record) {
    MessageBoxRecorder& recorder = *static_cast<MessageBoxRecorder*>(pContext);
    const MessageBoxCall call = {record.bWithParentAndReader,
                                 record.hParent,
                                 record.nMessageType,
                                 TextOrNone(record.pszText),
                                 record.nButtons,
                                 record.nIcon,
                                 record.nFlags,
                                 record.pReserved,
                                 TextOrNone(record.pszReader)};
    recorder.m_calls.push_back(call);
    // The function may set another answer, and may lead to another box.
    const auto answer = recorder.m_answer;
    return answer(call);
}

}  // namespace mvp::test
