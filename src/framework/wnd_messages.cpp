// CWnd: the way of a message from the window procedure to its handler.
#include <windows.h>

#include <atomic>
#include <cstdio>
#include <utility>

#include <dlgfw/message_map.h>
#include <dlgfw/wnd.h>

#include "framework/handle_maps.h"
#include "framework/wnd_access.h"
#include "platform/barrier.h"

using dlgfw::ThreadState;

namespace {

// The first of the numbers that RegisterWindowMessage gives out; stands in maps for all of them.
constexpr UINT g_nFirstRegistered = 0xC000;

void WriteDebugLine(UINT message) {
    char line[80];
    std::snprintf(line, sizeof(line), "dlgfw: an exception ended the handler of message 0x%04X\n",
                  message);
    ::OutputDebugStringA(line);
}

std::atomic<AFX_EXCEPTION_REPORTER> g_pfnReporter = &WriteDebugLine;

// The message is the current one until its handler returns; nested ones come and go meanwhile.
class DispatchScope {
public:
    DispatchScope(ThreadState& state, const MSG& message)
        : m_state(state), m_outer(std::exchange(state.lastMessage, message)) {
        ++m_state.nDispatchDepth;
    }
    DispatchScope(const DispatchScope&) = delete;
    DispatchScope& operator=(const DispatchScope&) = delete;
    ~DispatchScope() {
        m_state.lastMessage = m_outer;
        // With nobody of ours left on the stack but a plain message loop, temporaries made by the
        // handler are nobody's. Within a modal loop they go when it is idle.
        if (--m_state.nDispatchDepth == 0 && m_state.nModalLoops == 0) {
            m_state.temporaries.FreeFrom(m_nTemporaries);
        }
    }

private:
    ThreadState& m_state;
    MSG m_outer;
    size_t m_nTemporaries = m_state.temporaries.Count();
};

// Reports the exception that a handler threw and sees that the window gets on without it.
void AfterException(CWnd* pWnd, const WndGuard& guard, HWND hWnd, UINT message) noexcept {
    dlgfw::ReportException(message);
    if (message == WM_PAINT) {
        ::ValidateRect(hWnd, nullptr);  // or it would come again at once
    } else if (message == WM_INITDIALOG && guard.IsAlive()) {
        // CreateDlgIndirect sees the end of the modal state and gives the window up.
        WndAccess::BreakModalLoop(*pWnd);
    } else if (message == WM_NCDESTROY && guard.IsAlive() && pWnd->m_hWnd == hWnd) {
        pWnd->Detach();
    }
}

// The messages that ask for a control's colours share one number in message maps.
UINT MapNumber(UINT message) {
    const auto isCtlColor = [](UINT n) { return n >= WM_CTLCOLORMSGBOX && n <= WM_CTLCOLORSTATIC; };
    return isCtlColor(message) ? WM_CTLCOLOR : message;
}

// What an entry answers. A registered message whose registration failed, or has yet to come,
// answers nothing.
UINT EntryNumber(const AFX_MSGMAP_ENTRY& entry) {
    if (entry.pnRegistered != nullptr && *entry.pnRegistered >= g_nFirstRegistered) {
        return *entry.pnRegistered;
    }
    return entry.nMessage;
}

}  // namespace

void dlgfw::ReportException(UINT message) noexcept {
    g_pfnReporter.load()(message);
}

AFX_EXCEPTION_REPORTER AfxSetExceptionReporter(AFX_EXCEPTION_REPORTER pfnReporter) {
    return g_pfnReporter.exchange(pfnReporter != nullptr ? pfnReporter : &WriteDebugLine);
}

