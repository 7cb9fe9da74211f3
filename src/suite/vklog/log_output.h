// Where log lines go: the settings, the file and the levels that are on.
//
// The state sits behind one lock. The file is opened at the first line that is wanted and kept
// open; every line is one append, under a named mutex that the processes sharing the file hold in
// turn. On a local disk of Windows an append is one step anyway; elsewhere (Wine, a network share)
// the mutex makes it one.
//
// What goes wrong with the log itself is told where somebody may see it: in the file, if that can
// be written, and else to the debugger, the one place that may be written to from everywhere, also
// from under the loader's lock.
#pragma once

#include <windows.h>

#include <atomic>

#include "platform/critical_section.h"
#include "platform/handle.h"
#include "settings/setting.h"
#include "suite/vklog/log_line.h"

namespace mvp {

// A record of this moment, process and thread. The texts are not copied.
LogRecord RecordNow(const char* pszTag, int nLevel, const char* pszText) noexcept;

class LogOutput {
public:
    LogOutput() noexcept = default;
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;
    ~LogOutput();

    // One load and test. True for every level until the settings have been read.
    bool MayWant(int nLevel) const noexcept {
        return (m_nLevelMask.load(std::memory_order_relaxed) & LogLevelBits(nLevel)) != 0;
    }

    // Whether a line of this level would reach the file now. Reads the settings and opens the file
    // when that is still to do.
    bool Wants(int nLevel) noexcept;

    void Write(const LogLine& line) noexcept;

    // Takes the place of the registry's settings; see vklogSetOutput.
    void Set(const char* pszFile, unsigned nLevelMask) noexcept;

private:
    static constexpr unsigned kUnreadMask = ~0U;
    static constexpr ULONGLONG kRetryAfterMs = 5000;
    // A process that hangs while it holds the mutex delays a line of another one by this much.
    static constexpr DWORD kMutexWaitMs = 100;

    void ReadSettings() noexcept;
    void Apply(const char* pszFile, unsigned nLevelMask) noexcept;
    void TellIfWrong(const SettingName& setting, LSTATUS nError) noexcept;
    bool OpenFile() noexcept;
    void Append(const LogLine& line) noexcept;
    void AppendOwn(const char* pszText) noexcept;
    void CloseFileForNow() noexcept;

    CriticalSection m_lock;
    std::atomic<unsigned> m_nLevelMask{kUnreadMask};
    bool m_bSettingsRead = false;
    char m_szFile[MAX_PATH] = {};
    FileHandle m_file;
    KernelHandle m_mutex;
    ULONGLONG m_nRetryAt = 0;     // by GetTickCount64
    unsigned m_nLost = 0;         // lines since the file could not be written
    bool m_bFailureTold = false;  // since the file could last be written
};

}  // namespace mvp
