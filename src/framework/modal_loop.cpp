// CWnd: the modal loop, and how a message is translated and dispatched.
#include <algorithm>
#include <utility>

#include <dlgfw/wnd.h>

#include "framework/wnd_access.h"

using dlgfw::ThreadState;

namespace {

enum class Pumped { Dispatched, Quit, Failed };

// Takes one message and hands it on. At WM_QUIT the message's wParam is the exit code.
Pumped PumpMessage(MSG& message) {
    const BOOL got = ::GetMessageA(&message, nullptr, 0, 0);
    if (got == 0) {
        return Pumped::Quit;
    }
    if (got < 0) {
        return Pumped::Failed;
    }
    if (!AfxPreTranslateMessage(&message)) {
        ::TranslateMessage(&message);
        ::DispatchMessageA(&message);
    }
    return Pumped::Dispatched;
}

bool IsQueueEmpty() {
    MSG message;
    return !::PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);
}

// Whether the window should be told of idleness again after this message: not for those that the
// system repeats while nothing happens.
class IdleFilter {
public:
    bool EndsIdle(const MSG& message) {
        constexpr UINT caretTimer = 0x0118;
        if (message.message == WM_PAINT || message.message == caretTimer) {
            return false;
        }
        if (message.message != WM_MOUSEMOVE && message.message != WM_NCMOUSEMOVE) {
            return true;
        }
        const bool moved = m_lastPoint != message.pt || m_nLastMessage != message.message;
        m_lastPoint = message.pt;
        m_nLastMessage = message.message;
        return moved;
    }

private:
    CPoint m_lastPoint;
    UINT m_nLastMessage = 0;
};

// Counts the loop and, when it ends in whatever way, takes its flags off the window.
class ModalLoopScope {
public:
    ModalLoopScope(CWnd* pWnd, const WndGuard& guard) : m_pWnd(pWnd), m_guard(guard) {
        m_pWnd->m_nFlags |= WF_MODALLOOP | WF_CONTINUEMODAL;
        ++m_state.nModalLoops;
    }
    ModalLoopScope(const ModalLoopScope&) = delete;
    ModalLoopScope& operator=(const ModalLoopScope&) = delete;
    ~ModalLoopScope() {
        --m_state.nModalLoops;
        FreeTemporaries();
        if (m_guard.IsAlive()) {
            m_pWnd->m_nFlags &= ~(WF_MODALLOOP | WF_CONTINUEMODAL);
        }
    }

    // Those made since the loop began: what is older may belong to whoever called the loop.
    void FreeTemporaries() { m_state.temporaries.FreeFrom(m_nTemporaries); }

private:
    ThreadState& m_state = ThreadState::Get();
    CWnd* m_pWnd;
    const WndGuard& m_guard;
    size_t m_nTemporaries = m_state.temporaries.Count();
};

// What a modal loop does while its queue is empty.
class IdleWork {
public:
    IdleWork(CWnd* pWnd, DWORD dwFlags)
        : m_pWnd(pWnd),
          m_hWndParent(::GetParent(pWnd->m_hWnd)),
          m_dwFlags(dwFlags),
          m_bShow((dwFlags & MLF_SHOWONIDLE) != 0 && (pWnd->GetStyle() & WS_VISIBLE) == 0) {}

    // One step; whether another one is wanted. The caller looks after the window's life.
    bool Step() {
        if (std::exchange(m_bShow, false)) {
            m_pWnd->ShowWindow(SW_SHOWNORMAL);
            return true;
        }
        if (std::exchange(m_bTellParent, false) && (m_dwFlags & MLF_NOIDLEMSG) == 0 &&
            m_hWndParent != nullptr) {
            ::SendMessageA(m_hWndParent, WM_ENTERIDLE, MSGF_DIALOGBOX,
                           reinterpret_cast<LPARAM>(m_pWnd->m_hWnd));
            return true;
        }
        return m_pWnd->SendMessage(WM_KICKIDLE, MSGF_DIALOGBOX, m_nCount++) != 0;
    }

    void Restart() {
        m_bTellParent = true;
        m_nCount = 0;
    }

private:
    CWnd* m_pWnd;
    HWND m_hWndParent;
    DWORD m_dwFlags;
    bool m_bShow;
    bool m_bTellParent = true;
    LPARAM m_nCount = 0;
};

}  // namespace

int CWnd::RunModalLoop(DWORD dwFlags) {
    const WndGuard guard(this);
    ModalLoopScope scope(this, guard);
    const auto goesOn = [&] { return guard.IsAlive() && ContinueModal(); };
    IdleWork idle(this, dwFlags);
    IdleFilter filter;
    MSG message = {};

    bool isIdle = true;
    while (goesOn()) {
        if (isIdle && IsQueueEmpty()) {
            // A message that was sent meanwhile may have ended the loop.
            if (goesOn()) {
                isIdle = idle.Step();
            }
            scope.FreeTemporaries();
            continue;
        }
        switch (PumpMessage(message)) {
            case Pumped::Dispatched:
                break;
            case Pumped::Quit:
                ::PostQuitMessage(static_cast<int>(message.wParam));
                return -1;
            case Pumped::Failed:
                return -1;
        }
        if (filter.EndsIdle(message)) {
            isIdle = true;
            idle.Restart();
        }
    }
    return guard.IsAlive() ? m_nModalResult : -1;
}

BOOL CWnd::ContinueModal() {
    return (m_nFlags & WF_CONTINUEMODAL) != 0;
}

void CWnd::EndModalLoop(int nResult) {
    // A window that is on its way out gives no other answer any more.
    if ((m_nFlags & WF_DESTROYING) != 0) {
        return;
    }
    m_nModalResult = nResult;
    m_nFlags &= ~WF_CONTINUEMODAL;
    // The call may come out of a sent message, which leaves the loop waiting.
    if ((m_nFlags & WF_MODALLOOP) != 0) {
        PostMessage(WM_NULL);
    }
}

BOOL CWnd::PreTranslateMessage(MSG*) {
    return FALSE;
}

BOOL AfxPreTranslateMessage(MSG* pMsg) {
    for (HWND window = pMsg->hwnd; window != nullptr; window = ::GetParent(window)) {
        CWnd* target = CWnd::FromHandlePermanent(window);
        if (target != nullptr && target->PreTranslateMessage(pMsg)) {
            return TRUE;
        }
    }
    return FALSE;
}
