#include "suite/vklog/log_output.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace mvp {
namespace {

constexpr char kSettingsKey[] = R"(SOFTWARE\Quillon\Veskara\Logging)";

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

LSTATUS ReadSetting(const char* pszName, DWORD nTypes, void* pValue, DWORD nSize) noexcept {
    DWORD nRead = nSize;
    const LSTATUS nError =
        RegGetValueA(HKEY_LOCAL_MACHINE, kSettingsKey, pszName, nTypes, nullptr, pValue, &nRead);
    const bool bShort = nTypes == RRF_RT_REG_DWORD && nRead != nSize;
    return nError == ERROR_SUCCESS && bShort ? ERROR_INVALID_DATA : nError;
}

// The mutex of a file is named after a hash of its path: a path may be too long for a name and
// holds backslashes, which a name may not.
KernelHandle OpenMutexOf(const char* pszFile) noexcept {
    std::uint64_t nHash = 14695981039346656037ULL;
    for (const char* psz = pszFile; *psz != '\0'; ++psz) {
        nHash ^= static_cast<std::uint64_t>(std::tolower(static_cast<unsigned char>(*psz)));
        nHash *= 1099511628211ULL;
    }
    char name[64];
    std::snprintf(name, sizeof(name), "Local\\VeskaraLog-%016llx",
                  static_cast<unsigned long long>(nHash));
    return KernelHandle(CreateMutexA(nullptr, FALSE, name));
}

// Holds the mutex, if there is one and it comes free in time.
class CMutexTurn {
public:
    CMutexTurn(HANDLE hMutex, DWORD nWaitMs) noexcept : m_hMutex(hMutex) {
        if (m_hMutex == nullptr)
            return;
        const DWORD nResult = WaitForSingleObject(m_hMutex, nWaitMs);
        m_bHeld = nResult == WAIT_OBJECT_0 || nResult == WAIT_ABANDONED;
    }
    CMutexTurn(const CMutexTurn&) = delete;
    CMutexTurn& operator=(const CMutexTurn&) = delete;
    ~CMutexTurn() {
        if (m_bHeld)
            ReleaseMutex(m_hMutex);
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

CLogOutput::~CLogOutput() {
    // A library that is detached after this one may still log.
    m_nLevelMask.store(0, std::memory_order_relaxed);
}

bool CLogOutput::Wants(int nLevel) noexcept {
    const CScopedLock lock(m_lock);
    if (!m_bSettingsRead)
        ReadSettings();
    if (!MayWant(nLevel))
        return false;
    if (OpenFile())
        return true;
    ++m_nLost;
    return false;
}

void CLogOutput::Write(const LogLine& line) noexcept {
    const CScopedLock lock(m_lock);
    Append(line);
}

void CLogOutput::Set(const char* pszFile, unsigned nLevelMask) noexcept {
    const CScopedLock lock(m_lock);
    Apply(pszFile, nLevelMask);
}

void CLogOutput::ReadSettings() noexcept {
    char file[MAX_PATH] = {};
    DWORD nLevelMask = 0;
    const LSTATUS nFile = ReadSetting("LogFile", RRF_RT_REG_SZ, file, sizeof(file));
    const LSTATUS nLevels =
        ReadSetting("LogLevels", RRF_RT_REG_DWORD, &nLevelMask, sizeof(nLevelMask));
    if (nFile == ERROR_SUCCESS && nLevels == ERROR_SUCCESS)
        return Apply(file, nLevelMask);
    // The file is the best place to say that its levels are wrong.
    Apply(nFile == ERROR_SUCCESS ? file : nullptr, 0);
    TellIfWrong("LogFile", nFile);
    TellIfWrong("LogLevels", nLevels);
    Apply(nullptr, 0);
}

void CLogOutput::Apply(const char* pszFile, unsigned nLevelMask) noexcept {
    m_bSettingsRead = true;
    m_file.reset();
    m_mutex.reset();
    m_nRetryAt = 0;
    m_nLost = 0;
    m_bFailureTold = false;
    const bool bOn = pszFile != nullptr && *pszFile != '\0';
    const DWORD nLength = bOn ? GetFullPathNameA(pszFile, sizeof(m_szFile), m_szFile, nullptr) : 0;
    if (nLength >= sizeof(m_szFile))
        TellDebugger("the log file's path is too long");
    if (nLength == 0 || nLength >= sizeof(m_szFile)) {
        m_szFile[0] = '\0';
        nLevelMask = 0;
    }
    m_nLevelMask.store(nLevelMask, std::memory_order_relaxed);
}

bool CLogOutput::OpenFile() noexcept {
    if (m_file)
        return true;
    if (m_szFile[0] == '\0' || GetTickCount64() < m_nRetryAt)
        return false;
    m_file.reset(CreateFileA(m_szFile, FILE_APPEND_DATA | SYNCHRONIZE,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!m_file) {
        CloseFileForNow();
        return false;
    }
    m_mutex = OpenMutexOf(m_szFile);
    if (const unsigned nLost = std::exchange(m_nLost, 0)) {
        char text[64];
        std::snprintf(text, sizeof(text), "%u lines could not be written before", nLost);
        AppendOwn(text);
    }
    return static_cast<bool>(m_file);
}

void CLogOutput::Append(const LogLine& line) noexcept {
    if (!m_file)
        return;
    const CMutexTurn turn(m_mutex.get(), kMutexWaitMs);
    DWORD nWritten = 0;
    if (WriteFile(m_file.get(), line.text, static_cast<DWORD>(line.nLength), &nWritten, nullptr)) {
        m_bFailureTold = false;
        return;
    }
    CloseFileForNow();
    ++m_nLost;
}

void CLogOutput::AppendOwn(const char* pszText) noexcept {
    LogLine line;
    ComposeLogLine(RecordNow("VKLOG", VKLOG_ERROR, pszText), line);
    Append(line);
}

void CLogOutput::TellIfWrong(const char* pszSetting, LSTATUS nError) noexcept {
    const char* const pszWrong = Mistake(nError);
    if (pszWrong == nullptr)
        return;
    char text[256];
    std::snprintf(text, sizeof(text), "Setting ignored: %s\\%s: %s; nothing is logged",
                  kSettingsKey, pszSetting, pszWrong);
    TellDebugger(text);
    if (OpenFile())
        AppendOwn(text);
}

// Every line of a file that cannot be written would say the same, so only the first one does.
void CLogOutput::CloseFileForNow() noexcept {
    const DWORD nError = GetLastError();
    m_file.reset();
    m_nRetryAt = GetTickCount64() + kRetryAfterMs;
    if (std::exchange(m_bFailureTold, true))
        return;
    char text[MAX_PATH + 64];
    std::snprintf(text, sizeof(text), "%s cannot be written (error %lu), lines are lost", m_szFile,
                  nError);
    TellDebugger(text);
}

}  // namespace mvp
