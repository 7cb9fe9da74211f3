// CWnd: how objects and windows are bound to each other, and how both end.
#include <windows.h>

#include <cstring>
#include <utility>

#include <dlgfw/module_state.h>
#include <dlgfw/wnd.h>

#include "framework/handle_maps.h"
#include "framework/wnd_access.h"
#include "platform/barrier.h"

using dlgfw::ThreadState;
using dlgfw::Windows;

CWndGuard::CWndGuard(CWnd* pWnd) noexcept
    : m_pWnd(pWnd), m_pNext(std::exchange(CWndAccess::Guards(*pWnd), this)) {}

CWndGuard::~CWndGuard() {
    // Guards live on the stack, so the newest goes first.
    if (m_pWnd != nullptr)
        CWndAccess::Guards(*m_pWnd) = m_pNext;
}

void CWndAccess::OnDeleted(CWnd& wnd) noexcept {
    for (CWndGuard* p = std::exchange(wnd.m_pGuards, nullptr); p != nullptr; p = p->m_pNext)
        p->m_pWnd = nullptr;
}

void CWndAccess::Bind(CWnd& wnd, HWND hWnd) {
    Windows().Insert(hWnd, &wnd);
    wnd.m_hWnd = hWnd;
    wnd.PreSubclassWindow();
    Subclass(wnd);
}

bool CWndAccess::Subclass(CWnd& wnd) {
    const LONG_PTR lOld =
        ::SetWindowLongPtrA(wnd.m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&AfxWndProc));
    const auto pfnOld = reinterpret_cast<WNDPROC>(lOld);
    if (pfnOld != &AfxWndProc)
        wnd.m_pfnSuper = pfnOld;
    return pfnOld != nullptr;
}

void CWndAccess::BreakModalLoop(CWnd& wnd) noexcept {
    if ((wnd.m_nFlags & WF_CONTINUEMODAL) == 0)
        return;
    wnd.m_nModalResult = -1;
    wnd.m_nFlags &= ~WF_CONTINUEMODAL;
    // The loop may be waiting for messages, and this window may get none any more.
    if ((wnd.m_nFlags & WF_MODALLOOP) != 0)
        ::PostThreadMessageA(::GetCurrentThreadId(), WM_NULL, 0, 0);
}

void CWndAccess::OnDestroying(CWnd& wnd) noexcept {
    wnd.m_nFlags |= WF_DESTROYING;
    BreakModalLoop(wnd);
    ::PostMessageA(wnd.m_hWnd, WM_STILLTHERE, 0, 0);
}

void CWndAccess::OnStillThere(HWND hWnd) {
    // Somebody tampers with the dialog that the window belongs to: nothing may come of that one.
    for (HWND h = hWnd; h != nullptr; h = ::GetAncestor(h, GA_PARENT)) {
        if (CWnd* pWnd = CWnd::FromHandlePermanent(h))
            BreakModalLoop(*pWnd);
    }
    ::DestroyWindow(hWnd);
}

namespace dlgfw {
namespace {

// The system makes a window of its own for input methods along with a thread's first window.
bool IsInputMethodWindow(HWND hWnd) {
    char szClass[8] = "";
    ::GetClassNameA(hWnd, szClass, sizeof(szClass));
    return _stricmp(szClass, "ime") == 0;
}

LRESULT CALLBACK CreationHookProc(int nCode, WPARAM wParam, LPARAM lParam) {
    ThreadState* pState = ThreadState::TryGet();
    if (pState == nullptr)
        return 0;
    HHOOK hHook = pState->hCreationHook;
    auto* hWnd = reinterpret_cast<HWND>(wParam);
    if (nCode != HCBT_CREATEWND || pState->pCreating == nullptr || IsInputMethodWindow(hWnd))
        return ::CallNextHookEx(hHook, nCode, wParam, lParam);

    CWnd* pWnd = std::exchange(pState->pCreating, nullptr);
    const bool bBound =
        mvp::Guarded([=] { CWndAccess::Bind(*pWnd, hWnd); }, [] { ReportException(WM_NCCREATE); });
    const LRESULT lResult = ::CallNextHookEx(hHook, nCode, wParam, lParam);
    // Windows that this one creates in turn are none of ours.
    ::UnhookWindowsHookEx(std::exchange(pState->hCreationHook, nullptr));
    return bBound ? lResult : 1;  // 1 forbids the window
}

}  // namespace

CreationHook::CreationHook(CWnd* pWnd)
    : m_state(ThreadState::Get()),
      m_pWnd(pWnd),
      m_pOuter(std::exchange(m_state.pCreating, pWnd)),
      m_hOuterHook(std::exchange(
          m_state.hCreationHook,
          ::SetWindowsHookExA(WH_CBT, &CreationHookProc, nullptr, ::GetCurrentThreadId()))) {}

CreationHook::~CreationHook() {
    if (m_state.hCreationHook != nullptr)
        ::UnhookWindowsHookEx(m_state.hCreationHook);
    m_state.hCreationHook = m_hOuterHook;
    m_state.pCreating = m_pOuter;
}

}  // namespace dlgfw

CWnd::~CWnd() {
    if (m_hWnd != nullptr && Windows().Find(m_hWnd) == this)
        CWnd::DestroyWindow();
    if (m_hWnd != nullptr)
        Windows().Erase(m_hWnd, this);
    CWndAccess::OnDeleted(*this);
}

CWnd* CWnd::FromHandle(HWND hWnd) {
    return dlgfw::ObjectFromHandle<CWnd>(Windows(), hWnd);
}

CWnd* CWnd::FromHandlePermanent(HWND hWnd) {
    return Windows().Find(hWnd);
}

void CWnd::DeleteTempMap() {
    if (ThreadState* pState = ThreadState::TryGet())
        pState->temporaries.FreeFrom(0);
}

