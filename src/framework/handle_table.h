// Which object is attached to which handle. One table per kind of handle serves the whole process,
// so that an object may be destroyed on any thread; but an object is found only on the thread that
// attached it.
#pragma once

#include <windows.h>

#include <unordered_map>

#include "platform/critical_section.h"

namespace dlgfw {

template <class Object>
class HandleTable {
public:
    // A handle that the system uses again takes its place from the object it belonged to before.
    void Insert(const void* handle, Object* pObject) {
        const mvp::ScopedLock lock(m_lock);
        m_entries[handle] = {pObject, GetCurrentThreadId()};
    }

    void Erase(const void* handle, const Object* pObject) noexcept {
        const mvp::ScopedLock lock(m_lock);
        const auto it = m_entries.find(handle);
        if (it != m_entries.end() && it->second.pObject == pObject) {
            m_entries.erase(it);
        }
    }

    Object* Find(const void* handle) const noexcept {
        if (handle == nullptr) {
            return nullptr;
        }
        const mvp::ScopedLock lock(m_lock);
        const auto it = m_entries.find(handle);
        if (it == m_entries.end() || it->second.dwThreadId != GetCurrentThreadId()) {
            return nullptr;
        }
        return it->second.pObject;
    }

private:
    struct Entry {
        Object* pObject = nullptr;
        DWORD dwThreadId = 0;
    };

    mutable mvp::CriticalSection m_lock;
    std::unordered_map<const void*, Entry> m_entries;
};

}  // namespace dlgfw
