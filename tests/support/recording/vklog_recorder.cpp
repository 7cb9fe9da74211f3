// Stands in for vklog in tests: every level is on, and lines go to the test instead of a file.
#include <cstdarg>
#include <cstdio>

#include "platform/critical_section.h"
#include "suite/vklog/vklog.h"
#include "support/recording/recording.h"

namespace {

mvp::CriticalSection g_lock;
mvp::test::LogReceiver g_receiver = nullptr;
void* g_pContext = nullptr;

}  // namespace

extern "C" __declspec(dllexport) void vklogRecordTo(mvp::test::LogReceiver receiver,
                                                    void* pContext) {
    const mvp::ScopedLock lock(g_lock);
    g_receiver = receiver;
    g_pContext = pContext;
}

void vklogLog(const char* pszTag, int nLevel, const char* pszFormat, ...) {
    const DWORD lastError = GetLastError();
    {
        const mvp::ScopedLock lock(g_lock);
        if (g_receiver != nullptr) {
            // The real module cuts no later.
            char text[VKLOG_LINE_MAX];
            std::va_list arguments;
            va_start(arguments, pszFormat);
            std::vsnprintf(text, sizeof(text), pszFormat != nullptr ? pszFormat : "(null)",
                           arguments);
            va_end(arguments);
            g_receiver(g_pContext, pszTag != nullptr ? pszTag : "(null)", nLevel, text);
        }
    }
    SetLastError(lastError);
}

void vklogSetOutput(const char*, unsigned) {}
