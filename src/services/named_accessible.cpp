#include "services/named_accessible.h"

#include <new>
#include <utility>

#include "platform/barrier.h"
#include "services/log.h"

namespace mvp {

NamedAccessible* NamedAccessible::Create(HWND hWnd, long nRole, Name name) noexcept {
    IAccessible* standard = StandardObject(hWnd);
    if (standard == nullptr) {
        return nullptr;
    }
    auto* object = new (std::nothrow) NamedAccessible(hWnd, nRole, std::move(name), standard);
    if (object == nullptr) {
        standard->Release();
    }
    return object;
}

void NamedAccessible::Disconnect() noexcept {
    StandardAccessible::Disconnect();
    m_name = nullptr;
}

void NamedAccessible::GiveUp::operator()(NamedAccessible* pObject) const noexcept {
    pObject->Disconnect();
    pObject->Release();
}

// The system's object lets its children be enumerated, through an interface that this one does not
// have.
STDMETHODIMP NamedAccessible::get_accChild(VARIANT child, IDispatch** ppChild) {
    if (child.vt != VT_I4 || child.lVal <= 0 || ppChild == nullptr || !m_name) {
        return Standard(&IAccessible::get_accChild, child, ppChild);
    }
    *ppChild = nullptr;
    HWND window = GetWindow(m_hWnd, GW_CHILD);
    for (long i = 1; window != nullptr && i < child.lVal; ++i) {
        window = GetWindow(window, GW_HWNDNEXT);
    }
    return window != nullptr ? ObjectOfWindow(window, ppChild) : E_INVALIDARG;
}

STDMETHODIMP NamedAccessible::get_accName(VARIANT child, BSTR* pstrName) {
    if (pstrName == nullptr) {
        return E_POINTER;
    }
    *pstrName = nullptr;
    if (!IsSelf(child) || !m_name) {
        return Standard(&IAccessible::get_accName, child, pstrName);
    }
    return Guarded(
        E_FAIL, [&] { return MakeAccessibleString(m_name(), pstrName); },
        LogException("NamedAccessible::get_accName"));
}

STDMETHODIMP NamedAccessible::get_accRole(VARIANT child, VARIANT* pRole) {
    const HRESULT hr = Standard(&IAccessible::get_accRole, child, pRole);
    if (hr == S_OK && IsSelf(child)) {
        SetNumber(*pRole, m_nRole);
    }
    return hr;
}

// The system's object takes every window that could be given the focus for one that takes it.
STDMETHODIMP NamedAccessible::get_accState(VARIANT child, VARIANT* pState) {
    const HRESULT hr = Standard(&IAccessible::get_accState, child, pState);
    if (hr == S_OK && IsSelf(child) && pState->vt == VT_I4) {
        SetNumber(*pState, pState->lVal & ~static_cast<long>(STATE_SYSTEM_FOCUSABLE));
    }
    return hr;
}

}  // namespace mvp
