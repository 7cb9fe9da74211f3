#include "suite/vklog/log_output.h"

#include <cctype>
#include <cstdint>
#include <cstdio>

namespace mvp {
namespace {

constexpr char kSettingsKey[] = R"(SOFTWARE\Quillon\Veskara\Logging)";

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

CLogOutput::~CLogOutput() {
    // A library that is detached after this one may still log.
    m_nLevelMask.store(0, std::memory_order_relaxed);
}

bool CLogOutput::Wants(int nLevel) noexcept {
    const CScopedLock lock(m_lock);
    if (!m_bSettingsRead)
        ReadSettings();
    return MayWant(nLevel) && OpenFile();
}

void CLogOutput::Write(const LogLine& line) noexcept {
    const CScopedLock lock(m_lock);
    if (!m_file)
        return;
    const CMutexTurn turn(m_mutex.get(), kMutexWaitMs);
    DWORD nWritten = 0;
    if (!WriteFile(m_file.get(), line.text, static_cast<DWORD>(line.nLength), &nWritten, nullptr))
        CloseFileForNow();
}

void CLogOutput::Set(const char* pszFile, unsigned nLevelMask) noexcept {
    const CScopedLock lock(m_lock);
    Apply(pszFile, nLevelMask);
}

void CLogOutput::ReadSettings() noexcept {
    char file[MAX_PATH] = {};
    DWORD nSize = sizeof(file);
    DWORD nLevelMask = 0;
    DWORD nMaskSize = sizeof(nLevelMask);
    const bool bBoth = RegGetValueA(HKEY_LOCAL_MACHINE, kSettingsKey, "LogFile", RRF_RT_REG_SZ,
                                    nullptr, file, &nSize) == ERROR_SUCCESS &&
                       RegGetValueA(HKEY_LOCAL_MACHINE, kSettingsKey, "LogLevels", RRF_RT_REG_DWORD,
                                    nullptr, &nLevelMask, &nMaskSize) == ERROR_SUCCESS &&
                       nMaskSize == sizeof(nLevelMask);
    Apply(bBoth ? file : nullptr, nLevelMask);
}

void CLogOutput::Apply(const char* pszFile, unsigned nLevelMask) noexcept {
    m_bSettingsRead = true;
    m_file.reset();
    m_mutex.reset();
    m_nRetryAt = 0;
    const bool bOn = pszFile != nullptr && *pszFile != '\0';
    const DWORD nLength = bOn ? GetFullPathNameA(pszFile, sizeof(m_szFile), m_szFile, nullptr) : 0;
    if (nLength == 0 || nLength >= sizeof(m_szFile))
        nLevelMask = 0;
    m_nLevelMask.store(nLevelMask, std::memory_order_relaxed);
}

bool CLogOutput::OpenFile() noexcept {
    if (m_file)
        return true;
    if (GetTickCount64() < m_nRetryAt)
        return false;
    m_file.reset(CreateFileA(m_szFile, FILE_APPEND_DATA | SYNCHRONIZE,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!m_file) {
        CloseFileForNow();
        return false;
    }
    m_mutex = OpenMutexOf(m_szFile);
    return true;
}

void CLogOutput::CloseFileForNow() noexcept {
    m_file.reset();
    m_nRetryAt = GetTickCount64() + kRetryAfterMs;
}

}  // namespace mvp
