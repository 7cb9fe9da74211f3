// What a screen reader gets of a window, through the system's own way to it.
#pragma once

#include <windows.h>
#include <oleacc.h>

#include <string>

#include "platform/handle.h"

namespace mvp {

inline VARIANT Child(long nChild) {
    VARIANT child{};
    child.vt = VT_I4;
    child.lVal = nChild;
    return child;
}

struct AccessibleTraits {
    using Handle = IAccessible*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle handle) noexcept { handle->Release(); }
};

class Accessible : public UniqueHandle<AccessibleTraits> {
public:
    // Of a window's client area; empty when it gives none.
    static Accessible Of(HWND hWnd) {
        Accessible object;
        AccessibleObjectFromWindow(hWnd, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                   reinterpret_cast<void**>(object.put()));
        return object;
    }

    // "none" when there is none.
    std::string Text(HRESULT (STDMETHODCALLTYPE IAccessible::*getter)(VARIANT, BSTR*),
                     long nChild) const {
        BSTR str = nullptr;
        if ((get()->*getter)(Child(nChild), &str) != S_OK) {
            return "none";
        }
        char text[500] = "";
        WideCharToMultiByte(CP_ACP, 0, str, -1, text, sizeof text, nullptr, nullptr);
        SysFreeString(str);
        return text;
    }
    // -1 when there is none.
    template <class... Arguments, class... Values>
    long Number(HRESULT (STDMETHODCALLTYPE IAccessible::*getter)(Arguments...),
                Values... values) const {
        VARIANT number{};
        return (get()->*getter)(values..., &number) == S_OK && number.vt == VT_I4 ? number.lVal
                                                                                  : -1;
    }
};

}  // namespace mvp
