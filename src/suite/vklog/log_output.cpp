#include "suite/vklog/log_output.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "platform/machine_registry.h"
#include "settings/settings.h"

namespace mvp {
namespace {

// The log's own lines, for whoever watches what is sent to debuggers.
void TellDebugger(const char* pszText) noexcept {
    char line[2 * MAX_PATH];
    std::snprintf(line, sizeof(line), "vklog: %s\n", pszText);
    OutputDebugStringA(line);
}

// What is wrong with a setting, or null: one that is missing is none.
const char* Mistake(LSTATUS nError) noexcept {
    switch (nError) {
        case ERROR_SUCCESS:
        case ERROR_FILE_NOT_FOUND:
            return nullptr;
        case ERROR_UNSUPPORTED_TYPE:
            return "its type is another one";
        case ERROR_MORE_DATA:
            return "it is too long";
        default:
            return "it cannot be read";
    }
}

LSTATUS ReadSetting(const SettingName& setting, DWORD nTypes, void* pValue, DWORD nSize) noexcept {
    RegistryKey key;
    LSTATUS error = OpenMachineKey(setting.pszKey, KEY_QUERY_VALUE, key);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    DWORD read = nSize;
    error = RegGetValueA(key.get(), nullptr, setting.pszName, nTypes, nullptr, pValue, &read);
    const bool isShort = nTypes == RRF_RT_REG_DWORD && read != nSize;
    return error == ERROR_SUCCESS && isShort ? ERROR_INVALID_DATA : error;
}

// The mutex of a file is named after a hash of its path: a path may be too long for a name and
// holds backslashes, which a name may not.
KernelHandle OpenMutexOf(const char* pszFile) noexcept {
    std::uint64_t hash = 14695981039346656037ULL;
    for (const char* psz = pszFile; *psz != '\0'; ++psz) {
        hash ^= static_cast<std::uint64_t>(std::tolower(static_cast<unsigned char>(*psz)));
        hash *= 1099511628211ULL;
    }
    char name[64];
    std::snprintf(name, sizeof(name), "Local\\VeskaraLog-%016llx",
                  static_cast<unsigned long long>(hash));
    return KernelHandle(CreateMutexA(nullptr, FALSE, name));
}

// Holds the mutex, if there is one and it comes free in time.
class MutexTurn {
public:
    MutexTurn(HANDLE hMutex, DWORD nWaitMs) noexcept : m_hMutex(hMutex) {
        if (m_hMutex == nullptr) {
            return;
        }
        const DWORD result = WaitForSingleObject(m_hMutex, nWaitMs);
        m_bHeld = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    }
    MutexTurn(const MutexTurn&) = delete;
    MutexTurn& operator=(const MutexTurn&) = delete;
    ~MutexTurn() {
        if (m_bHeld) {
            ReleaseMutex(m_hMutex);
        }
    }

private:
    HANDLE m_hMutex;
    bool m_bHeld = false;
};

}  // namespace

LogRecord RecordNow(const char* pszTag, int nLevel, const char* pszText) noexcept {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return {
        {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds},
        GetCurrentProcessId(),
        GetCurrentThreadId(),
        pszTag,
        nLevel,
        pszText};
}

LogOutput::~LogOutput() {
    // A library that is detached after this one may still log.
    m_nLevelMask.store(0, std::memory_order_relaxed);
}

bool LogOutput::Wants(int nLevel) noexcept {
    const ScopedLock lock(m_lock);
    if (!m_bSettingsRead) {
        ReadSettings();
    }
    if (!MayWant(nLevel)) {
        return false;
    }
    if (OpenFile()) {
        return true;
    }
    ++m_nLost;
    return false;
}

void LogOutput::Write(const LogLine& line) noexcept {
    const ScopedLock lock(m_lock);
    Append(line);
}

void LogOutput::Set(const char* pszFile, unsigned nLevelMask) noexcept {
    const ScopedLock lock(m_lock);
    Apply(pszFile, nLevelMask);
}

void LogOutput::ReadSettings() noexcept {
    char file[settings::kLogFile.nCapacity] = {};
    DWORD levelMask = settings::kLogLevels.nDefault;
    LSTATUS fileError = ReadSetting(settings::kLogFile, RRF_RT_REG_SZ, file, sizeof(file));
    // Not every system adds, or misses, the terminator of a text that fills the buffer.
    if (fileError == ERROR_SUCCESS && file[sizeof(file) - 1] != '\0') {
        fileError = ERROR_MORE_DATA;
    }
    const LSTATUS levels =
        ReadSetting(settings::kLogLevels, RRF_RT_REG_DWORD, &levelMask, sizeof(levelMask));
    if (fileError == ERROR_SUCCESS && levels == ERROR_SUCCESS) {
        return Apply(file, levelMask);
    }
    // The file is the best place to say that its levels are wrong.
    Apply(fileError == ERROR_SUCCESS ? file : nullptr, 0);
    TellIfWrong(settings::kLogFile, fileError);
    TellIfWrong(settings::kLogLevels, levels);
    Apply(nullptr, 0);
}

void LogOutput::Apply(const char* pszFile, unsigned nLevelMask) noexcept {
    m_bSettingsRead = true;
    m_file.reset();
    m_mutex.reset();
    m_nRetryAt = 0;
    m_nLost = 0;
    m_bFailureTold = false;
    const bool on = pszFile != nullptr && *pszFile != '\0';
    const DWORD length = on ? GetFullPathNameA(pszFile, sizeof(m_szFile), m_szFile, nullptr) : 0;
    if (length >= sizeof(m_szFile)) {
        TellDebugger("the log file's path is too long");
    }
    if (length == 0 || length >= sizeof(m_szFile)) {
        m_szFile[0] = '\0';
        nLevelMask = 0;
    }
    m_nLevelMask.store(nLevelMask, std::memory_order_relaxed);
}

bool LogOutput::OpenFile() noexcept {
    if (m_file) {
        return true;
    }
    if (m_szFile[0] == '\0' || GetTickCount64() < m_nRetryAt) {
        return false;
    }
    m_file.reset(CreateFileA(m_szFile, FILE_APPEND_DATA | SYNCHRONIZE,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!m_file) {
        CloseFileForNow();
        return false;
    }
    m_mutex = OpenMutexOf(m_szFile);
    if (const unsigned lost = std::exchange(m_nLost, 0)) {
        char text[64];
        std::snprintf(text, sizeof(text), "%u lines could not be written before", lost);
        AppendOwn(text);
    }
    return static_cast<bool>(m_file);
}

void LogOutput::Append(const LogLine& line) noexcept {
    if (!m_file) {
        return;
    }
    const MutexTurn turn(m_mutex.get(), kMutexWaitMs);
    DWORD written = 0;
    if (WriteFile(m_file.get(), line.text, static_cast<DWORD>(line.nLength), &written, nullptr)) {
        m_bFailureTold = false;
        return;
    }
    CloseFileForNow();
    ++m_nLost;
}

void LogOutput::AppendOwn(const char* pszText) noexcept {
    LogLine line;
    ComposeLogLine(RecordNow("VKLOG", VKLOG_ERROR, pszText), line);
    Append(line);
}

void LogOutput::TellIfWrong(const SettingName& setting, LSTATUS nError) noexcept {
    const char* const wrong = Mistake(nError);
    if (wrong == nullptr) {
        return;
    }
    char text[256];
    std::snprintf(text, sizeof(text), "Setting ignored: %s\\%s: %s; nothing is logged",
                  setting.pszKey, setting.pszName, wrong);
    TellDebugger(text);
    if (OpenFile()) {
        AppendOwn(text);
    }
}

// Every line of a file that cannot be written would say the same, so only the first one does.
void LogOutput::CloseFileForNow() noexcept {
    const DWORD error = GetLastError();
    m_file.reset();
    m_nRetryAt = GetTickCount64() + kRetryAfterMs;
    if (std::exchange(m_bFailureTold, true)) {
        return;
    }
    char text[MAX_PATH + 64];
    std::snprintf(text, sizeof(text), "%s cannot be written (error %lu), lines are lost", m_szFile,
                  error);
    TellDebugger(text);
}

}  // namespace mvp
