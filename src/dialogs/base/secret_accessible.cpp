#include "dialogs/base/secret_accessible.h"

#include <new>
#include <type_traits>

#include "platform/barrier.h"
#include "services/log.h"

namespace mvp {
namespace {

VARIANT Self() {
    VARIANT self{};
    SetNumber(self, CHILDID_SELF);
    return self;
}

std::string TextOf(HWND hWnd) {
    std::string text(static_cast<std::size_t>(GetWindowTextLengthA(hWnd)) + 1, '\0');
    text.resize(
        static_cast<std::size_t>(GetWindowTextA(hWnd, text.data(), static_cast<int>(text.size()))));
    return text;
}

struct Label {
    std::string strText;
    char chMnemonic = '\0';  // 0: none
};

// The window right before the edit in its dialog, but for hidden ones, when that is a text or what
// chooses the edit.
Label LabelOf(HWND hEdit) {
    HWND before = GetWindow(hEdit, GW_HWNDPREV);
    while (before != nullptr && (GetWindowLongA(before, GWL_STYLE) & WS_VISIBLE) == 0) {
        before = GetWindow(before, GW_HWNDPREV);
    }
    constexpr LRESULT kLabels = DLGC_STATIC | DLGC_RADIOBUTTON;
    const LRESULT code = before != nullptr ? SendMessageA(before, WM_GETDLGCODE, 0, 0) : 0;
    if ((code & kLabels) == 0) {
        return {};
    }
    const bool plain =
        (code & DLGC_STATIC) != 0 && (GetWindowLongA(before, GWL_STYLE) & SS_NOPREFIX) != 0;
    const std::string text = TextOf(before);
    Label label;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && !plain && ++i < text.size() && text[i] != '&') {
            label.chMnemonic = text[i];
        }
        label.strText.append(text, i, 1);
    }
    return label;
}

// As the keyboard's driver calls it, if it has a name for it.
std::string AltKeyName() {
    constexpr int kScanCodeAt = 16;
    char name[40] = "";
    const auto code = static_cast<LONG>(MapVirtualKeyA(VK_MENU, MAPVK_VK_TO_VSC));
    return GetKeyNameTextA(code << kScanCodeAt, name, sizeof name) > 0 ? name : "Alt";
}

}  // namespace

LRESULT SecretAccessible::Answer(SecretAccessible*& pObject, HWND hWnd, WPARAM wParam,
                                 Description describe) noexcept {
    if (pObject == nullptr) {
        IAccessible* standard = StandardObject(hWnd);
        pObject = new (std::nothrow) SecretAccessible(hWnd, standard, std::move(describe));
        if (pObject == nullptr) {
            if (standard != nullptr) {
                standard->Release();
            }
            return 0;
        }
    }
    return AnswerGetObject(wParam, pObject);
}

void SecretAccessible::Drop(SecretAccessible*& pObject) noexcept {
    if (SecretAccessible* object = std::exchange(pObject, nullptr)) {
        object->Disconnect();
        object->m_hWnd = nullptr;
        object->m_describe = nullptr;
        object->Release();
    }
}

template <class Result>
HRESULT SecretAccessible::Check(const VARIANT& child, Result* pResult) const noexcept {
    if (pResult == nullptr) {
        return E_INVALIDARG;
    }
    if constexpr (std::is_same_v<Result, VARIANT>) {
        pResult->vt = VT_EMPTY;
    } else {
        *pResult = Result{};
    }
    if (!IsSelf(child)) {
        return E_INVALIDARG;
    }
    return m_hWnd != nullptr ? S_OK : CO_E_OBJNOTCONNECTED;
}

template <class Text>
HRESULT SecretAccessible::Tell(const VARIANT& child, BSTR* pstrResult, Text text) const noexcept {
    const HRESULT hr = Check(child, pstrResult);
    return hr != S_OK ? hr
                      : Guarded(
                            E_FAIL, [&] { return MakeAccessibleString(text(), pstrResult); },
                            LogException("SecretAccessible::Tell"));
}

HRESULT SecretAccessible::TellNothing(const VARIANT& child, BSTR* pstrResult) const noexcept {
    const HRESULT hr = Check(child, pstrResult);
    return hr == S_OK ? S_FALSE : hr;
}

STDMETHODIMP SecretAccessible::get_accName(VARIANT child, BSTR* pstrName) {
    return Tell(child, pstrName, [this] { return LabelOf(m_hWnd).strText; });
}

STDMETHODIMP SecretAccessible::get_accKeyboardShortcut(VARIANT child, BSTR* pstrShortcut) {
    return Tell(child, pstrShortcut, [this] {
        const char mnemonic = LabelOf(m_hWnd).chMnemonic;
        return mnemonic != '\0' ? AltKeyName() + "+" + mnemonic : std::string();
    });
}

STDMETHODIMP SecretAccessible::get_accDescription(VARIANT child, BSTR* pstrDescription) {
    return Tell(child, pstrDescription, [this] { return m_describe(); });
}

