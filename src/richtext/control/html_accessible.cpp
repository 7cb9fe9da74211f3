#include "richtext/control/html_accessible.h"

#include <algorithm>
#include <new>

#include "platform/barrier.h"
#include "platform/system_library.h"
#include "services/log.h"

namespace mvp::richtext {
namespace {

// Loaded when somebody asks for the first time: without a screen reader nobody does. Given up to
// the process, which may hold objects of theirs until its end.
struct Functions {
    decltype(&LresultFromObject) pfnLresultFromObject = nullptr;
    decltype(&AccessibleObjectFromWindow) pfnObjectFromWindow = nullptr;
    decltype(&SysAllocStringLen) pfnAllocString = nullptr;
};

const Functions& System() noexcept {
    static const Functions functions = [] {
        const HMODULE hAccess = LoadSystemLibrary("oleacc.dll").release();
        const HMODULE hAutomation = LoadSystemLibrary("oleaut32.dll").release();
        return Functions{
            FindFunction<decltype(&LresultFromObject)>(hAccess, "LresultFromObject"),
            FindFunction<decltype(&AccessibleObjectFromWindow)>(hAccess,
                                                                "AccessibleObjectFromWindow"),
            FindFunction<decltype(&SysAllocStringLen)>(hAutomation, "SysAllocStringLen")};
    }();
    return functions;
}

HRESULT MakeString(const std::string& strText, BSTR* pstrResult) {
    *pstrResult = nullptr;
    if (strText.empty()) {
        return S_FALSE;
    }
    const auto nBytes = static_cast<int>(std::min<std::size_t>(strText.size(), 1 << 20));
    std::wstring strWide(static_cast<std::size_t>(nBytes), L'\0');
    const int nLength =
        MultiByteToWideChar(CP_ACP, 0, strText.data(), nBytes, strWide.data(), nBytes);
    if (System().pfnAllocString == nullptr || nLength <= 0) {
        return E_FAIL;
    }
    *pstrResult = System().pfnAllocString(strWide.data(), static_cast<UINT>(nLength));
    return *pstrResult != nullptr ? S_OK : E_OUTOFMEMORY;
}

void SetNumber(VARIANT& variant, long nValue) noexcept {
    variant.vt = VT_I4;
    variant.lVal = nValue;
}

}  // namespace

LRESULT AnswerGetObject(WPARAM wParam, IAccessible* pAccessible) noexcept {
    return System().pfnLresultFromObject != nullptr
               ? System().pfnLresultFromObject(__uuidof(IAccessible), wParam, pAccessible)
               : 0;
}

CHtmlAccessible* CHtmlAccessible::Create(HWND hWnd, CHtmlDrawer& drawer,
                                         UINT nFollowMessage) noexcept {
    return new (std::nothrow) CHtmlAccessible(hWnd, drawer, nFollowMessage);
}

HRESULT CHtmlAccessible::Find(const VARIANT& child, int& nLink) const noexcept {
    if (m_pDrawer == nullptr) {
        return CO_E_OBJNOTCONNECTED;
    }
    if (child.vt != VT_I4 || child.lVal < 0 || child.lVal > m_pDrawer->LinkCount()) {
        return E_INVALIDARG;
    }
    nLink = child.lVal == CHILDID_SELF ? kNoLink : static_cast<int>(child.lVal) - 1;
    return S_OK;
}

HRESULT CHtmlAccessible::FindLink(const VARIANT& child, int& nLink) const noexcept {
    const HRESULT hr = Find(child, nLink);
    return hr == S_OK && nLink == kNoLink ? S_FALSE : hr;
}

bool CHtmlAccessible::IsFocusable() const noexcept {
    return (GetWindowLongPtrA(m_hWnd, GWL_STYLE) & WS_TABSTOP) != 0;
}

STDMETHODIMP CHtmlAccessible::QueryInterface(REFIID riid, void** ppObject) {
    if (ppObject == nullptr) {
        return E_POINTER;
    }
    *ppObject = nullptr;
    if (riid != __uuidof(IUnknown) && riid != __uuidof(IDispatch) &&
        riid != __uuidof(IAccessible)) {
        return E_NOINTERFACE;
    }
    *ppObject = static_cast<IAccessible*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) CHtmlAccessible::AddRef() {
    return static_cast<ULONG>(InterlockedIncrement(&m_nReferences));
}

STDMETHODIMP_(ULONG) CHtmlAccessible::Release() {
    const LONG nLeft = InterlockedDecrement(&m_nReferences);
    if (nLeft == 0) {
        delete this;
    }
    return static_cast<ULONG>(nLeft);
}

// Scripts are not served: readers use the interface itself.
STDMETHODIMP CHtmlAccessible::GetTypeInfoCount(UINT* pnCount) {
    if (pnCount == nullptr) {
        return E_POINTER;
    }
    *pnCount = 0;
    return S_OK;
}
STDMETHODIMP CHtmlAccessible::GetTypeInfo(UINT, LCID, ITypeInfo**) {
    return E_NOTIMPL;
}
STDMETHODIMP CHtmlAccessible::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
    return E_NOTIMPL;
}
STDMETHODIMP CHtmlAccessible::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) {
    return E_NOTIMPL;
}

