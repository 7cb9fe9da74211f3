// CPopupAlert: the one-time password. A busy bar runs while a routine of the host fetches it; then
// it takes the message's place.
#include <windows.h>

#include <algorithm>
#include <utility>

#include "mvpingui/popup_alert.h"
#include "notify/popup_controls.h"
#include "notify/popup_text.h"
#include "notify/progress_bar.h"
#include "platform/barrier.h"
#include "platform/handle.h"
#include "platform/resolution.h"
#include "resources/resource_numbers.h"
#include "richtext/control/html_static.h"
#include "services/card_removed_message.h"
#include "services/card_removed_subscriber.h"
#include "services/log.h"

namespace {

constexpr DWORD kBarStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS;
constexpr UINT_PTR kBarId = 45;
// What stands above the rest comes before it in the order of reading, though it is made later.
constexpr UINT kReadFirst = SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE;
// In pixels of 96 dpi.
constexpr int kBarLeft = 15;
constexpr int kBarTop = 20;
constexpr int kBarHeight = 15;

constexpr COLORREF kPlateColour = RGB(0x17, 0x4A, 0x5C);
constexpr int kPlateGap = 2;     // towards the icon
constexpr int kPlateCorner = 8;  // diameter

}  // namespace

void CPopupAlert::SetThreadRoutine(LPTHREAD_START_ROUTINE pfnRoutine) {
    const mvp::LogScope scope("CPopupAlert::SetThreadRoutine");
    if (pfnRoutine == nullptr || m_hWnd == nullptr) {
        vklogLog(g_szLogTag, kLogError, "CPopupAlert::SetThreadRoutine: no routine or no window");
        return;
    }
    mvp::Guarded(
        [&] {
            StartBusyBar();
            WatchReader();
        },
        mvp::LogException("CPopupAlert::SetThreadRoutine"));
    const mvp::KernelHandle thread(CreateThread(nullptr, 0, pfnRoutine, m_hWnd, 0, nullptr));
    if (!thread) {
        vklogLog(g_szLogTag, kLogError, "CPopupAlert::SetThreadRoutine: no thread: 0x%x",
                 static_cast<unsigned>(GetLastError()));
    }
}

// The message moves below the bar, which would cover it. The links come with the password. The bar
// goes from side to side of the skin: before it is shown the window has no width of its own.
void CPopupAlert::StartBusyBar() {
    EndBusyBar();
    const int dpi = Dpi();
    const int left = mvp::PixelsAt(dpi, kBarLeft);
    m_hProgressBar =
        CreateWindowExA(0, mvp::kProgressBarClass, "", kBarStyle, left, mvp::PixelsAt(dpi, kBarTop),
                        m_nSkinWidth - 2 * left, mvp::PixelsAt(dpi, kBarHeight), m_hWnd,
                        reinterpret_cast<HMENU>(kBarId), GetModuleHandleA(nullptr), nullptr);
    if (!HasProgressBar()) {
        vklogLog(g_szLogTag, kLogError, "CPopupAlert::SetThreadRoutine: no progress bar: 0x%x",
                 static_cast<unsigned>(GetLastError()));
        return;
    }
    ::SetWindowTextA(m_hProgressBar, SpokenText().c_str());
    ::SetWindowPos(m_hProgressBar, HWND_TOP, 0, 0, 0, 0, kReadFirst);
    RunBusyBar(m_motion.IsVisible());
    if (!m_bFileSkin) {
        PrepareBackgroundBitmap(IDB_POPUP_SKIN, true, true);
    }
    ShowLinks(false, false);
    if (m_pMessage != nullptr) {
        CRect place = mvp::RectOf(m_bands.text);
        // The words begin where the bar begins.
        place.left = mvp::PixelsAt(dpi, kBarLeft - mvp::kTextMargins.cx);
        place.top = mvp::PixelsAt(dpi, kBarTop + kBarHeight);
        m_pMessage->MoveWindow(&place);
    }
}

// Out of sight it stands still.
void CPopupAlert::RunBusyBar(bool bRun) {
    if (HasProgressBar()) {
        ::EnableWindow(m_hProgressBar, bRun ? TRUE : FALSE);
    }
}

