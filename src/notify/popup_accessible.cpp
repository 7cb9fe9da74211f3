#include "notify/popup_accessible.h"

#include <new>
#include <utility>

#include "platform/barrier.h"
#include "services/log.h"

namespace mvp {

PopupAccessible* PopupAccessible::Create(HWND hWnd, SpokenText spoken) noexcept {
    IAccessible* standard = StandardObject(hWnd);
    if (standard == nullptr) {
        return nullptr;
    }
    auto* object = new (std::nothrow) PopupAccessible(std::move(spoken), standard);
    if (object == nullptr) {
        standard->Release();
    }
    return object;
}

void PopupAccessible::Disconnect() noexcept {
    StandardAccessible::Disconnect();
    m_spoken = nullptr;
}

STDMETHODIMP PopupAccessible::get_accName(VARIANT child, BSTR* pstrName) {
    if (pstrName == nullptr) {
        return E_POINTER;
    }
    *pstrName = nullptr;
    if (!IsSelf(child) || !m_spoken) {
        return Standard(&IAccessible::get_accName, child, pstrName);
    }
    return Guarded(
        E_FAIL, [&] { return MakeAccessibleString(m_spoken(), pstrName); },
        LogException("PopupAccessible::get_accName"));
}

STDMETHODIMP PopupAccessible::get_accRole(VARIANT child, VARIANT* pRole) {
    const HRESULT hr = Standard(&IAccessible::get_accRole, child, pRole);
    if (hr == S_OK && IsSelf(child)) {
        SetNumber(*pRole, ROLE_SYSTEM_ALERT);
    }
    return hr;
}

}  // namespace mvp