// Whichever child is asked for, and for ever: nothing is learnt from how it is refused.
STDMETHODIMP SecretAccessible::get_accValue(VARIANT, BSTR* pstrValue) {
    if (pstrValue == nullptr) {
        return E_INVALIDARG;
    }
    *pstrValue = nullptr;
    return E_ACCESSDENIED;
}
STDMETHODIMP SecretAccessible::put_accValue(VARIANT, BSTR) {
    return E_ACCESSDENIED;
}
STDMETHODIMP SecretAccessible::put_accName(VARIANT, BSTR) {
    return E_ACCESSDENIED;
}

STDMETHODIMP SecretAccessible::get_accRole(VARIANT child, VARIANT* pRole) {
    const HRESULT hr = Check(child, pRole);
    if (hr == E_INVALIDARG) {
        return hr;
    }
    SetNumber(*pRole, ROLE_SYSTEM_TEXT);
    return S_OK;
}

STDMETHODIMP SecretAccessible::get_accState(VARIANT child, VARIANT* pState) {
    const HRESULT hr = Check(child, pState);
    if (hr == E_INVALIDARG) {
        return hr;
    }
    const bool told =
        Standard(&IAccessible::get_accState, child, pState) == S_OK && pState->vt == VT_I4;
    SetNumber(*pState,
              STATE_SYSTEM_PROTECTED |
                  (told ? pState->lVal : STATE_SYSTEM_UNAVAILABLE | STATE_SYSTEM_INVISIBLE));
    return S_OK;
}

STDMETHODIMP SecretAccessible::get_accParent(IDispatch** ppParent) {
    const HRESULT hr = Check(Self(), ppParent);
    return hr == S_OK ? Standard(&IAccessible::get_accParent, ppParent) : hr;
}
STDMETHODIMP SecretAccessible::get_accFocus(VARIANT* pChild) {
    const HRESULT hr = Check(Self(), pChild);
    return hr == S_OK ? Standard(&IAccessible::get_accFocus, pChild) : hr;
}
STDMETHODIMP SecretAccessible::accHitTest(long nLeft, long nTop, VARIANT* pChild) {
    const HRESULT hr = Check(Self(), pChild);
    return hr == S_OK ? Standard(&IAccessible::accHitTest, nLeft, nTop, pChild) : hr;
}
STDMETHODIMP SecretAccessible::accNavigate(long nDirection, VARIANT start, VARIANT* pEnd) {
    const HRESULT hr = Check(start, pEnd);
    return hr == S_OK ? Standard(&IAccessible::accNavigate, nDirection, start, pEnd) : hr;
}
STDMETHODIMP SecretAccessible::accLocation(long* pnLeft, long* pnTop, long* pnWidth, long* pnHeight,
                                           VARIANT child) {
    for (long* number : {pnLeft, pnTop, pnWidth, pnHeight}) {
        if (const HRESULT hr = Check(child, number); hr != S_OK) {
            return hr;
        }
    }
    return Standard(&IAccessible::accLocation, pnLeft, pnTop, pnWidth, pnHeight, child);
}
STDMETHODIMP SecretAccessible::accSelect(long nFlags, VARIANT child) {
    return IsSelf(child) ? Standard(&IAccessible::accSelect, nFlags, child) : E_INVALIDARG;
}

// It has no children, no help and no action, and what is selected in it is nobody's business.
STDMETHODIMP SecretAccessible::get_accChildCount(long* pnCount) {
    return Check(Self(), pnCount);
}
STDMETHODIMP SecretAccessible::get_accChild(VARIANT child, IDispatch** ppChild) {
    const HRESULT hr = Check(child, ppChild);
    return hr == S_OK ? S_FALSE : hr;
}
STDMETHODIMP SecretAccessible::get_accSelection(VARIANT* pChildren) {
    const HRESULT hr = Check(Self(), pChildren);
    return hr == S_OK ? S_FALSE : hr;
}
STDMETHODIMP SecretAccessible::get_accHelp(VARIANT child, BSTR* pstrHelp) {
    return TellNothing(child, pstrHelp);
}
STDMETHODIMP SecretAccessible::get_accHelpTopic(BSTR* pstrFile, VARIANT child, long* pnTopic) {
    const HRESULT hr = TellNothing(child, pstrFile);
    const HRESULT topic = Check(child, pnTopic);
    return topic == S_OK ? hr : topic;
}
STDMETHODIMP SecretAccessible::get_accDefaultAction(VARIANT child, BSTR* pstrAction) {
    return TellNothing(child, pstrAction);
}
STDMETHODIMP SecretAccessible::accDoDefaultAction(VARIANT child) {
    return IsSelf(child) ? DISP_E_MEMBERNOTFOUND : E_INVALIDARG;
}

void TellCapsLock(HWND hWnd, bool bFocus, bool& bTold) noexcept {
    const bool on = bFocus && (GetKeyState(VK_CAPITAL) & 1) != 0 &&
                    (GetWindowLongA(hWnd, GWL_STYLE) & ES_READONLY) == 0;
    if (std::exchange(bTold, on) != on) {
        NotifyWinEvent(EVENT_OBJECT_DESCRIPTIONCHANGE, hWnd, OBJID_CLIENT, CHILDID_SELF);
    }
}

}  // namespace mvp
