#include "services/accessible_object.h"

#include <algorithm>

#include "platform/system_library.h"

namespace mvp {
namespace {

// Loaded when somebody asks for the first time: without a screen reader nobody does. Given up to
// the process, which may hold objects of theirs until its end.
struct Functions {
    decltype(&LresultFromObject) pfnLresultFromObject = nullptr;
    decltype(&AccessibleObjectFromWindow) pfnObjectFromWindow = nullptr;
    decltype(&CreateStdAccessibleObject) pfnCreateStandard = nullptr;
    decltype(&SysAllocStringLen) pfnAllocString = nullptr;
    decltype(&CoInitialize) pfnInitializeCom = nullptr;
};

const Functions& System() noexcept {
    static const Functions functions = [] {
        const HMODULE access = LoadSystemLibrary("oleacc.dll").release();
        const HMODULE com = LoadSystemLibrary("ole32.dll").release();
        const HMODULE automation = LoadSystemLibrary("oleaut32.dll").release();
        return Functions{
            FindFunction<decltype(&LresultFromObject)>(access, "LresultFromObject"),
            FindFunction<decltype(&AccessibleObjectFromWindow)>(access,
                                                                "AccessibleObjectFromWindow"),
            FindFunction<decltype(&CreateStdAccessibleObject)>(access, "CreateStdAccessibleObject"),
            FindFunction<decltype(&SysAllocStringLen)>(automation, "SysAllocStringLen"),
            FindFunction<decltype(&CoInitialize)>(com, "CoInitialize")};
    }();
    return functions;
}

}  // namespace

// A reader in another process reaches the object through COM, which a host may have no other use
// for on this thread. It stays initialised: what the reader holds depends on it.
LRESULT AnswerGetObject(WPARAM wParam, IAccessible* pAccessible) noexcept {
    const auto answer = System().pfnLresultFromObject;
    if (answer == nullptr) {
        return 0;
    }
    const LRESULT result = answer(__uuidof(IAccessible), wParam, pAccessible);
    if (static_cast<HRESULT>(result) != CO_E_NOTINITIALIZED ||
        System().pfnInitializeCom == nullptr || FAILED(System().pfnInitializeCom(nullptr))) {
        return result;
    }
    return answer(__uuidof(IAccessible), wParam, pAccessible);
}

HRESULT ObjectOfWindow(HWND hWnd, IDispatch** ppObject) noexcept {
    if (System().pfnObjectFromWindow == nullptr) {
        return S_FALSE;
    }
    return System().pfnObjectFromWindow(hWnd, static_cast<DWORD>(OBJID_WINDOW), __uuidof(IDispatch),
                                        reinterpret_cast<void**>(ppObject));
}

IAccessible* StandardObject(HWND hWnd) noexcept {
    void* object = nullptr;
    if (System().pfnCreateStandard == nullptr ||
        System().pfnCreateStandard(hWnd, OBJID_CLIENT, __uuidof(IAccessible), &object) != S_OK) {
        return nullptr;
    }
    return static_cast<IAccessible*>(object);
}

HRESULT MakeAccessibleString(const std::string& strText, BSTR* pstrResult) {
    *pstrResult = nullptr;
    if (strText.empty()) {
        return S_FALSE;
    }
    const auto bytes = static_cast<int>(std::min<std::size_t>(strText.size(), 1 << 20));
    std::wstring wide(static_cast<std::size_t>(bytes), L'\0');
    const int length = MultiByteToWideChar(CP_ACP, 0, strText.data(), bytes, wide.data(), bytes);
    if (System().pfnAllocString == nullptr || length <= 0) {
        return E_FAIL;
    }
    *pstrResult = System().pfnAllocString(wide.data(), static_cast<UINT>(length));
    return *pstrResult != nullptr ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP AccessibleObject::QueryInterface(REFIID riid, void** ppObject) {
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

STDMETHODIMP_(ULONG) AccessibleObject::AddRef() {
    return static_cast<ULONG>(InterlockedIncrement(&m_nReferences));
}

STDMETHODIMP_(ULONG) AccessibleObject::Release() {
    const LONG left = InterlockedDecrement(&m_nReferences);
    if (left == 0) {
        delete this;
    }
    return static_cast<ULONG>(left);
}

STDMETHODIMP AccessibleObject::GetTypeInfoCount(UINT* pnCount) {
    if (pnCount == nullptr) {
        return E_POINTER;
    }
    *pnCount = 0;
    return S_OK;
}
STDMETHODIMP AccessibleObject::GetTypeInfo(UINT, LCID, ITypeInfo**) {
    return E_NOTIMPL;
}
STDMETHODIMP AccessibleObject::GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) {
    return E_NOTIMPL;
}
STDMETHODIMP AccessibleObject::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                      UINT*) {
    return E_NOTIMPL;
}

}  // namespace mvp
