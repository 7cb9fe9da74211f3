// The temporary objects of one thread, in the order they were made: those made since a certain
// point can be freed without touching what an outer handler may still hold.
#pragma once

#include <windows.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include <dlgfw/dc.h>
#include <dlgfw/gdi_object.h>
#include <dlgfw/image_list.h>
#include <dlgfw/wnd.h>

namespace dlgfw {

inline HWND& HandleOf(CWnd& wnd) noexcept {
    return wnd.m_hWnd;
}
inline HDC& HandleOf(CDC& dc) noexcept {
    return dc.m_hDC;
}
inline HGDIOBJ& HandleOf(CGdiObject& object) noexcept {
    return object.m_hObject;
}
inline HIMAGELIST& HandleOf(CImageList& list) noexcept {
    return list.m_hImageList;
}

class Temporaries {
public:
    // The temporary object for the handle, made when there is none yet.
    template <class Object, class Handle>
    Object* Get(Handle handle) {
        auto* object = Find<Object>(handle);
        if (object == nullptr) {
            auto holder = std::make_unique<Holder<Object>>();
            object = &holder->object;
            m_entries.push_back({handle, &g_kind<Object>, {nullptr, &Free<Object>}});
            m_entries.back().pHolder.reset(holder.release());
        }
        // Who had it before may have detached it.
        HandleOf(*object) = handle;
        return object;
    }

    size_t Count() const noexcept { return m_entries.size(); }
    void FreeFrom(size_t nFirst) noexcept {
        while (m_entries.size() > nFirst) {
            m_entries.pop_back();
        }
    }

private:
    template <class Object>
    struct Holder {
        Holder() = default;
        Holder(const Holder&) = delete;
        Holder& operator=(const Holder&) = delete;
        // A temporary object owns nothing.
        ~Holder() { HandleOf(object) = nullptr; }
        Object object;
    };
    template <class Object>
    static void Free(void* pHolder) noexcept {
        delete static_cast<Holder<Object>*>(pHolder);
    }
    // Its address stands for a kind of object. No virtual functions: the type information of a
    // template over an exported class would be exported with it.
    template <class Object>
    static constexpr char g_kind = 0;

    struct Entry {
        const void* handle;
        const char* pKind;
        std::unique_ptr<void, void (*)(void*) noexcept> pHolder;
    };

    // There are few at a time, and the newest are asked for most.
    template <class Object>
    Object* Find(const void* handle) const noexcept {
        const auto it = std::find_if(m_entries.rbegin(), m_entries.rend(), [=](const Entry& entry) {
            return entry.handle == handle && entry.pKind == &g_kind<Object>;
        });
        return it == m_entries.rend() ? nullptr
                                      : &static_cast<Holder<Object>*>(it->pHolder.get())->object;
    }

    std::vector<Entry> m_entries;
};

}  // namespace dlgfw
