#include "notify/popup_accessible.h"

#include <new>
#include <utility>

#include "platform/barrier.h"
#include "services/log.h"

namespace mvp {
namespace {

bool IsSelf(const VARIANT& child) {
    return child.vt == VT_I4 && child.lVal == CHILDID_SELF;
}

}  // namespace

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
    if (IAccessible* standard = std::exchange(m_pStandard, nullptr)) {
        standard->Release();
    }
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

STDMETHODIMP PopupAccessible::get_accParent(IDispatch** ppParent) {
    return Standard(&IAccessible::get_accParent, ppParent);
}
STDMETHODIMP PopupAccessible::get_accChildCount(long* pnCount) {
    return Standard(&IAccessible::get_accChildCount, pnCount);
}
STDMETHODIMP PopupAccessible::get_accChild(VARIANT child, IDispatch** ppChild) {
    return Standard(&IAccessible::get_accChild, child, ppChild);
}
STDMETHODIMP PopupAccessible::get_accValue(VARIANT child, BSTR* pstrValue) {
    return Standard(&IAccessible::get_accValue, child, pstrValue);
}
STDMETHODIMP PopupAccessible::get_accDescription(VARIANT child, BSTR* pstrDescription) {
    return Standard(&IAccessible::get_accDescription, child, pstrDescription);
}
STDMETHODIMP PopupAccessible::get_accState(VARIANT child, VARIANT* pState) {
    return Standard(&IAccessible::get_accState, child, pState);
}
STDMETHODIMP PopupAccessible::get_accHelp(VARIANT child, BSTR* pstrHelp) {
    return Standard(&IAccessible::get_accHelp, child, pstrHelp);
}
STDMETHODIMP PopupAccessible::get_accHelpTopic(BSTR* pstrFile, VARIANT child, long* pnTopic) {
    return Standard(&IAccessible::get_accHelpTopic, pstrFile, child, pnTopic);
}
STDMETHODIMP PopupAccessible::get_accKeyboardShortcut(VARIANT child, BSTR* pstrShortcut) {
    return Standard(&IAccessible::get_accKeyboardShortcut, child, pstrShortcut);
}
STDMETHODIMP PopupAccessible::get_accFocus(VARIANT* pChild) {
    return Standard(&IAccessible::get_accFocus, pChild);
}
STDMETHODIMP PopupAccessible::get_accSelection(VARIANT* pChildren) {
    return Standard(&IAccessible::get_accSelection, pChildren);
}
STDMETHODIMP PopupAccessible::get_accDefaultAction(VARIANT child, BSTR* pstrAction) {
    return Standard(&IAccessible::get_accDefaultAction, child, pstrAction);
}
STDMETHODIMP PopupAccessible::accSelect(long nFlags, VARIANT child) {
    return Standard(&IAccessible::accSelect, nFlags, child);
}
STDMETHODIMP PopupAccessible::accLocation(long* pnLeft, long* pnTop, long* pnWidth, long* pnHeight,
                                          VARIANT child) {
    return Standard(&IAccessible::accLocation, pnLeft, pnTop, pnWidth, pnHeight, child);
}
STDMETHODIMP PopupAccessible::accNavigate(long nDirection, VARIANT start, VARIANT* pEnd) {
    return Standard(&IAccessible::accNavigate, nDirection, start, pEnd);
}
STDMETHODIMP PopupAccessible::accHitTest(long nLeft, long nTop, VARIANT* pChild) {
    return Standard(&IAccessible::accHitTest, nLeft, nTop, pChild);
}
STDMETHODIMP PopupAccessible::accDoDefaultAction(VARIANT child) {
    return Standard(&IAccessible::accDoDefaultAction, child);
}
STDMETHODIMP PopupAccessible::put_accName(VARIANT child, BSTR strName) {
    return Standard(&IAccessible::put_accName, child, strName);
}
STDMETHODIMP PopupAccessible::put_accValue(VARIANT child, BSTR strValue) {
    return Standard(&IAccessible::put_accValue, child, strValue);
}

}  // namespace mvp
