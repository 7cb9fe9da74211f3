#include "support/log_recorder.h"

#include <algorithm>
#include <sstream>

#include "support/recording/recording.h"
#include "support/recording/recording_module.h"

namespace mvp::test {
namespace {

LogRecordTo RecordTo() {
    static const auto function = RecordingFunction<LogRecordTo>("vklog.dll", "vklogRecordTo");
    return function;
}

}  // namespace

LogRecorder::LogRecorder() {
    RecordTo()(&LogRecorder::Receive, this);
}

LogRecorder::~LogRecorder() {
    RecordTo()(nullptr, nullptr);
}

void LogRecorder::Receive(void* pContext, const char* pszTag, int nLevel, const char* pszText) {
    LogRecorder& recorder = *static_cast<LogRecorder*>(pContext);
    const std::lock_guard lock(recorder.m_lock);
    recorder.m_lines.push_back({pszTag, nLevel, pszText});
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
        if (line.nLevel == nLevel)
            texts.push_back(std::move(line.strText));
    }
    return texts;
}

bool LogRecorder::Contains(int nLevel, std::string_view text) const {
    return std::ranges::any_of(Lines(), [&](const RecordedLine& line) {
        return line.nLevel == nLevel && line.strText == text;
    });
}

bool LogRecorder::ContainsPart(std::string_view part) const {
    return std::ranges::any_of(Lines(), [&](const RecordedLine& line) {
        return line.strText.find(part) != std::string::npos;
    });
}

std::string LogRecorder::Dump() const {
    std::ostringstream text;
    text << "the log:\n";
    for (const RecordedLine& line : Lines())
        text << "  " << line.strTag << ' ' << line.nLevel << ": " << line.strText << '\n';
    return text.str();
}

}  // namespace mvp::test
