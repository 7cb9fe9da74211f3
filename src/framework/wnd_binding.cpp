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

WndGuard::WndGuard(CWnd* pWnd) noexcept
    : m_pWnd(pWnd), m_pNext(std::exchange(WndAccess::Guards(*pWnd), this)) {}

WndGuard::~WndGuard() {
    // Guards live on the stack, so the newest goes first.
    if (m_pWnd != nullptr) {
        WndAccess::Guards(*m_pWnd) = m_pNext;
    }
}

void WndAccess::OnDeleted(CWnd& wnd) noexcept {
    for (WndGuard* p = std::exchange(wnd.m_pGuards, nullptr); p != nullptr; p = p->m_pNext) {
        p->m_pWnd = nullptr;
    }
}

void WndAccess::Bind(CWnd& wnd, HWND hWnd) {
    Windows().Insert(hWnd, &wnd);
    wnd.m_hWnd = hWnd;
    wnd.PreSubclassWindow();
    Subclass(wnd);
}

bool WndAccess::Subclass(CWnd& wnd) {
    const LONG_PTR old =
        ::SetWindowLongPtrA(wnd.m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&AfxWndProc));
    const auto oldFunction = reinterpret_cast<WNDPROC>(old);
    if (oldFunction != &AfxWndProc) {
        wnd.m_pfnSuper = oldFunction;
    }
    return oldFunction != nullptr;
}

void WndAccess::BreakModalLoop(CWnd& wnd) noexcept {
    if ((wnd.m_nFlags & WF_CONTINUEMODAL) == 0) {
        return;
    }
    wnd.m_nModalResult = -1;
    wnd.m_nFlags &= ~WF_CONTINUEMODAL;
    // The loop may be waiting for messages, and this window may get none any more.
    if ((wnd.m_nFlags & WF_MODALLOOP) != 0) {
        ::PostThreadMessageA(::GetCurrentThreadId(), WM_NULL, 0, 0);
    }
}

void WndAccess::OnDestroying(CWnd& wnd) noexcept {
    wnd.m_nFlags |= WF_DESTROYING;
    BreakModalLoop(wnd);
    ::PostMessageA(wnd.m_hWnd, WM_STILLTHERE, 0, 0);
}

void WndAccess::OnStillThere(HWND hWnd) {
    // Somebody tampers with the dialog that the window belongs to: nothing may come of that one.
    for (HWND h = hWnd; h != nullptr; h = ::GetAncestor(h, GA_PARENT)) {
        if (CWnd* creating = CWnd::FromHandlePermanent(h)) {
            BreakModalLoop(*creating);
        }
    }
    ::DestroyWindow(hWnd);
}

