#include "support/pattern_recorder.h"

#include "support/recording/recording.h"
#include "support/recording/recording_module.h"

namespace mvp::test {
namespace {

PatternRecordTo RecordTo() {
    static const auto function = RecordingFunction<PatternRecordTo>("mvcext.dll", "MvcextRecordTo");
    return function;
}

}  // namespace

PatternRecorder::PatternRecorder() {
    RecordTo()(&PatternRecorder::Receive, this);
}

PatternRecorder::~PatternRecorder() {
    RecordTo()(nullptr, nullptr);
}

void PatternRecorder::Receive(void* pContext, const PatternRecord& record) {
    static_cast<PatternRecorder*>(pContext)->m_calls.push_back(
        {record.pszPattern, record.bIgnoreCase, record.pszText, record.bMatched});
}

}  // namespace mvp::test
