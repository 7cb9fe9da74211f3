// What a screen reader gets of a rich text: the text as the name, and each link as a child with its
// words, its place and its action.
//
// A COM object of the thread that the window belongs to. It lives as long as somebody holds it;
// when the window goes, Disconnect cuts it off and it answers everything with
// CO_E_OBJNOTCONNECTED.
#pragma once

#include "richtext/control/html_drawer.h"
#include "services/accessible_object.h"

namespace mvp::richtext {

class HtmlAccessible final : public AccessibleObject {
public:
    // An action on a link is posted to the window as `nFollowMessage` with the link's number as
    // wParam. The caller holds the first reference. Null when there is no memory.
    static HtmlAccessible* Create(HWND hWnd, CHtmlDrawer& drawer, UINT nFollowMessage) noexcept;

    void Disconnect() noexcept { m_pDrawer = nullptr; }

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
    HtmlAccessible(HWND hWnd, CHtmlDrawer& drawer, UINT nFollowMessage) noexcept
        : m_hWnd(hWnd), m_pDrawer(&drawer), m_nFollowMessage(nFollowMessage) {}
    ~HtmlAccessible() override = default;

    // S_OK with the link's number, or kNoLink for the text itself.
    HRESULT Find(const VARIANT& child, int& nLink) const noexcept;
    // The same, S_FALSE for the text itself.
    HRESULT FindLink(const VARIANT& child, int& nLink) const noexcept;
    bool IsFocusable() const noexcept;

    HWND m_hWnd;
    CHtmlDrawer* m_pDrawer;
    UINT m_nFollowMessage;
};

}  // namespace mvp::richtext