void CPopupAlert::EndBusyBar() {
    if (HasProgressBar()) {
        ::DestroyWindow(m_hProgressBar);
    }
    m_hProgressBar = nullptr;
}

void CPopupAlert::WatchReader() {
    if (m_strReader.IsEmpty()) {
        vklogLog(g_szLogTag, kLogInfo, "Reader name empty => no register to vkevent");
        return;
    }
    vklogLog(g_szLogTag, kLogInfo, "Reader name (%s) => register to vkevent",
             static_cast<LPCSTR>(m_strReader));
    m_pReaderEvents =
        new VKDelegateSubscriberCardRemoved(this, mvp::g_nCardRemovedMessage, m_strReader);
}

LRESULT CPopupAlert::OnOtpOk(WPARAM /*wParam*/, LPARAM lParam) {
    const mvp::LogScope scope("CPopupAlert::OnOtpOk");
    mvp::PopupText text = mvp::TakePopupText(lParam);
    // A routine that an earlier notice has started may come late.
    if (text == nullptr || m_iWndType != DIALOG_POPUP_CARD_OTP) {
        vklogLog(g_szLogTag, kLogError, "CPopupAlert::OnOtpOk: no text that is waited for");
        return 0;
    }
    if (m_motion.State() != mvp::PopupState::IDT_WAITING) {
        vklogLog(g_szLogTag, kLogInfo, "m_nAnimStatus != IDT_WAITING => Treat this event later");
        // One that was kept before is left alone: it may be the same, from a routine that posts
        // twice.
        m_pszPendingOtp = text.release();
        return 0;
    }
    ShowPassword(mvp::View(text));
    Obey(m_motion.StartStay());
    return 0;
}

// Its time runs from now on.
void CPopupAlert::ShowPassword(std::string_view text) {
    EndBusyBar();
    PrepareBackgroundBitmap(IDB_POPUP_SKIN, true, true);
    const CRect place = mvp::RectOf(mvp::PlacePassword(m_bands));
    m_pMessage.reset();
    m_pMessage = CreateText(place, mvp::kTextId, mvp::kTextMargins);
    m_pMessage->SetWindowPos(&CWnd::wndTop, 0, 0, 0, 0, kReadFirst);
    m_bPassword = true;
    ColourMessage();
    m_pMessage->SetWindowText(CString(text.data(), static_cast<int>(text.size())));
    CRect plate = place;
    plate.bottom =
        std::min(plate.bottom, plate.top + m_pMessage->Drawer().Measure(place.Width()).cy);
    LayPlate(plate);
    RedrawWindow();
    m_pMessage->RedrawWindow();
    ShowLinks(true, m_bDisplayHelp != FALSE);
    Announce();
}

// Behind a white text on a light skin, as tall as the text, and clear of the icon.
void CPopupAlert::LayPlate(const RECT& place) {
    const mvp::MemoryDc dc(CreateCompatibleDC(nullptr));
    const mvp::DcSelection selection(dc.get(), m_background.m_hObject);
    const mvp::Brush brush(CreateSolidBrush(kPlateColour));
    const mvp::DcSelection filled(dc.get(), brush.get());
    const mvp::DcSelection outline(dc.get(), GetStockObject(NULL_PEN));
    const int corner = mvp::PixelsAt(Dpi(), kPlateCorner);
    RoundRect(dc.get(), place.left + mvp::PixelsAt(Dpi(), kPlateGap), place.top, place.right,
              place.bottom, corner, corner);
}

// Texts that nobody will see any more: one that was kept, and those that were posted and have not
// been taken yet.
void CPopupAlert::FreeOtp() {
    mvp::TakePopupText(reinterpret_cast<LPARAM>(std::exchange(m_pszPendingOtp, nullptr)));
    MSG message;
    while (m_hWnd != nullptr && PeekMessageA(&message, m_hWnd, WM_POPUP_OTP_READY,
                                             WM_POPUP_OTP_READY, PM_REMOVE | PM_QS_POSTMESSAGE)) {
        // The thread's end is told whatever is asked for.
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        mvp::TakePopupText(message.lParam);
    }
}
