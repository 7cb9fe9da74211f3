#include "suite/vklog/log_line.h"

#include <cstdio>
#include <cstring>

namespace mvp {
namespace {

constexpr char kLineEnd[] = {'\r', '\n'};
constexpr std::size_t kCutMarkLength = sizeof(VKLOG_CUT_MARK) - 1;
// What tag and text may fill; mark and line end always fit behind it.
constexpr std::size_t kBodyMax = VKLOG_LINE_MAX - kCutMarkLength - sizeof(kLineEnd);
constexpr std::size_t kTagMax = 64;

const char* LevelName(int nLevel) noexcept {
    switch (nLevel) {
        case VKLOG_DETAIL:
            return "detail";
        case VKLOG_ERROR:
            return "error";
        case VKLOG_INFORMATION:
            return "information";
        case VKLOG_ENTRY:
            return "entry";
        case VKLOG_EXIT:
            return "exit";
        default:
            return nullptr;
    }
}

// Writes the form of `byte` that stays on one line; returns its length.
std::size_t Escape(unsigned char byte, char (&form)[5]) noexcept {
    const char* const hex = "0123456789abcdef";
    char letter = 0;
    switch (byte) {
        case '\n':
            letter = 'n';
            break;
        case '\r':
            letter = 'r';
            break;
        case '\t':
            letter = 't';
            break;
        default:
            // Bytes from 0x80 up are letters of the code page.
            if (byte >= 0x20 && byte != 0x7f) {
                form[0] = static_cast<char>(byte);
                return 1;
            }
            form[0] = '\\';
            form[1] = 'x';
            form[2] = hex[byte >> 4];
            form[3] = hex[byte & 0xf];
            return 4;
    }
    form[0] = '\\';
    form[1] = letter;
    return 2;
}

// Appends `pszText` up to the position nEnd; returns whether all of it fitted.
bool AppendEscaped(LogLine& line, const char* pszText, std::size_t nEnd) noexcept {
    for (; *pszText != '\0'; ++pszText) {
        char form[5];
        const std::size_t length = Escape(static_cast<unsigned char>(*pszText), form);
        if (line.nLength + length > nEnd) {
            return false;
        }
        std::memcpy(line.text + line.nLength, form, length);
        line.nLength += length;
    }
    return true;
}

void AppendPlain(LogLine& line, const char* bytes, std::size_t nLength) noexcept {
    std::memcpy(line.text + line.nLength, bytes, nLength);
    line.nLength += nLength;
}

void AppendHead(LogLine& line, const LogRecord& record) noexcept {
    const LogTime& time = record.time;
    char head[128];
    std::snprintf(head, sizeof(head), "%04u-%02u-%02u %02u:%02u:%02u.%03u [%lu:%lu] ", time.nYear,
                  time.nMonth, time.nDay, time.nHour, time.nMinute, time.nSecond, time.nMillisecond,
                  record.nProcess, record.nThread);
    AppendPlain(line, head, std::strlen(head));
}

void AppendLevel(LogLine& line, int nLevel) noexcept {
    char level[24];
    if (const char* name = LevelName(nLevel)) {
        std::snprintf(level, sizeof(level), " %s: ", name);
    } else {
        std::snprintf(level, sizeof(level), " %d: ", nLevel);
    }
    AppendPlain(line, level, std::strlen(level));
}

}  // namespace

void ComposeLogLine(const LogRecord& record, LogLine& line) noexcept {
    line.nLength = 0;
    AppendHead(line, record);
    AppendEscaped(line, record.pszTag, line.nLength + kTagMax);
    AppendLevel(line, record.nLevel);
    if (!AppendEscaped(line, record.pszText, kBodyMax)) {
        AppendPlain(line, VKLOG_CUT_MARK, kCutMarkLength);
    }
    AppendPlain(line, kLineEnd, sizeof(kLineEnd));
}

}  // namespace mvp
