// A reader-writer lock, held for as long as a SharedLock or an ExclusiveLock lives. Nobody calls
// foreign code while holding one.
#pragma once

#include <windows.h>

namespace dlgfw {

class Lock {
public:
    constexpr Lock() noexcept = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    friend class SharedLock;
    friend class ExclusiveLock;
    SRWLOCK m_lock{};  // all zero is its initial state
};

class SharedLock {
public:
    explicit SharedLock(Lock& lock) noexcept : m_lock(lock.m_lock) {
        AcquireSRWLockShared(&m_lock);
    }
    SharedLock(const SharedLock&) = delete;
    SharedLock& operator=(const SharedLock&) = delete;
    ~SharedLock() { ReleaseSRWLockShared(&m_lock); }

private:
    SRWLOCK& m_lock;
};

class ExclusiveLock {
public:
    explicit ExclusiveLock(Lock& lock) noexcept : m_lock(lock.m_lock) {
        AcquireSRWLockExclusive(&m_lock);
    }
    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;
    ~ExclusiveLock() { ReleaseSRWLockExclusive(&m_lock); }

private:
    SRWLOCK& m_lock;
};

}  // namespace dlgfw