BOOL CWnd::Attach(HWND hWnd) {
    if (hWnd == nullptr || m_hWnd != nullptr || FromHandlePermanent(hWnd) != nullptr)
        return FALSE;
    Windows().Insert(hWnd, this);
    m_hWnd = hWnd;
    return TRUE;
}

HWND CWnd::Detach() {
    HWND hWnd = std::exchange(m_hWnd, nullptr);
    m_nFlags &= ~WF_DESTROYING;
    Windows().Erase(hWnd, this);
    return hWnd;
}

BOOL CWnd::SubclassWindow(HWND hWnd) {
    // The messages of another thread's window would not find the object.
    if (::GetWindowThreadProcessId(hWnd, nullptr) != ::GetCurrentThreadId() || !Attach(hWnd))
        return FALSE;
    PreSubclassWindow();
    if (CWndAccess::Subclass(*this))
        return TRUE;
    Detach();
    return FALSE;
}

BOOL CWnd::SubclassDlgItem(UINT nID, CWnd* pParent) {
    return SubclassWindow(::GetDlgItem(pParent->m_hWnd, static_cast<int>(nID)));
}

BOOL CWnd::PreCreateWindow(CREATESTRUCTA& cs) {
    if (cs.lpszClass == nullptr)
        cs.lpszClass = AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursorA(nullptr, IDC_ARROW),
                                           ::GetSysColorBrush(COLOR_WINDOW));
    return cs.lpszClass != nullptr;
}

void CWnd::PreSubclassWindow() {}

void CWnd::PostNcDestroy() {}

namespace {

// Runs `create`, which makes a window, with the object bound to it. When there is no window in the
// end, the object gets its PostNcDestroy as if one had been there.
template <class Create>
HWND CreateBound(CWnd& wnd, Create create) {
    const CWndGuard guard(&wnd);
    HWND hWnd = nullptr;
    bool bCame = false;
    {
        const dlgfw::CreationHook hook(&wnd);
        hWnd = create();
        bCame = hook.IsDone();
    }
    if (!guard.IsAlive())
        return nullptr;
    if (hWnd != nullptr && wnd.m_hWnd == hWnd)
        return hWnd;
    // Without the hook it is nobody's window.
    if (hWnd != nullptr && !bCame)
        ::DestroyWindow(hWnd);
    // A window that came and went has run through OnNcDestroy, unless its very creation was
    // refused.
    if (!bCame || wnd.m_hWnd != nullptr) {
        wnd.Detach();
        CWndAccess::PostNcDestroy(wnd);
    }
    return nullptr;
}

// Answers nothing itself: everything happens in the window procedure and the message maps.
INT_PTR CALLBACK DialogProc(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

}  // namespace

BOOL CWnd::Create(LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle, const RECT& rect,
                  CWnd* pParentWnd, UINT nID) {
    return CreateEx(0, lpszClassName, lpszWindowName, dwStyle | WS_CHILD, rect, pParentWnd, nID);
}

BOOL CWnd::CreateEx(DWORD dwExStyle, LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle,
                    const RECT& rect, CWnd* pParentWnd, UINT nID, LPVOID lpParam) {
    return CreateEx(dwExStyle, lpszClassName, lpszWindowName, dwStyle, rect.left, rect.top,
                    rect.right - rect.left, rect.bottom - rect.top,
                    pParentWnd == nullptr ? nullptr : pParentWnd->m_hWnd,
                    reinterpret_cast<HMENU>(static_cast<UINT_PTR>(nID)), lpParam);
}

BOOL CWnd::CreateEx(DWORD dwExStyle, LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle,
                    int x, int y, int nWidth, int nHeight, HWND hWndParent, HMENU nIDorHMenu,
                    LPVOID lpParam) {
    CREATESTRUCTA cs = {};
    cs.dwExStyle = dwExStyle;
    cs.lpszClass = lpszClassName;
    cs.lpszName = lpszWindowName;
    cs.style = static_cast<LONG>(dwStyle);
    cs.x = x;
    cs.y = y;
    cs.cx = nWidth;
    cs.cy = nHeight;
    cs.hwndParent = hWndParent;
    cs.hMenu = nIDorHMenu;
    cs.hInstance = AfxGetInstanceHandle();
    cs.lpCreateParams = lpParam;
    if (!PreCreateWindow(cs)) {
        PostNcDestroy();
        return FALSE;
    }
    return CreateBound(*this, [&cs] {
               return ::CreateWindowExA(cs.dwExStyle, cs.lpszClass, cs.lpszName,
                                        static_cast<DWORD>(cs.style), cs.x, cs.y, cs.cx, cs.cy,
                                        cs.hwndParent, cs.hMenu, cs.hInstance, cs.lpCreateParams);
           }) != nullptr;
}

BOOL CWnd::CreateDlgIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd, HINSTANCE hInst) {
    const INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_WIN95_CLASSES};
    ::InitCommonControlsEx(&classes);

    m_nModalResult = -1;
    m_nFlags |= WF_CONTINUEMODAL;
    const CWndGuard guard(this);
    HWND hWndParent = pParentWnd == nullptr ? nullptr : pParentWnd->m_hWnd;
    HWND hWnd = CreateBound(*this, [=] {
        return ::CreateDialogIndirectParamA(hInst, lpDialogTemplate, hWndParent, &DialogProc, 0);
    });
    if (hWnd == nullptr)
        return FALSE;
    if ((m_nFlags & WF_CONTINUEMODAL) == 0) {
        ::DestroyWindow(hWnd);
        return FALSE;
    }
    return TRUE;
}

BOOL CWnd::DestroyWindow() {
    return m_hWnd != nullptr && ::DestroyWindow(m_hWnd);
}
