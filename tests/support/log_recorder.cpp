#include "support/log_recorder.h"

#include <algorithm>

#include "support/recording/recording.h"
#include "support/recording/recording_module.h"

namespace mvp::test {

LogRecorder::LogRecorder() {
    RecordingFunction<LogRecordTo>("vklog.dll", "vklogRecordTo")(
        [](void* pContext, const char* pszTag, int nLevel, const char* pszText) {
            auto& recorder = *static_cast<LogRecorder*>(pContext);
            const std::lock_guard lock(recorder.m_lock);
            recorder.m_lines.push_back({pszTag, nLevel, pszText});
        },
        this);
}

LogRecorder::~LogRecorder() {
    RecordingFunction<LogRecordTo>("vklog.dll", "vklogRecordTo")(nullptr, nullptr);
}

void LogRecorder::Clear() {
    const std::lock_guard lock(m_lock);
    m_lines.clear();
}

std::vector<RecordedLine> LogRecorder::Lines() const {
    const std::lock_guard lock(m_lock);
    return m_lines;
}

std::vector<std::string> LogRecorder::Texts(int nLevel) const {
    std::vector<std::string> texts;
    for (RecordedLine& line : Lines()) {
        if (line.nLevel == nLevel) {
            texts.push_back(std::move(line.strText));
        }
    }
    return texts;
}

bool LogRecorder::Contains(int nLevel, std::string_view text) const {
    return std::ranges::count(Texts(nLevel), text) > 0;
}

bool LogRecorder::ContainsPart(std::string_view part) const {
    return std::ranges::any_of(Lines(), [part](const RecordedLine& line) {
        return line.strText.find(part) != std::string::npos;
    });
}

std::string LogRecorder::Dump() const {
    std::string text = "the log:\n";
    for (const RecordedLine& line : Lines()) {
        text += "  " + line.strTag + ' ' + std::to_string(line.nLevel) + ": " + line.strText + '\n';
    }
    return text;
}

}  // namespace mvp::test
