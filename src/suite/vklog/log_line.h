// The text of a log line. Plain functions over buffers: no allocation, no system calls.
#pragma once

#include <cstddef>

#include "suite/vklog/vklog.h"

namespace mvp {

struct LogTime {
    unsigned nYear;
    unsigned nMonth;
    unsigned nDay;
    unsigned nHour;
    unsigned nMinute;
    unsigned nSecond;
    unsigned nMillisecond;
};

struct LogRecord {
    LogTime time;
    unsigned long nProcess;
    unsigned long nThread;
    const char* pszTag;
    int nLevel;
    const char* pszText;
};

// A line and how much of it is filled; it is not terminated.
struct LogLine {
    char text[VKLOG_LINE_MAX];
    std::size_t nLength;
};

// Fills `line` with the record as vklog.h describes it, line end included.
void ComposeLogLine(const LogRecord& record, LogLine& line) noexcept;

// The bits of the level mask that switch a level on.
constexpr unsigned LogLevelBits(int nLevel) noexcept {
    return nLevel == VKLOG_DETAIL ? unsigned{VKLOG_DETAIL_BIT} : static_cast<unsigned>(nLevel);
}

}  // namespace mvp
