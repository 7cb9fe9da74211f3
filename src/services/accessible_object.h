// What the library's objects for screen readers have in common: their lifetime, the interfaces they
// say they have, and the system's functions around them.
//
// An object is made with one reference, which is the maker's, and deletes itself with the last.
#pragma once

#include <windows.h>
#include <oleacc.h>

#include <string>

namespace mvp {

class AccessibleObject : public IAccessible {
public:
    AccessibleObject(const AccessibleObject&) = delete;
    AccessibleObject& operator=(const AccessibleObject&) = delete;

    STDMETHOD(QueryInterface)(REFIID riid, void** ppObject) override;
    STDMETHOD_(ULONG, AddRef)() override;
    STDMETHOD_(ULONG, Release)() override;

    // Scripts are not served: readers use the interface itself.
    STDMETHOD(GetTypeInfoCount)(UINT* pnCount) override;
    STDMETHOD(GetTypeInfo)(UINT nInfo, LCID lcid, ITypeInfo** ppInfo) override;
    STDMETHOD(GetIDsOfNames)
    (REFIID riid, LPOLESTR* ppNames, UINT nNames, LCID lcid, DISPID* pIds) override;
    STDMETHOD(Invoke)
    (DISPID id, REFIID riid, LCID lcid, WORD wFlags, DISPPARAMS* pParams, VARIANT* pResult,
     EXCEPINFO* pException, UINT* pnArgument) override;

protected:
    AccessibleObject() = default;
    virtual ~AccessibleObject() = default;

private:
    LONG m_nReferences = 1;
};

// The answer to WM_GETOBJECT; 0 when the system cannot give one.
LRESULT AnswerGetObject(WPARAM wParam, IAccessible* pAccessible) noexcept;

// The system's object for the window `hWnd` itself, as its parent in the tree; S_FALSE without one.
HRESULT ObjectOfWindow(HWND hWnd, IDispatch** ppObject) noexcept;

// The system's own object for the client area of `hWnd`, with a reference for the caller; null when
// there is none.
IAccessible* StandardObject(HWND hWnd) noexcept;

// A text in the system's ANSI code page. S_FALSE and null for an empty one.
HRESULT MakeAccessibleString(const std::string& strText, BSTR* pstrResult);

inline void SetNumber(VARIANT& variant, long nValue) noexcept {
    variant.vt = VT_I4;
    variant.lVal = nValue;
}

}  // namespace mvp
