// The library's side of the suite's log: its tag, the levels, and the scope that writes the entry
// and exit lines of a function.
//
// Log texts stand in full where they are written, so that a line of a log file leads straight to
// its source:
//
//     void CEnterPinDlg::OnX() {
//         const mvp::LogScope scope("CEnterPinDlg::OnX");
//         vklogLog(g_szLogTag, kLogInfo, "CEnterPinDlg::OnX: %d", n);
#pragma once

#include <cstdint>

#include <vklog/vklog.h>

#include "settings/setting.h"

// Writable: the log's interface has always been handed an array.
extern char g_szLogTag[];

inline constexpr int kLogDetail = 0;
inline constexpr int kLogError = 1;
inline constexpr int kLogInfo = 2;
inline constexpr int kLogEntry = 8;
inline constexpr int kLogExit = 16;

namespace mvp {

class LogScope {
public:
    // The same text for both lines. It must outlive the scope: pass a literal.
    explicit LogScope(const char* pszText) noexcept : LogScope(pszText, pszText) {}
    LogScope(const char* pszEntry, const char* pszExit, int nExitLevel = kLogExit) noexcept
        : m_pszExit(pszExit), m_nExitLevel(nExitLevel) {
        vklogLog(g_szLogTag, kLogEntry, "%s", pszEntry);
    }
    LogScope(const LogScope&) = delete;
    LogScope& operator=(const LogScope&) = delete;
    ~LogScope() { vklogLog(g_szLogTag, m_nExitLevel, "%s", m_pszExit); }

private:
    const char* m_pszExit;
    int m_nExitLevel;
};

// What a barrier of the library does with an exception that it has stopped: one line in the log.
//
//     mvp::Guarded(MVPINGUI_REFUSED, [&] { ... }, mvp::LogException("GetPINFromUser"));
class LogException {
public:
    // The function that was left. It must outlive the barrier: pass a literal.
    explicit constexpr LogException(const char* pszFunction) noexcept
        : m_pszFunction(pszFunction) {}
    void operator()() const noexcept {
        vklogLog(g_szLogTag, kLogError, "%s: exception", m_pszFunction);
    }

private:
    const char* m_pszFunction;
};

// Tells an administrator of a setting that is there and is not followed, and why: `pszReason` says
// what is wrong in a few words.
inline void LogIgnoredSetting(const SettingName& setting, const char* pszReason) noexcept {
    vklogLog(g_szLogTag, kLogError, "Setting ignored: %s\\%s: %s", setting.pszKey, setting.pszName,
             pszReason);
}

// The low 32 bits of a handle or pointer, for the log texts that print them with %x. A handle's
// upper half carries nothing.
inline unsigned LowBits(const volatile void* pointer) noexcept {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pointer));
}

}  // namespace mvp