LRESULT CALLBACK AfxWndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    CWnd* window = CWnd::FromHandlePermanent(hWnd);
    if (message == WM_STILLTHERE &&
        (window == nullptr || (window->m_nFlags & WF_DESTROYING) != 0)) {
        WndAccess::OnStillThere(hWnd);
        return 0;
    }
    if (window == nullptr) {
        return ::DefWindowProcA(hWnd, message, wParam, lParam);
    }
    message = WndAccess::EndMessage(*window, message);
    if (message == WM_DESTROY) {
        WndAccess::OnDestroying(*window);
    }
    const WndGuard guard(window);
    const LRESULT failed = message == WM_CREATE ? -1 : 0;  // -1: no window
    return mvp::Guarded(
        failed,
        [&] {
            const DispatchScope scope(ThreadState::Get(),
                                      MSG{hWnd, message, wParam, lParam, 0, {0, 0}});
            return WndAccess::WindowProc(*window, message, wParam, lParam);
        },
        [&] { AfterException(window, guard, hWnd, message); });
}

const MSG* CWnd::GetCurrentMessage() {
    return &ThreadState::Get().lastMessage;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const WndGuard guard(this);
    LRESULT result = 0;
    if (!OnWndMsg(message, wParam, lParam, &result) && guard.IsAlive()) {
        result = DefWindowProc(message, wParam, lParam);
    }
    return result;
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (m_pfnSuper != nullptr) {
        return ::CallWindowProcA(m_pfnSuper, m_hWnd, message, wParam, lParam);
    }
    return ::DefWindowProcA(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::Default() {
    const MSG message = *GetCurrentMessage();
    return DefWindowProc(message.message, message.wParam, message.lParam);
}

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    if (message == WM_COMMAND) {
        const BOOL handled = OnCommand(wParam, lParam);
        if (handled) {
            *pResult = 1;
        }
        return handled;
    }
    if (message == WM_NOTIFY) {
        return lParam != 0 && OnNotify(wParam, lParam, pResult);
    }

    const WndGuard guard(this);
    const UINT number = MapNumber(message);
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr;
         map = map->pfnGetBaseMap == nullptr ? nullptr : map->pfnGetBaseMap()) {
        for (const AFX_MSGMAP_ENTRY* p = map->lpEntries; p->pfnThunk != nullptr; ++p) {
            if (EntryNumber(*p) != number) {
                continue;
            }
            if (p->pfnThunk(this, {message, wParam, lParam}, *pResult)) {
                return TRUE;
            }
            if (!guard.IsAlive()) {
                return TRUE;
            }
        }
    }
    return number == WM_CTLCOLOR && ReflectLastMsg(reinterpret_cast<HWND>(lParam), pResult);
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    auto* control = reinterpret_cast<HWND>(lParam);
    if (control == nullptr) {
        return id != 0 && OnCmdMsg(id, CN_COMMAND);
    }

    if (ThreadState::Get().hWndLocked == m_hWnd) {
        return TRUE;
    }
    const WndGuard guard(this);
    if (ReflectLastMsg(control) || !guard.IsAlive()) {
        return TRUE;
    }
    return id != 0 && OnCmdMsg(id, HIWORD(wParam));
}

BOOL CWnd::OnNotify(WPARAM, LPARAM lParam, LRESULT* pResult) {
    auto* nmhdr = reinterpret_cast<NMHDR*>(lParam);
    if (ThreadState::Get().hWndLocked == m_hWnd) {
        return TRUE;
    }
    return ReflectLastMsg(nmhdr->hwndFrom, pResult);
}

BOOL CWnd::ReflectLastMsg(HWND hWndChild, LRESULT* pResult) {
    CWnd* window = FromHandlePermanent(hWndChild);
    return window != nullptr && window->SendChildNotifyLastMsg(pResult);
}

BOOL CWnd::SendChildNotifyLastMsg(LRESULT* pResult) {
    const MSG message = *GetCurrentMessage();
    return OnChildNotify(message.message, message.wParam, message.lParam, pResult);
}

BOOL CWnd::OnChildNotify(UINT, WPARAM, LPARAM, LRESULT*) {
    return FALSE;
}
