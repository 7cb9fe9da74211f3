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
        auto* pObject = Find<Object>(handle);
        if (pObject == nullptr) {
            auto pHolder = std::make_unique<Holder<Object>>();
            pObject = &pHolder->object;
            m_entries.push_back({handle, std::move(pHolder)});
        }
        // Who had it before may have detached it.
        HandleOf(*pObject) = handle;
        return pObject;
    }

    size_t Count() const noexcept { return m_entries.size(); }
    void FreeFrom(size_t nFirst) noexcept {
        while (m_entries.size() > nFirst)
            m_entries.pop_back();
    }

private:
    struct HolderBase {
        HolderBase() = default;
        HolderBase(const HolderBase&) = delete;
        HolderBase& operator=(const HolderBase&) = delete;
        virtual ~HolderBase() = default;
    };
    template <class Object>
    struct Holder final : HolderBase {
        // A temporary object owns nothing.
        ~Holder() override { HandleOf(object) = nullptr; }
        Object object;
    };
    struct Entry {
        const void* handle;
        std::unique_ptr<HolderBase> pHolder;
    };

    // There are few at a time, and the newest are asked for most.
    template <class Object>
    Object* Find(const void* handle) const noexcept {
        const auto it = std::find_if(m_entries.rbegin(), m_entries.rend(), [=](const Entry& entry) {
            return entry.handle == handle &&
                   dynamic_cast<Holder<Object>*>(entry.pHolder.get()) != nullptr;
        });
        return it == m_entries.rend() ? nullptr
                                      : &static_cast<Holder<Object>&>(*it->pHolder).object;
    }

    std::vector<Entry> m_entries;
};

}  // namespace dlgfw
