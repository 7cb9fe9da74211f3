// What a screen reader gets of an edit that holds a secret: an editable text with the name of its
// label, always protected, whose value nobody gets or sets. The rest is as the system's own object
// for the window tells it, as far as that cannot be the text.
//
// That holds whatever the window's style says: also for a code that the control shows on purpose.
// Who sees it chooses where to look; a reader would say it aloud, into the room, as soon as the
// focus comes by. And it holds at any time: the object is asked by a reader of another process on
// the window's own thread, where the control would give the text.
//
// A COM object of the window's thread. It lives as long as somebody holds it; when the window goes,
// Disconnect cuts it off from the system's object and from the control. From then on it is still a
// protected text, unavailable and invisible, whose value is refused; anything else is answered with
// CO_E_OBJNOTCONNECTED.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "services/standard_accessible.h"

namespace mvp {

class SecretAccessible final : public StandardAccessible {
public:
    using Description = std::function<std::string()>;

    // The answer to WM_GETOBJECT for the client area of `hWnd`. The first time makes the object,
    // for which the caller gives up his reference by Drop. `describe` is asked on the window's
    // thread until then. 0 when the system or memory fails.
    static LRESULT Answer(SecretAccessible*& pObject, HWND hWnd, WPARAM wParam,
                          Description describe) noexcept;
    // Disconnects and releases; null is left alone.
    static void Drop(SecretAccessible*& pObject) noexcept;

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
    SecretAccessible(HWND hWnd, IAccessible* pStandard, Description describe) noexcept
        : StandardAccessible(pStandard), m_hWnd(hWnd), m_describe(std::move(describe)) {}
    ~SecretAccessible() override = default;

    // S_OK, with an empty result, for the text itself while there is a window.
    template <class Result>
    HRESULT Check(const VARIANT& child, Result* pResult) const noexcept;
    template <class Text>
    HRESULT Tell(const VARIANT& child, BSTR* pstrResult, Text text) const noexcept;
    HRESULT TellNothing(const VARIANT& child, BSTR* pstrResult) const noexcept;

    HWND m_hWnd;  // null when it has gone
    Description m_describe;
};

// Sees whether a screen reader is to be told that Caps Lock is on: while the edit `hWnd` has the
// focus (`bFocus`) and can be typed into. Keeps that in `bTold`; when it was otherwise, an event
// says that the edit's description has changed.
void TellCapsLock(HWND hWnd, bool bFocus, bool& bTold) noexcept;

}  // namespace mvp