STDMETHODIMP CHtmlAccessible::get_accParent(IDispatch** ppParent) {
    if (ppParent == nullptr) {
        return E_POINTER;
    }
    *ppParent = nullptr;
    if (m_pDrawer == nullptr) {
        return CO_E_OBJNOTCONNECTED;
    }
    if (System().pfnObjectFromWindow == nullptr) {
        return S_FALSE;
    }
    return System().pfnObjectFromWindow(m_hWnd, static_cast<DWORD>(OBJID_WINDOW),
                                        __uuidof(IDispatch), reinterpret_cast<void**>(ppParent));
}

STDMETHODIMP CHtmlAccessible::get_accChildCount(long* pnCount) {
    if (pnCount == nullptr) {
        return E_POINTER;
    }
    *pnCount = m_pDrawer != nullptr ? m_pDrawer->LinkCount() : 0;
    return m_pDrawer != nullptr ? S_OK : CO_E_OBJNOTCONNECTED;
}

// Links are told apart by their numbers alone.
STDMETHODIMP CHtmlAccessible::get_accChild(VARIANT child, IDispatch** ppChild) {
    if (ppChild == nullptr) {
        return E_POINTER;
    }
    *ppChild = nullptr;
    int nLink = kNoLink;
    const HRESULT hr = Find(child, nLink);
    return hr == S_OK ? S_FALSE : hr;
}

STDMETHODIMP CHtmlAccessible::get_accName(VARIANT child, BSTR* pstrName) {
    if (pstrName == nullptr) {
        return E_POINTER;
    }
    *pstrName = nullptr;
    return Guarded(
        E_FAIL,
        [&]() -> HRESULT {
            int nLink = kNoLink;
            if (const HRESULT hr = Find(child, nLink); hr != S_OK) {
                return hr;
            }
            if (nLink == kNoLink) {
                return MakeString(m_pDrawer->PlainText(), pstrName);
            }
            // A link that is only an image says at least where it leads.
            const std::string strText = m_pDrawer->LinkText(nLink);
            return MakeString(strText.empty() ? m_pDrawer->LinkTarget(nLink) : strText, pstrName);
        },
        LogException("CHtmlAccessible::get_accName"));
}

STDMETHODIMP CHtmlAccessible::get_accValue(VARIANT child, BSTR* pstrValue) {
    if (pstrValue == nullptr) {
        return E_POINTER;
    }
    *pstrValue = nullptr;
    return Guarded(
        E_FAIL,
        [&]() -> HRESULT {
            int nLink = kNoLink;
            const HRESULT hr = FindLink(child, nLink);
            return hr == S_OK ? MakeString(m_pDrawer->LinkTarget(nLink), pstrValue) : hr;
        },
        LogException("CHtmlAccessible::get_accValue"));
}

