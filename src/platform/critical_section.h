// A lock for the state of a library.
//
// When a process ends, its other threads are gone before the libraries are detached, and one of
// them may have died holding a lock. A critical section is the one lock that a library may still
// enter then: the system lets the last thread in or ends the process, it never hangs.
#pragma once

#include <windows.h>

namespace mvp {

class CCriticalSection {
public:
    CCriticalSection() noexcept { InitializeCriticalSection(&m_section); }
    CCriticalSection(const CCriticalSection&) = delete;
    CCriticalSection& operator=(const CCriticalSection&) = delete;
    ~CCriticalSection() { DeleteCriticalSection(&m_section); }

    void Enter() noexcept { EnterCriticalSection(&m_section); }
    void Leave() noexcept { LeaveCriticalSection(&m_section); }

    // For SleepConditionVariableCS.
    CRITICAL_SECTION* get() noexcept { return &m_section; }

private:
    CRITICAL_SECTION m_section;
};

// Holds a critical section for as long as this lives.
class CScopedLock {
public:
    explicit CScopedLock(CCriticalSection& section) noexcept : m_section(section) {
        m_section.Enter();
    }
    CScopedLock(const CScopedLock&) = delete;
    CScopedLock& operator=(const CScopedLock&) = delete;
    ~CScopedLock() { m_section.Leave(); }

private:
    CCriticalSection& m_section;
};

}  // namespace mvp
