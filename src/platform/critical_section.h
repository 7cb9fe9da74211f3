// A lock for the state of a library.
//
// When a process ends, its other threads are gone before the libraries are detached, and one of
// them may have died holding a lock. A critical section is the one lock that a library may still
// enter then: the system lets the last thread in or ends the process, it never hangs.
#pragma once

#include <windows.h>

namespace mvp {

class CriticalSection {
public:
    CriticalSection() noexcept { InitializeCriticalSection(&m_section); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    ~CriticalSection() { DeleteCriticalSection(&m_section); }

    void Enter() noexcept { EnterCriticalSection(&m_section); }
    void Leave() noexcept { LeaveCriticalSection(&m_section); }

    // For SleepConditionVariableCS.
    CRITICAL_SECTION* get() noexcept { return &m_section; }

private:
    CRITICAL_SECTION m_section;
};

// Holds a critical section for as long as this lives.
class ScopedLock {
public:
    explicit ScopedLock(CriticalSection& section) noexcept : m_section(section) {
        m_section.Enter();
    }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;
    ~ScopedLock() { m_section.Leave(); }

private:
    CriticalSection& m_section;
};

}  // namespace mvp
