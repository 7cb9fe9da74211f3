// The permanent objects of each kind of handle, and how FromHandle finds one or makes a temporary.
#pragma once

#include "framework/handle_table.h"
#include "framework/thread_state.h"

namespace dlgfw {

HandleTable<CWnd>& Windows() noexcept;
HandleTable<CDC>& DeviceContexts() noexcept;
HandleTable<CGdiObject>& GdiObjects() noexcept;
HandleTable<CImageList>& ImageLists() noexcept;

template <class Object, class Table, class Handle>
Object* ObjectFromHandle(const Table& table, Handle handle) {
    if (handle == nullptr) {
        return nullptr;
    }
    if (auto* object = dynamic_cast<Object*>(table.Find(handle))) {
        return object;
    }
    return ThreadState::Get().temporaries.Get<Object>(handle);
}

}  // namespace dlgfw
