#include "suite/vklog/vklog.h"

#include <windows.h>

#include <cstdarg>
#include <cstdio>

#include "suite/vklog/log_line.h"
#include "suite/vklog/log_output.h"

namespace {

mvp::LogOutput g_output;

// The part that only levels that are on reach. Kept apart, so that the common case carries none of
// its stack frame.
[[gnu::noinline]] void Log(const char* pszTag, int nLevel, const char* pszFormat,
                           std::va_list arguments) noexcept {
    const DWORD lastError = GetLastError();
    if (g_output.Wants(nLevel)) {
        // Any longer text is cut in the line as well.
        char text[VKLOG_LINE_MAX];
        const int length = std::vsnprintf(text, sizeof(text),
                                          pszFormat != nullptr ? pszFormat : "(null)", arguments);
        if (length < 0) {
            std::snprintf(text, sizeof(text), "%s", "(text cannot be formatted)");
        }

        mvp::LogLine line;
        mvp::ComposeLogLine(mvp::RecordNow(pszTag != nullptr ? pszTag : "(null)", nLevel, text),
                            line);
        g_output.Write(line);
        // The detail level may carry secrets; none stays behind on the stack.
        SecureZeroMemory(text, sizeof(text));
        SecureZeroMemory(&line, sizeof(line));
    }
    SetLastError(lastError);
}

}  // namespace

void vklogLog(const char* pszTag, int nLevel, const char* pszFormat, ...) {
    if (!g_output.MayWant(nLevel)) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, pszFormat);
    Log(pszTag, nLevel, pszFormat, arguments);
    va_end(arguments);
}

void vklogSetOutput(const char* pszFile, unsigned nLevelMask) {
    g_output.Set(pszFile, nLevelMask);
}
