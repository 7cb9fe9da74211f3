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
    char szLine[80];
    std::snprintf(szLine, sizeof(szLine),
                  "dlgfw: an exception ended the handler of message 0x%04X\n", message);
    ::OutputDebugStringA(szLine);
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
        if (--m_state.nDispatchDepth == 0 && m_state.nModalLoops == 0)
            m_state.temporaries.FreeFrom(m_nTemporaries);
    }

private:
    ThreadState& m_state;
    MSG m_outer;
    size_t m_nTemporaries = m_state.temporaries.Count();
};

// Reports the exception that a handler threw and sees that the window gets on without it.
void AfterException(CWnd* pWnd, const CWndGuard& guard, HWND hWnd, UINT message) noexcept {
    dlgfw::ReportException(message);
    if (message == WM_PAINT) {
        ::ValidateRect(hWnd, nullptr);  // or it would come again at once
    } else if (message == WM_INITDIALOG && guard.IsAlive()) {
        // CreateDlgIndirect sees the end of the modal state and gives the window up.
        CWndAccess::BreakModalLoop(*pWnd);
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
    if (entry.pnRegistered != nullptr && *entry.pnRegistered >= g_nFirstRegistered)
        return *entry.pnRegistered;
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
    CWnd* pWnd = CWnd::FromHandlePermanent(hWnd);
    if (message == WM_STILLTHERE && (pWnd == nullptr || (pWnd->m_nFlags & WF_DESTROYING) != 0)) {
        CWndAccess::OnStillThere(hWnd);
        return 0;
    }
    if (pWnd == nullptr)
        return ::DefWindowProcA(hWnd, message, wParam, lParam);
    message = CWndAccess::EndMessage(*pWnd, message);
    if (message == WM_DESTROY)
        CWndAccess::OnDestroying(*pWnd);
    const CWndGuard guard(pWnd);
    const LRESULT lFailed = message == WM_CREATE ? -1 : 0;  // -1: no window
    return mvp::Guarded(
        lFailed,
        [&] {
            const DispatchScope scope(ThreadState::Get(),
                                      MSG{hWnd, message, wParam, lParam, 0, {0, 0}});
            return CWndAccess::WindowProc(*pWnd, message, wParam, lParam);
        },
        [&] { AfterException(pWnd, guard, hWnd, message); });
}

const MSG* CWnd::GetCurrentMessage() {
    return &ThreadState::Get().lastMessage;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    const CWndGuard guard(this);
    LRESULT lResult = 0;
    if (!OnWndMsg(message, wParam, lParam, &lResult) && guard.IsAlive())
        lResult = DefWindowProc(message, wParam, lParam);
    return lResult;
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (m_pfnSuper != nullptr)
        return ::CallWindowProcA(m_pfnSuper, m_hWnd, message, wParam, lParam);
    return ::DefWindowProcA(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::Default() {
    const MSG message = *GetCurrentMessage();
    return DefWindowProc(message.message, message.wParam, message.lParam);
}

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    if (message == WM_COMMAND) {
        const BOOL bHandled = OnCommand(wParam, lParam);
        if (bHandled)
            *pResult = 1;
        return bHandled;
    }
    if (message == WM_NOTIFY)
        return lParam != 0 && OnNotify(wParam, lParam, pResult);

    const CWndGuard guard(this);
    const UINT nNumber = MapNumber(message);
    for (const AFX_MSGMAP* pMap = GetMessageMap(); pMap != nullptr;
         pMap = pMap->pfnGetBaseMap == nullptr ? nullptr : pMap->pfnGetBaseMap()) {
        for (const AFX_MSGMAP_ENTRY* p = pMap->lpEntries; p->pfnThunk != nullptr; ++p) {
            if (EntryNumber(*p) != nNumber)
                continue;
            if (p->pfnThunk(this, {message, wParam, lParam}, *pResult))
                return TRUE;
            if (!guard.IsAlive())
                return TRUE;
        }
    }
    return nNumber == WM_CTLCOLOR && ReflectLastMsg(reinterpret_cast<HWND>(lParam), pResult);
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT nID = LOWORD(wParam);
    auto* hWndCtrl = reinterpret_cast<HWND>(lParam);
    if (hWndCtrl == nullptr)
        return nID != 0 && OnCmdMsg(nID, CN_COMMAND);

    if (ThreadState::Get().hWndLocked == m_hWnd)
        return TRUE;
    const CWndGuard guard(this);
    if (ReflectLastMsg(hWndCtrl) || !guard.IsAlive())
        return TRUE;
    return nID != 0 && OnCmdMsg(nID, HIWORD(wParam));
}

BOOL CWnd::OnNotify(WPARAM, LPARAM lParam, LRESULT* pResult) {
    auto* pNMHDR = reinterpret_cast<NMHDR*>(lParam);
    if (ThreadState::Get().hWndLocked == m_hWnd)
        return TRUE;
    return ReflectLastMsg(pNMHDR->hwndFrom, pResult);
}

BOOL CWnd::ReflectLastMsg(HWND hWndChild, LRESULT* pResult) {
    CWnd* pWnd = FromHandlePermanent(hWndChild);
    return pWnd != nullptr && pWnd->SendChildNotifyLastMsg(pResult);
}

BOOL CWnd::SendChildNotifyLastMsg(LRESULT* pResult) {
    const MSG message = *GetCurrentMessage();
    return OnChildNotify(message.message, message.wParam, message.lParam, pResult);
}

BOOL CWnd::OnChildNotify(UINT, WPARAM, LPARAM, LRESULT*) {
    return FALSE;
}
