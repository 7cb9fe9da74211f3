#include "services/standard_accessible.h"

#include <utility>

namespace mvp {

void StandardAccessible::Disconnect() noexcept {
    if (IAccessible* standard = std::exchange(m_pStandard, nullptr)) {
        standard->Release();
    }
}

STDMETHODIMP StandardAccessible::get_accParent(IDispatch** ppParent) {
    return Standard(&IAccessible::get_accParent, ppParent);
}
STDMETHODIMP StandardAccessible::get_accChildCount(long* pnCount) {
    return Standard(&IAccessible::get_accChildCount, pnCount);
}
STDMETHODIMP StandardAccessible::get_accChild(VARIANT child, IDispatch** ppChild) {
    return Standard(&IAccessible::get_accChild, child, ppChild);
}
STDMETHODIMP StandardAccessible::get_accName(VARIANT child, BSTR* pstrName) {
    return Standard(&IAccessible::get_accName, child, pstrName);
}
STDMETHODIMP StandardAccessible::get_accValue(VARIANT child, BSTR* pstrValue) {
    return Standard(&IAccessible::get_accValue, child, pstrValue);
}
STDMETHODIMP StandardAccessible::get_accDescription(VARIANT child, BSTR* pstrDescription) {
    return Standard(&IAccessible::get_accDescription, child, pstrDescription);
}
STDMETHODIMP StandardAccessible::get_accRole(VARIANT child, VARIANT* pRole) {
    return Standard(&IAccessible::get_accRole, child, pRole);
}
STDMETHODIMP StandardAccessible::get_accState(VARIANT child, VARIANT* pState) {
    return Standard(&IAccessible::get_accState, child, pState);
}
STDMETHODIMP StandardAccessible::get_accHelp(VARIANT child, BSTR* pstrHelp) {
    return Standard(&IAccessible::get_accHelp, child, pstrHelp);
}
STDMETHODIMP StandardAccessible::get_accHelpTopic(BSTR* pstrFile, VARIANT child, long* pnTopic) {
    return Standard(&IAccessible::get_accHelpTopic, pstrFile, child, pnTopic);
}
STDMETHODIMP StandardAccessible::get_accKeyboardShortcut(VARIANT child, BSTR* pstrShortcut) {
    return Standard(&IAccessible::get_accKeyboardShortcut, child, pstrShortcut);
}
STDMETHODIMP StandardAccessible::get_accFocus(VARIANT* pChild) {
    return Standard(&IAccessible::get_accFocus, pChild);
}
STDMETHODIMP StandardAccessible::get_accSelection(VARIANT* pChildren) {
    return Standard(&IAccessible::get_accSelection, pChildren);
}
STDMETHODIMP StandardAccessible::get_accDefaultAction(VARIANT child, BSTR* pstrAction) {
    return Standard(&IAccessible::get_accDefaultAction, child, pstrAction);
}
STDMETHODIMP StandardAccessible::accSelect(long nFlags, VARIANT child) {
    return Standard(&IAccessible::accSelect, nFlags, child);
}
STDMETHODIMP StandardAccessible::accLocation(long* pnLeft, long* pnTop, long* pnWidth,
                                             long* pnHeight, VARIANT child) {
    return Standard(&IAccessible::accLocation, pnLeft, pnTop, pnWidth, pnHeight, child);
}
STDMETHODIMP StandardAccessible::accNavigate(long nDirection, VARIANT start, VARIANT* pEnd) {
    return Standard(&IAccessible::accNavigate, nDirection, start, pEnd);
}
STDMETHODIMP StandardAccessible::accHitTest(long nLeft, long nTop, VARIANT* pChild) {
    return Standard(&IAccessible::accHitTest, nLeft, nTop, pChild);
}
STDMETHODIMP StandardAccessible::accDoDefaultAction(VARIANT child) {
    return Standard(&IAccessible::accDoDefaultAction, child);
}
STDMETHODIMP StandardAccessible::put_accName(VARIANT child, BSTR strName) {
    return Standard(&IAccessible::put_accName, child, strName);
}
STDMETHODIMP StandardAccessible::put_accValue(VARIANT child, BSTR strValue) {
    return Standard(&IAccessible::put_accValue, child, strValue);
}

}  // namespace mvp