namespace dlgfw {
namespace {

// The system makes a window of its own for input methods along with a thread's first window.
bool IsInputMethodWindow(HWND hWnd) {
    char className[8] = "";
    ::GetClassNameA(hWnd, className, sizeof(className));
    return _stricmp(className, "ime") == 0;
}

LRESULT CALLBACK CreationHookProc(int nCode, WPARAM wParam, LPARAM lParam) {
    ThreadState* state = ThreadState::TryGet();
    if (state == nullptr) {
        return 0;
    }
    HHOOK hook = state->hCreationHook;
    auto* window = reinterpret_cast<HWND>(wParam);
    if (nCode != HCBT_CREATEWND || state->pCreating == nullptr || IsInputMethodWindow(window)) {
        return ::CallNextHookEx(hook, nCode, wParam, lParam);
    }

    CWnd* creating = std::exchange(state->pCreating, nullptr);
    const bool bound = mvp::Guarded([=] { WndAccess::Bind(*creating, window); },
                                    [] { ReportException(WM_NCCREATE); });
    const LRESULT result = ::CallNextHookEx(hook, nCode, wParam, lParam);
    // Windows that this one creates in turn are none of ours.
    ::UnhookWindowsHookEx(std::exchange(state->hCreationHook, nullptr));
    return bound ? result : 1;  // 1 forbids the window
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
    if (m_state.hCreationHook != nullptr) {
        ::UnhookWindowsHookEx(m_state.hCreationHook);
    }
    m_state.hCreationHook = m_hOuterHook;
    m_state.pCreating = m_pOuter;
}

}  // namespace dlgfw

CWnd::~CWnd() {
    if (m_hWnd != nullptr && Windows().Find(m_hWnd) == this) {
        CWnd::DestroyWindow();
    }
    if (m_hWnd != nullptr) {
        Windows().Erase(m_hWnd, this);
    }
    WndAccess::OnDeleted(*this);
}

CWnd* CWnd::FromHandle(HWND hWnd) {
    return dlgfw::ObjectFromHandle<CWnd>(Windows(), hWnd);
}

CWnd* CWnd::FromHandlePermanent(HWND hWnd) {
    return Windows().Find(hWnd);
}

void CWnd::DeleteTempMap() {
    if (ThreadState* state = ThreadState::TryGet()) {
        state->temporaries.FreeFrom(0);
    }
}

BOOL CWnd::Attach(HWND hWnd) {
    if (hWnd == nullptr || m_hWnd != nullptr || FromHandlePermanent(hWnd) != nullptr) {
        return FALSE;
    }
    Windows().Insert(hWnd, this);
    m_hWnd = hWnd;
    return TRUE;
}

HWND CWnd::Detach() {
    HWND window = std::exchange(m_hWnd, nullptr);
    m_nFlags &= ~WF_DESTROYING;
    Windows().Erase(window, this);
    return window;
}

BOOL CWnd::SubclassWindow(HWND hWnd) {
    // The messages of another thread's window would not find the object.
    if (::GetWindowThreadProcessId(hWnd, nullptr) != ::GetCurrentThreadId() || !Attach(hWnd)) {
        return FALSE;
    }
    PreSubclassWindow();
    if (WndAccess::Subclass(*this)) {
        return TRUE;
    }
    Detach();
    return FALSE;
}

BOOL CWnd::SubclassDlgItem(UINT nID, CWnd* pParent) {
    return SubclassWindow(::GetDlgItem(pParent->m_hWnd, static_cast<int>(nID)));
}

BOOL CWnd::PreCreateWindow(CREATESTRUCTA& cs) {
    if (cs.lpszClass == nullptr) {
        cs.lpszClass = AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursorA(nullptr, IDC_ARROW),
                                           ::GetSysColorBrush(COLOR_WINDOW));
    }
    return cs.lpszClass != nullptr;
}

void CWnd::PreSubclassWindow() {}

void CWnd::PostNcDestroy() {}

namespace {

// Runs `create`, which makes a window, with the object bound to it. When there is no window in the
// end, the object gets its PostNcDestroy as if one had been there.
template <class Create>
HWND CreateBound(CWnd& wnd, Create create) {
    const WndGuard guard(&wnd);
    HWND window = nullptr;
    bool came = false;
    {
        const dlgfw::CreationHook hook(&wnd);
        window = create();
        came = hook.IsDone();
    }
    if (!guard.IsAlive()) {
        return nullptr;
    }
    if (window != nullptr && wnd.m_hWnd == window) {
        return window;
    }
    // Without the hook it is nobody's window.
    if (window != nullptr && !came) {
        ::DestroyWindow(window);
    }
    // A window that came and went has run through OnNcDestroy, unless its very creation was
    // refused.
    if (!came || wnd.m_hWnd != nullptr) {
        wnd.Detach();
        WndAccess::PostNcDestroy(wnd);
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
    const WndGuard guard(this);
    HWND parent = pParentWnd == nullptr ? nullptr : pParentWnd->m_hWnd;
    HWND window = CreateBound(*this, [=] {
        return ::CreateDialogIndirectParamA(hInst, lpDialogTemplate, parent, &DialogProc, 0);
    });
    if (window == nullptr) {
        return FALSE;
    }
    if ((m_nFlags & WF_CONTINUEMODAL) == 0) {
        ::DestroyWindow(window);
        return FALSE;
    }
    return TRUE;
}

BOOL CWnd::DestroyWindow() {
    return m_hWnd != nullptr && ::DestroyWindow(m_hWnd);
}
