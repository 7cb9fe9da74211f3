#include "richtext/control/html_accessible.h"

#include <algorithm>
#include <new>

#include "platform/barrier.h"
#include "services/log.h"

namespace mvp::richtext {

HtmlAccessible* HtmlAccessible::Create(HWND hWnd, CHtmlDrawer& drawer,
                                       UINT nFollowMessage) noexcept {
    return new (std::nothrow) HtmlAccessible(hWnd, drawer, nFollowMessage);
}

HRESULT HtmlAccessible::Find(const VARIANT& child, int& nLink) const noexcept {
    if (m_pDrawer == nullptr) {
        return CO_E_OBJNOTCONNECTED;
    }
    if (child.vt != VT_I4 || child.lVal < 0 || child.lVal > m_pDrawer->LinkCount()) {
        return E_INVALIDARG;
    }
    nLink = child.lVal == CHILDID_SELF ? kNoLink : static_cast<int>(child.lVal) - 1;
    return S_OK;
}

HRESULT HtmlAccessible::FindLink(const VARIANT& child, int& nLink) const noexcept {
    const HRESULT hr = Find(child, nLink);
    return hr == S_OK && nLink == kNoLink ? S_FALSE : hr;
}

bool HtmlAccessible::IsFocusable() const noexcept {
    return (GetWindowLongPtrA(m_hWnd, GWL_STYLE) & WS_TABSTOP) != 0;
}

STDMETHODIMP HtmlAccessible::get_accParent(IDispatch** ppParent) {
    if (ppParent == nullptr) {
        return E_POINTER;
    }
    *ppParent = nullptr;
    if (m_pDrawer == nullptr) {
        return CO_E_OBJNOTCONNECTED;
    }
    return ObjectOfWindow(m_hWnd, ppParent);
}

STDMETHODIMP HtmlAccessible::get_accChildCount(long* pnCount) {
    if (pnCount == nullptr) {
        return E_POINTER;
    }
    *pnCount = m_pDrawer != nullptr ? m_pDrawer->LinkCount() : 0;
    return m_pDrawer != nullptr ? S_OK : CO_E_OBJNOTCONNECTED;
}

// Links are told apart by their numbers alone.
STDMETHODIMP HtmlAccessible::get_accChild(VARIANT child, IDispatch** ppChild) {
    if (ppChild == nullptr) {
        return E_POINTER;
    }
    *ppChild = nullptr;
    int link = kNoLink;
    const HRESULT hr = Find(child, link);
    return hr == S_OK ? S_FALSE : hr;
}

STDMETHODIMP HtmlAccessible::get_accName(VARIANT child, BSTR* pstrName) {
    if (pstrName == nullptr) {
        return E_POINTER;
    }
    *pstrName = nullptr;
    return Guarded(
        E_FAIL,
        [&]() -> HRESULT {
            int link = kNoLink;
            if (const HRESULT hr = Find(child, link); hr != S_OK) {
                return hr;
            }
            if (link == kNoLink) {
                return MakeAccessibleString(m_pDrawer->PlainText(), pstrName);
            }
            // A link that is only an image says at least where it leads.
            const std::string text = m_pDrawer->LinkText(link);
            return MakeAccessibleString(text.empty() ? m_pDrawer->LinkTarget(link) : text,
                                        pstrName);
        },
        LogException("HtmlAccessible::get_accName"));
}

STDMETHODIMP HtmlAccessible::get_accValue(VARIANT child, BSTR* pstrValue) {
    if (pstrValue == nullptr) {
        return E_POINTER;
    }
    *pstrValue = nullptr;
    return Guarded(
        E_FAIL,
        [&]() -> HRESULT {
            int link = kNoLink;
            const HRESULT hr = FindLink(child, link);
            return hr == S_OK ? MakeAccessibleString(m_pDrawer->LinkTarget(link), pstrValue) : hr;
        },
        LogException("HtmlAccessible::get_accValue"));
}

STDMETHODIMP HtmlAccessible::get_accDescription(VARIANT, BSTR* pstrDescription) {
    return pstrDescription != nullptr ? (*pstrDescription = nullptr, S_FALSE) : E_POINTER;
}
STDMETHODIMP HtmlAccessible::get_accHelp(VARIANT, BSTR* pstrHelp) {
    return pstrHelp != nullptr ? (*pstrHelp = nullptr, S_FALSE) : E_POINTER;
}
STDMETHODIMP HtmlAccessible::get_accHelpTopic(BSTR* pstrFile, VARIANT, long* pnTopic) {
    if (pstrFile == nullptr || pnTopic == nullptr) {
        return E_POINTER;
    }
    *pstrFile = nullptr;
    *pnTopic = 0;
    return S_FALSE;
}
STDMETHODIMP HtmlAccessible::get_accKeyboardShortcut(VARIANT, BSTR* pstrShortcut) {
    return pstrShortcut != nullptr ? (*pstrShortcut = nullptr, S_FALSE) : E_POINTER;
}

STDMETHODIMP HtmlAccessible::get_accRole(VARIANT child, VARIANT* pRole) {
    if (pRole == nullptr) {
        return E_POINTER;
    }
    pRole->vt = VT_EMPTY;
    int link = kNoLink;
    const HRESULT hr = Find(child, link);
    if (hr == S_OK) {
        const bool group = m_pDrawer->LinkCount() > 0;
        SetNumber(*pRole, link != kNoLink ? ROLE_SYSTEM_LINK
                          : group         ? ROLE_SYSTEM_GROUPING
                                          : ROLE_SYSTEM_STATICTEXT);
    }
    return hr;
}

STDMETHODIMP HtmlAccessible::get_accState(VARIANT child, VARIANT* pState) {
    if (pState == nullptr) {
        return E_POINTER;
    }
    pState->vt = VT_EMPTY;
    int link = kNoLink;
    const HRESULT hr = Find(child, link);
    if (hr != S_OK) {
        return hr;
    }
    long state = STATE_SYSTEM_READONLY;
    const bool focused = GetFocus() == m_hWnd;
    if (link != kNoLink) {
        state = STATE_SYSTEM_LINKED;
        state |= IsFocusable() ? STATE_SYSTEM_FOCUSABLE : 0;
        state |= focused && m_pDrawer->FocusLink() == link ? STATE_SYSTEM_FOCUSED : 0;
        state |= m_pDrawer->HoverLink() == link ? STATE_SYSTEM_HOTTRACKED : 0;
    } else if (IsFocusable() && m_pDrawer->LinkCount() > 0) {
        state |= STATE_SYSTEM_FOCUSABLE;
    }
    state |= IsWindowEnabled(m_hWnd) ? 0 : STATE_SYSTEM_UNAVAILABLE;
    state |= IsWindowVisible(m_hWnd) ? 0 : STATE_SYSTEM_INVISIBLE;
    SetNumber(*pState, state);
    return S_OK;
}

STDMETHODIMP HtmlAccessible::get_accFocus(VARIANT* pChild) {
    if (pChild == nullptr) {
        return E_POINTER;
    }
    pChild->vt = VT_EMPTY;
    if (m_pDrawer == nullptr) {
        return CO_E_OBJNOTCONNECTED;
    }
    if (GetFocus() != m_hWnd) {
        return S_FALSE;
    }
    SetNumber(*pChild, m_pDrawer->FocusLink() + 1);
    return S_OK;
}

STDMETHODIMP HtmlAccessible::get_accSelection(VARIANT* pChildren) {
    if (pChildren == nullptr) {
        return E_POINTER;
    }
    pChildren->vt = VT_EMPTY;
    return S_FALSE;
}

// The system has texts of its own for roles and states (GetRoleText, GetStateText), but none for
// actions, so there is no translation to take. "Jump" is the customary word for links. It is not in
// the resource module, which holds what windows show: no window shows this.
STDMETHODIMP HtmlAccessible::get_accDefaultAction(VARIANT child, BSTR* pstrAction) {
    if (pstrAction == nullptr) {
        return E_POINTER;
    }
    *pstrAction = nullptr;
    return Guarded(
        E_FAIL,
        [&]() -> HRESULT {
            int link = kNoLink;
            const HRESULT hr = FindLink(child, link);
            return hr == S_OK ? MakeAccessibleString("Jump", pstrAction) : hr;
        },
        LogException("HtmlAccessible::get_accDefaultAction"));
}

// Posted, as the action may take its time and whoever asked waits for the answer.
STDMETHODIMP HtmlAccessible::accDoDefaultAction(VARIANT child) {
    int link = kNoLink;
    const HRESULT hr = FindLink(child, link);
    if (hr != S_OK) {
        return hr == S_FALSE ? DISP_E_MEMBERNOTFOUND : hr;
    }
    return PostMessageA(m_hWnd, m_nFollowMessage, static_cast<WPARAM>(link), 0) ? S_OK : E_FAIL;
}

STDMETHODIMP HtmlAccessible::accSelect(long nFlags, VARIANT child) {
    int link = kNoLink;
    const HRESULT hr = FindLink(child, link);
    if (hr != S_OK) {
        return hr;
    }
    if (nFlags != SELFLAG_TAKEFOCUS || !IsFocusable()) {
        return E_INVALIDARG;
    }
    m_pDrawer->SetFocusLink(link);
    SetFocus(m_hWnd);
    InvalidateRect(m_hWnd, nullptr, FALSE);
    return S_OK;
}

STDMETHODIMP HtmlAccessible::accLocation(long* pnLeft, long* pnTop, long* pnWidth, long* pnHeight,
                                         VARIANT child) {
    if (pnLeft == nullptr || pnTop == nullptr || pnWidth == nullptr || pnHeight == nullptr) {
        return E_POINTER;
    }
    *pnLeft = *pnTop = *pnWidth = *pnHeight = 0;
    return Guarded(
        E_FAIL,
        [&]() -> HRESULT {
            int link = kNoLink;
            if (const HRESULT hr = Find(child, link); hr != S_OK) {
                return hr;
            }
            RECT area{};
            GetClientRect(m_hWnd, &area);
            if (link != kNoLink) {
                const RECT client = area;
                SetRectEmpty(&area);
                for (const RECT& part : m_pDrawer->LinkRects(link)) {
                    UnionRect(&area, &area, &part);
                }
                IntersectRect(&area, &area, &client);
            }
            MapWindowPoints(m_hWnd, nullptr, reinterpret_cast<POINT*>(&area), 2);
            *pnLeft = area.left;
            *pnTop = area.top;
            *pnWidth = area.right - area.left;
            *pnHeight = area.bottom - area.top;
            return S_OK;
        },
        LogException("HtmlAccessible::accLocation"));
}

STDMETHODIMP HtmlAccessible::accHitTest(long nLeft, long nTop, VARIANT* pChild) {
    if (pChild == nullptr) {
        return E_POINTER;
    }
    pChild->vt = VT_EMPTY;
    if (m_pDrawer == nullptr) {
        return CO_E_OBJNOTCONNECTED;
    }
    POINT point = {nLeft, nTop};
    RECT client{};
    GetClientRect(m_hWnd, &client);
    if (!ScreenToClient(m_hWnd, &point) || !PtInRect(&client, point)) {
        return S_FALSE;
    }
    SetNumber(*pChild, m_pDrawer->LinkAt(point) + 1);
    return S_OK;
}

STDMETHODIMP HtmlAccessible::accNavigate(long nDirection, VARIANT start, VARIANT* pEnd) {
    if (pEnd == nullptr) {
        return E_POINTER;
    }
    pEnd->vt = VT_EMPTY;
    int link = kNoLink;
    if (const HRESULT hr = Find(start, link); hr != S_OK) {
        return hr;
    }
    const bool self = link == kNoLink;
    const int count = m_pDrawer->LinkCount();
    int to = kNoLink;
    if (self && nDirection == NAVDIR_FIRSTCHILD) {
        to = 0;
    } else if (self && nDirection == NAVDIR_LASTCHILD) {
        to = count - 1;
    } else if (!self && (nDirection == NAVDIR_NEXT || nDirection == NAVDIR_DOWN)) {
        to = link + 1;
    } else if (!self && (nDirection == NAVDIR_PREVIOUS || nDirection == NAVDIR_UP)) {
        to = link - 1;
    }
    if (to < 0 || to >= count) {
        return S_FALSE;
    }
    SetNumber(*pEnd, to + 1);
    return S_OK;
}

STDMETHODIMP HtmlAccessible::put_accName(VARIANT, BSTR) {
    return DISP_E_MEMBERNOTFOUND;
}
STDMETHODIMP HtmlAccessible::put_accValue(VARIANT, BSTR) {
    return DISP_E_MEMBERNOTFOUND;
}

}  // namespace mvp::richtext
