// What the parts of CWnd's implementation share: ways to its private members, the watch for its
// deletion, the binding at creation, the report of exceptions.
#pragma once

#include <dlgfw/wnd.h>

#include "framework/thread_state.h"

// The window procedure of every bound window.
LRESULT CALLBACK AfxWndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

// Knows whether a window object still exists after foreign code ran. Lives on the stack.
class WndGuard {
public:
    explicit WndGuard(CWnd* pWnd) noexcept;
    WndGuard(const WndGuard&) = delete;
    WndGuard& operator=(const WndGuard&) = delete;
    ~WndGuard();

    bool IsAlive() const noexcept { return m_pWnd != nullptr; }

private:
    friend class WndAccess;
    CWnd* m_pWnd;
    WndGuard* m_pNext;
};

// Posted to a window that is being destroyed, which takes the message with it.
constexpr UINT WM_STILLTHERE = 0x037E;

class WndAccess {
public:
    static WndGuard*& Guards(CWnd& wnd) noexcept { return wnd.m_pGuards; }
    // From the destructor: tells every guard.
    static void OnDeleted(CWnd& wnd) noexcept;

    static LRESULT WindowProc(CWnd& wnd, UINT message, WPARAM wParam, LPARAM lParam) {
        return wnd.WindowProc(message, wParam, lParam);
    }
    static void PostNcDestroy(CWnd& wnd) { wnd.PostNcDestroy(); }
    // Ends the window's modal loop, if there is one and it was not told to end before, with -1.
    static void BreakModalLoop(CWnd& wnd) noexcept;

    // What a message about the window's end stands for. Whoever sends WM_NCDESTROY alone is not the
    // system, and the handlers of WM_DESTROY have to run first.
    static UINT EndMessage(const CWnd& wnd, UINT message) noexcept {
        const bool first = (wnd.m_nFlags & WF_DESTROYING) == 0;
        return message == WM_NCDESTROY && first ? WM_DESTROY : message;
    }
    // Before the handlers of WM_DESTROY.
    static void OnDestroying(CWnd& wnd) noexcept;
    // A window got the message that OnDestroying posted to it: it was not destroyed.
    static void OnStillThere(HWND hWnd);

    // Makes the object the window's, with PreSubclassWindow between.
    static void Bind(CWnd& wnd, HWND hWnd);
    // False when the window is not of this process.
    static bool Subclass(CWnd& wnd);
    static void ForgetWindowProc(CWnd& wnd) noexcept { wnd.m_pfnSuper = nullptr; }
};

namespace dlgfw {

// Binds an object to the next window that this thread creates.
class CreationHook {
public:
    explicit CreationHook(CWnd* pWnd);
    CreationHook(const CreationHook&) = delete;
    CreationHook& operator=(const CreationHook&) = delete;
    ~CreationHook();

    // Whether a window came.
    bool IsDone() const noexcept { return m_state.pCreating != m_pWnd; }

private:
    ThreadState& m_state;
    CWnd* m_pWnd;
    CWnd* m_pOuter;
    HHOOK m_hOuterHook;
};

// Inside a catch block.
void ReportException(UINT message) noexcept;

}  // namespace dlgfw
