// What a screen reader gets of a popup: an alert whose name is all that the popup says. Everything
// else, its children among them, is as the system's own object for the window tells it.
//
// A COM object of the window's thread. It lives as long as somebody holds it; when the window goes,
// Disconnect cuts it off and it answers everything with CO_E_OBJNOTCONNECTED.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "services/accessible_object.h"

namespace mvp {

class PopupAccessible final : public AccessibleObject {
public:
    using SpokenText = std::function<std::string()>;

    // The caller holds the first reference. Null when the system or memory fails.
    static PopupAccessible* Create(HWND hWnd, SpokenText spoken) noexcept;

    void Disconnect() noexcept;

    STDMETHOD(get_accParent)(IDispatch** ppParent) override;
    STDMETHOD(get_accChildCount)(long* pnCount) override;
    STDMETHOD(get_accChild)(VARIANT child, IDispatch** ppChild) override;
    STDMETHOD(get_accName)(VARIANT child, BSTR* pstrName) override;
    STDMETHOD(get_accValue)(VARIANT child, BSTR* pstrValue) override;
    STDMETHOD(get_accDescription)(VARIANT child, BSTR* pstrDescription) override;
    STDMETHOD(get_accRole)(VARIANT child, VARIANT* pRole) override;
    STDMETHOD(get_accState)(VARIANT child, VARIANT* pState) override;
    STDMETHOD(get_accHelp)(VARIANT child, BSTR* pstrHelp) override;
    STDMETHOD(get_accHelpTopic)(BSTR* pstrFile, VARIANT child, long* pnTopic) override;
    STDMETHOD(get_accKeyboardShortcut)(VARIANT child, BSTR* pstrShortcut) override;
    STDMETHOD(get_accFocus)(VARIANT* pChild) override;
    STDMETHOD(get_accSelection)(VARIANT* pChildren) override;
    STDMETHOD(get_accDefaultAction)(VARIANT child, BSTR* pstrAction) override;
    STDMETHOD(accSelect)(long nFlags, VARIANT child) override;
    STDMETHOD(accLocation)
    (long* pnLeft, long* pnTop, long* pnWidth, long* pnHeight, VARIANT child) override;
    STDMETHOD(accNavigate)(long nDirection, VARIANT start, VARIANT* pEnd) override;
    STDMETHOD(accHitTest)(long nLeft, long nTop, VARIANT* pChild) override;
    STDMETHOD(accDoDefaultAction)(VARIANT child) override;
    STDMETHOD(put_accName)(VARIANT child, BSTR strName) override;
    STDMETHOD(put_accValue)(VARIANT child, BSTR strValue) override;

private:
    // Takes over the reference to the system's object.
    PopupAccessible(SpokenText spoken, IAccessible* pStandard) noexcept
        : m_spoken(std::move(spoken)), m_pStandard(pStandard) {}
    ~PopupAccessible() override { Disconnect(); }

    // Asks the system's object, as long as there is one.
    template <class... Parameters, class... Arguments>
    HRESULT Standard(HRESULT (STDMETHODCALLTYPE IAccessible::*pfnMember)(Parameters...),
                     Arguments... arguments) const {
        return m_pStandard != nullptr ? (m_pStandard->*pfnMember)(arguments...)
                                      : CO_E_OBJNOTCONNECTED;
    }

    SpokenText m_spoken;
    IAccessible* m_pStandard;  // one reference of ours
};

}  // namespace mvp
