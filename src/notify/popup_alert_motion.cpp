// CPopupAlert: coming, staying and going. Where it stands and what comes next PopupMotion decides.
#include <windows.h>

#include "mvpingui/popup_alert.h"
#include "notify/popup_messages.h"
#include "platform/window_dpi.h"
#include "services/log.h"
#include "services/registry_readers.h"
#include "settings/settings.h"

namespace {

constexpr mvp::NumberSetting kBeep = mvp::settings::kNotificationBeep;
constexpr DWORD kBeepHertz = 750;
constexpr DWORD kBeepMilliseconds = 300;

mvp::PopupScreen ReadScreen(HWND hWnd) {
    RECT work{};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    return {static_cast<int>(work.left),   static_cast<int>(work.top),
            static_cast<int>(work.right),  static_cast<int>(work.bottom),
            GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN),
            mvp::WindowDpi(hWnd)};
}

// The user's choice, for the whole system.
bool IsAnimated() {
    BOOL animated = TRUE;
    SystemParametersInfoA(SPI_GETCLIENTAREAANIMATION, 0, &animated, 0);
    return animated != FALSE;
}

}  // namespace

void CPopupAlert::Show() {
    const mvp::LogScope scope("CPopupAlert::Show");
    if (m_hWnd == nullptr) {
        return;
    }
    const bool hidden = !m_motion.IsVisible();
    RunBusyBar(true);
    Obey(m_motion.Show(ReadScreen(m_hWnd), Skin(), IsAnimated()));
    if (hidden) {
        Announce();
    }
}

// A removed card calls on the thread of the events. The window's own thread does the work then, and
// nobody waits for it: it may be busy, or about to end the subscription and wait for this call.
void CPopupAlert::Hide() {
    if (m_hWnd != nullptr && GetWindowThreadProcessId(m_hWnd, nullptr) != GetCurrentThreadId()) {
        ::SendNotifyMessageA(m_hWnd, mvp::kHidePopupMessage, 0, 0);
        return;
    }
    const mvp::LogScope scope("CPopupAlert::Hide");
    const mvp::PopupOrders orders = m_motion.Hidden();
    if (m_hWnd != nullptr) {
        Obey(orders);
        RunBusyBar(false);
        // Its frame alone has a size, of which nothing is to be seen in the corner that it moves
        // to, neither now nor when it is shown again, before it moves away.
        SetLayeredWindowAttributes(m_hWnd, 0, 0, LWA_ALPHA);
        MoveWindow(0, 0, 0, 0);
        ShowWindow(SW_HIDE);
    }
    TellClosed();
}

void CPopupAlert::TellClosed() {
    if (m_hWndParent != nullptr) {
        ::PostMessageA(m_hWndParent, WM_POPUP_CLOSED, 0, 0);
    } else {
        vklogLog(g_szLogTag, kLogInfo, "CPopupAlert::Hide: m_hWndParent = NULL");
    }
    vklogLog(g_szLogTag, kLogDetail, "CPopupAlert::Hide: m_dwParentThreadID = %d ",
             static_cast<int>(m_dwParentThreadID));
    const DWORD thread = m_dwParentThreadID != 0 ? m_dwParentThreadID : GetCurrentThreadId();
    if (!PostThreadMessageA(thread, WM_POPUP_CLOSED, 0, 0)) {
        vklogLog(g_szLogTag, kLogError, "CPopupAlert::Hide: PostThreadMessage failed");
    }
}

void CPopupAlert::Obey(const mvp::PopupOrders& orders) {
    for (UINT_PTR timer = 1; timer <= 3; ++timer) {
        if ((orders.nKillTimers & (1U << timer)) != 0) {
            KillTimer(timer);
        }
    }
    if (orders.setTimer.id != mvp::PopupState::IDT_IDLE) {
        SetTimer(static_cast<UINT_PTR>(orders.setTimer.id), orders.setTimer.nMilliseconds);
    }
    if (orders.bHide) {
        Hide();
    }
    if (orders.bMove) {
        const mvp::PopupBounds place = m_motion.Bounds(Skin(), GetSystemMetrics(SM_CXDLGFRAME),
                                                       GetSystemMetrics(SM_CYDLGFRAME));
        SetWindowPos(nullptr, place.nLeft, place.nTop, place.nWidth, place.nHeight,
                     SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
    }
    // A card that is removed meanwhile has hidden it again.
    if (orders.alpha && m_motion.IsVisible()) {
        SetLayeredWindowAttributes(m_hWnd, 0, *orders.alpha, LWA_ALPHA);
    }
    if (orders.bShow && m_motion.IsVisible()) {
        ShowWindow(SW_SHOW);
    }
    if (orders.bRedraw) {
        RedrawWindow();
    }
    if (orders.bArrived) {
        SetAnimStatusToWaiting();
    }
}

void CPopupAlert::OnTimer(UINT_PTR nIDEvent) {
    const mvp::LogScope scope("CPopupAlert::OnTimer");
    if (nIDEvent < 1 || nIDEvent > 3) {
        CWnd::OnTimer(nIDEvent);
        return;
    }
    const bool inside = m_motion.AsksForCursor(nIDEvent) && IsCursorInside();
    Obey(m_motion.Tick(nIDEvent, inside, Skin()));
}

bool CPopupAlert::IsCursorInside() const {
    CPoint cursor;
    CRect window;
    GetWindowRect(&window);
    return GetCursorPos(&cursor) && IsPointOnArea(&cursor, &window);
}

bool CPopupAlert::IsPointOnArea(const CPoint* pPoint, const CRect* pRect) {
    const mvp::LogScope scope("CPopupAlert::IsPointOnArea");
    return pPoint != nullptr && pRect != nullptr && pRect->left < pPoint->x &&
           pPoint->x < pRect->right && pRect->top < pPoint->y && pPoint->y < pRect->bottom;
}

// A text that came too early is shown now. Without one, a popup whose password is still being
// fetched waits for it, not for the end of its stay.
void CPopupAlert::SetAnimStatusToWaiting() {
    const mvp::LogScope scope("CPopupAlert::SetAnimStatusToWaiting");
    if (m_pszPendingOtp != nullptr &&
        PostMessage(WM_POPUP_OTP_READY, 0, reinterpret_cast<LPARAM>(m_pszPendingOtp))) {
        m_pszPendingOtp = nullptr;
    }
    if (HasProgressBar()) {
        return;
    }
    DoBeep();
    Obey(m_motion.StartStay());
}

void CPopupAlert::DoBeep() {
    const mvp::LogScope scope("CPopupAlert::DoBeep");
    DWORD enabled = kBeep.nDefault;
    readDWORDFromRegistry_sz(kBeep.pszKey, kBeep.pszName, &enabled, kBeep.nDefault);
    if (enabled != 0) {
        Beep(kBeepHertz, kBeepMilliseconds);
    }
}

void CPopupAlert::FollowScreen() {
    if (m_motion.IsVisible()) {
        Obey(m_motion.ScreenChanged(ReadScreen(m_hWnd), Skin()));
    }
}