STDMETHODIMP CHtmlAccessible::get_accDescription(VARIANT, BSTR* pstrDescription) {
    return pstrDescription != nullptr ? (*pstrDescription = nullptr, S_FALSE) : E_POINTER;
}
STDMETHODIMP CHtmlAccessible::get_accHelp(VARIANT, BSTR* pstrHelp) {
    return pstrHelp != nullptr ? (*pstrHelp = nullptr, S_FALSE) : E_POINTER;
}
STDMETHODIMP CHtmlAccessible::get_accHelpTopic(BSTR* pstrFile, VARIANT, long* pnTopic) {
    if (pstrFile == nullptr || pnTopic == nullptr) {
        return E_POINTER;
    }
    *pstrFile = nullptr;
    *pnTopic = 0;
    return S_FALSE;
}
STDMETHODIMP CHtmlAccessible::get_accKeyboardShortcut(VARIANT, BSTR* pstrShortcut) {
    return pstrShortcut != nullptr ? (*pstrShortcut = nullptr, S_FALSE) : E_POINTER;
}

STDMETHODIMP CHtmlAccessible::get_accRole(VARIANT child, VARIANT* pRole) {
    if (pRole == nullptr) {
        return E_POINTER;
    }
    pRole->vt = VT_EMPTY;
    int nLink = kNoLink;
    const HRESULT hr = Find(child, nLink);
    if (hr == S_OK) {
        const bool bGroup = m_pDrawer->LinkCount() > 0;
        SetNumber(*pRole, nLink != kNoLink ? ROLE_SYSTEM_LINK
                          : bGroup         ? ROLE_SYSTEM_GROUPING
                                           : ROLE_SYSTEM_STATICTEXT);
    }
    return hr;
}

STDMETHODIMP CHtmlAccessible::get_accState(VARIANT child, VARIANT* pState) {
    if (pState == nullptr) {
        return E_POINTER;
    }
    pState->vt = VT_EMPTY;
    int nLink = kNoLink;
    const HRESULT hr = Find(child, nLink);
    if (hr != S_OK) {
        return hr;
    }
    long nState = STATE_SYSTEM_READONLY;
    const bool bFocused = GetFocus() == m_hWnd;
    if (nLink != kNoLink) {
        nState = STATE_SYSTEM_LINKED;
        nState |= IsFocusable() ? STATE_SYSTEM_FOCUSABLE : 0;
        nState |= bFocused && m_pDrawer->FocusLink() == nLink ? STATE_SYSTEM_FOCUSED : 0;
        nState |= m_pDrawer->HoverLink() == nLink ? STATE_SYSTEM_HOTTRACKED : 0;
    } else if (IsFocusable() && m_pDrawer->LinkCount() > 0) {
        nState |= STATE_SYSTEM_FOCUSABLE;
    }
    nState |= IsWindowEnabled(m_hWnd) ? 0 : STATE_SYSTEM_UNAVAILABLE;
    nState |= IsWindowVisible(m_hWnd) ? 0 : STATE_SYSTEM_INVISIBLE;
    SetNumber(*pState, nState);
    return S_OK;
}

