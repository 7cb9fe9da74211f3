// An object for screen readers that answers as the system's own object for a window does, but for
// what a class overrides.
//
// A COM object of the window's thread. It lives as long as somebody holds it; when the window goes,
// Disconnect cuts it off and what is asked of the system's object is answered with
// CO_E_OBJNOTCONNECTED.
#pragma once

#include "services/accessible_object.h"

namespace mvp {

class StandardAccessible : public AccessibleObject {
public:
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

protected:
    // Takes over the reference to the system's object; null is as good as cut off.
    explicit StandardAccessible(IAccessible* pStandard) noexcept : m_pStandard(pStandard) {}
    ~StandardAccessible() override { Disconnect(); }

    // Asks the system's object, as long as there is one.
    template <class... Parameters, class... Arguments>
    HRESULT Standard(HRESULT (STDMETHODCALLTYPE IAccessible::*pfnMember)(Parameters...),
                     Arguments... arguments) const {
        return m_pStandard != nullptr ? (m_pStandard->*pfnMember)(arguments...)
                                      : CO_E_OBJNOTCONNECTED;
    }

private:
    IAccessible* m_pStandard;  // one reference of ours
};

inline bool IsSelf(const VARIANT& child) noexcept {
    return child.vt == VT_I4 && child.lVal == CHILDID_SELF;
}

}  // namespace mvp