STDMETHODIMP CHtmlAccessible::get_accFocus(VARIANT* pChild) {
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

STDMETHODIMP CHtmlAccessible::get_accSelection(VARIANT* pChildren) {
    if (pChildren == nullptr) {
        return E_POINTER;
    }
    pChildren->vt = VT_EMPTY;
    return S_FALSE;
}

// The system has texts of its own for roles and states (GetRoleText, GetStateText), but none for
// actions, so there is no translation to take. "Jump" is the customary word for links. It is not in
// the resource module, which holds what windows show: no window shows this.
STDMETHODIMP CHtmlAccessible::get_accDefaultAction(VARIANT child, BSTR* pstrAction) {
    if (pstrAction == nullptr) {
        return E_POINTER;
    }
    *pstrAction = nullptr;
    return Guarded(
        E_FAIL,
        [&]() -> HRESULT {
            int nLink = kNoLink;
            const HRESULT hr = FindLink(child, nLink);
            return hr == S_OK ? MakeString("Jump", pstrAction) : hr;
        },
        LogException("CHtmlAccessible::get_accDefaultAction"));
}

// Posted, as the action may take its time and whoever asked waits for the answer.
STDMETHODIMP CHtmlAccessible::accDoDefaultAction(VARIANT child) {
    int nLink = kNoLink;
    const HRESULT hr = FindLink(child, nLink);
    if (hr != S_OK) {
        return hr == S_FALSE ? DISP_E_MEMBERNOTFOUND : hr;
    }
    return PostMessageA(m_hWnd, m_nFollowMessage, static_cast<WPARAM>(nLink), 0) ? S_OK : E_FAIL;
}

STDMETHODIMP CHtmlAccessible::accSelect(long nFlags, VARIANT child) {
    int nLink = kNoLink;
    const HRESULT hr = FindLink(child, nLink);
    if (hr != S_OK) {
        return hr;
    }
    if (nFlags != SELFLAG_TAKEFOCUS || !IsFocusable()) {
        return E_INVALIDARG;
    }
    m_pDrawer->SetFocusLink(nLink);
    SetFocus(m_hWnd);
    InvalidateRect(m_hWnd, nullptr, FALSE);
    return S_OK;
}

STDMETHODIMP CHtmlAccessible::accLocation(long* pnLeft, long* pnTop, long* pnWidth, long* pnHeight,
                                          VARIANT child) {
    if (pnLeft == nullptr || pnTop == nullptr || pnWidth == nullptr || pnHeight == nullptr) {
        return E_POINTER;
    }
    *pnLeft = *pnTop = *pnWidth = *pnHeight = 0;
    return Guarded(
        E_FAIL,
        [&]() -> HRESULT {
            int nLink = kNoLink;
            if (const HRESULT hr = Find(child, nLink); hr != S_OK) {
                return hr;
            }
            RECT area{};
            GetClientRect(m_hWnd, &area);
            if (nLink != kNoLink) {
                const RECT client = area;
                SetRectEmpty(&area);
                for (const RECT& part : m_pDrawer->LinkRects(nLink)) {
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
        LogException("CHtmlAccessible::accLocation"));
}

STDMETHODIMP CHtmlAccessible::accHitTest(long nLeft, long nTop, VARIANT* pChild) {
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

STDMETHODIMP CHtmlAccessible::accNavigate(long nDirection, VARIANT start, VARIANT* pEnd) {
    if (pEnd == nullptr) {
        return E_POINTER;
    }
    pEnd->vt = VT_EMPTY;
    int nLink = kNoLink;
    if (const HRESULT hr = Find(start, nLink); hr != S_OK) {
        return hr;
    }
    const bool bSelf = nLink == kNoLink;
    const int nCount = m_pDrawer->LinkCount();
    int nTo = kNoLink;
    if (bSelf && nDirection == NAVDIR_FIRSTCHILD) {
        nTo = 0;
    } else if (bSelf && nDirection == NAVDIR_LASTCHILD) {
        nTo = nCount - 1;
    } else if (!bSelf && (nDirection == NAVDIR_NEXT || nDirection == NAVDIR_DOWN)) {
        nTo = nLink + 1;
    } else if (!bSelf && (nDirection == NAVDIR_PREVIOUS || nDirection == NAVDIR_UP)) {
        nTo = nLink - 1;
    }
    if (nTo < 0 || nTo >= nCount) {
        return S_FALSE;
    }
    SetNumber(*pEnd, nTo + 1);
    return S_OK;
}

STDMETHODIMP CHtmlAccessible::put_accName(VARIANT, BSTR) {
    return DISP_E_MEMBERNOTFOUND;
}
STDMETHODIMP CHtmlAccessible::put_accValue(VARIANT, BSTR) {
    return DISP_E_MEMBERNOTFOUND;
}

}  // namespace mvp::richtext
