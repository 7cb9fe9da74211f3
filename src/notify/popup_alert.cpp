// CPopupAlert: its life, and what comes to it from outside. The way it moves stands in
// popup_alert_motion.cpp, what it shows in popup_alert_view.cpp.
#include "mvpingui/popup_alert.h"

#include <utility>

#include <dlgfw/message_map.h>

#include "notify/popup_kinds.h"
#include "notify/popup_messages.h"
#include "notify/popup_text.h"
#include "platform/barrier.h"
#include "platform/high_contrast.h"
#include "richtext/control/html_static.h"
#include "services/card_removed_message.h"
#include "services/card_removed_subscriber.h"
#include "services/log.h"
#include "services/named_accessible.h"
#include "services/registry_readers.h"
#include "settings/settings.h"

namespace {

constexpr mvp::TextSetting kHelpPath = mvp::settings::kHelpPath;
constexpr char kCardEventWindow[] = "vkcrdsub";
constexpr DWORD kWindowStyle = WS_POPUP | WS_VISIBLE | WS_THICKFRAME | 0xC;
constexpr DWORD kExtendedStyle = WS_EX_WINDOWEDGE | WS_EX_TOPMOST;

}  // namespace

BEGIN_MESSAGE_MAP(CPopupAlert, CWnd)
    ON_WM_CREATE()
    ON_REGISTERED_MESSAGE(mvp::g_nCardRemovedMessage, &CPopupAlert::OnCardEvent)
    ON_WM_DESTROY()
    ON_WM_ERASEBKGND()
    ON_WM_TIMER()
    ON_MESSAGE(WM_POPUP_LINK_CLICKED, &CPopupAlert::OnPopupAlertClicked)
    ON_MESSAGE(WM_POPUP_HELP_CLICKED, &CPopupAlert::OnPopupAlertHelpClicked)
    ON_MESSAGE(WM_POPUP_OTP_READY, &CPopupAlert::OnOtpOk)
    ON_WM_NCHITTEST()
END_MESSAGE_MAP()

// What a card's removal takes down.
class CPopupAlert::CardRemovedTarget final : public CHideable {
public:
    explicit CardRemovedTarget(CPopupAlert& popup) : m_popup(popup) {}
    void Hide() override { m_popup.Hide(); }

private:
    CPopupAlert& m_popup;
};

void CPopupAlert::ReleaseAccessible::operator()(mvp::NamedAccessible* pAccessible) const noexcept {
    mvp::NamedAccessible::GiveUp()(pAccessible);
}

CPopupAlert::CPopupAlert() {
    const mvp::LogScope scope("CPopupAlert::CPopupAlert");
}

// The subscriber goes while the window still stands: an event that is being delivered hides it.
CPopupAlert::~CPopupAlert() {
    const mvp::LogScope scope("CPopupAlert::~CPopupAlert");
    m_pMessage.reset();
    m_pCloseLink.reset();
    m_pHelpLink.reset();
    vklogLog(g_szLogTag, kLogInfo,
             "CPopupAlert::~CPopupAlert: deleting subscriber (card removal): 0x%x",
             mvp::LowBits(m_pCardRemoved.get()));
    m_pCardRemoved.reset();
    m_pTitle.reset();
    CPopupAlert::DestroyWindow();
}

int CPopupAlert::Create(HWND hWndParent) {
    const mvp::LogScope scope("CPopupAlert::Create");
    if (m_bHasBeenCreated) {
        vklogLog(g_szLogTag, kLogInfo, "Calling OnDestroy()");
        DestroyWindow();
    }
    m_motion.Created();
    m_hWndParent = hWndParent;
    const bool created = mvp::Guarded(
        false,
        [&] {
            const LPCSTR name = AfxRegisterWndClass(0, LoadCursorA(nullptr, IDC_ARROW),
                                                    GetSysColorBrush(COLOR_WINDOW));
            vklogLog(g_szLogTag, kLogInfo, "Calling CreateEx()");
            return name != nullptr && CreateEx(kExtendedStyle, name, "", kWindowStyle, 0, 0, 0, 0,
                                               hWndParent, nullptr) != FALSE;
        },
        mvp::LogException("CPopupAlert::Create"));
    m_bHasBeenCreated = created ? TRUE : FALSE;
    vklogLog(g_szLogTag, kLogInfo, "m_bHasBeenCreated = %d", m_bHasBeenCreated);
    if (created) {
        ModifyStyleEx(0, WS_EX_LAYERED);
    }
    return m_bHasBeenCreated;
}

int CPopupAlert::OnCreate(LPCREATESTRUCTA pCreate) {
    const mvp::LogScope scope("CPopupAlert::OnCreate");
    if (CWnd::OnCreate(pCreate) == -1) {
        return -1;
    }
    m_hHandCursor = LoadCursorA(nullptr, IDC_HAND);
    m_bHighContrast = mvp::IsHighContrast();
    return 0;
}

void CPopupAlert::OnDestroy() {
    const mvp::LogScope scope("CPopupAlert::OnDestroy");
    // Events find the window as long as they are heard of.
    m_pCardRemoved.reset();
    FreeOtp();
    m_pAccessible.reset();
    CWnd::OnDestroy();
    m_hProgressBar = nullptr;
    m_bHasBeenCreated = FALSE;
}

bool CPopupAlert::InitWindow(HWND hWnd, int iWndType, DWORD dwParentThreadID) {
    const mvp::LogScope scope("CPopupAlert::InitWindow");
    m_iWndType = iWndType;
    m_dwParentThreadID = dwParentThreadID;
    return mvp::Guarded(
        false,
        [&] {
            CString text;
            DWORD duration = 0;
            ForgetLastNotice();
            m_bDisplayHelp = GetDisplayHelpValue() ? TRUE : FALSE;
            const bool result = DressAs(iWndType, text, duration);
            if (iWndType == DIALOG_POPUP_CARD_OTP) {
                text = std::exchange(m_strOtpMessage, CString());
            } else if (iWndType == DIALOG_POPUP_CARD_ALERT) {
                WatchCards();
            }
            m_csText = text;
            m_motion.SetStay(duration);
            CreateControls(iWndType);
            if (hWnd != m_hWndParent && ::IsWindow(hWnd)) {
                m_hWndParent = hWnd;
                m_pParentWnd = CWnd::FromHandlePermanent(hWnd);
                ::SetParent(m_hWnd, hWnd);
            }
            return result && m_hWnd != nullptr;
        },
        mvp::LogException("CPopupAlert::InitWindow"));
}

// What was begun for another notice ends: its watch, its password, and the bar that waits for one.
void CPopupAlert::ForgetLastNotice() {
    m_pCardRemoved.reset();
    FreeOtp();
    if (m_iWndType != DIALOG_POPUP_CARD_OTP) {
        EndBusyBar();
    }
}

void CPopupAlert::WatchCards() {
    vklogLog(g_szLogTag, kLogInfo, "CPopupAlert::InitWindow: creating subscriber (card removal)");
    if (!m_pCardRemovedTarget) {
        m_pCardRemovedTarget = std::make_unique<CardRemovedTarget>(*this);
    }
    m_pCardRemoved = std::make_unique<CCardRemoved>(m_pCardRemovedTarget.get());
    vklogLog(g_szLogTag, kLogInfo,
             "CPopupAlert::InitWindow: subscriber (card removal) created: 0x%x",
             mvp::LowBits(m_pCardRemoved.get()));
}

bool CPopupAlert::GetDisplayHelpValue() {
    const mvp::LogScope scope("CPopupAlert::GetDisplayHelpValue");
    CString path;
    const bool shown = readStringFromRegistry_sz(kHelpPath.pszKey, kHelpPath.pszName, &path) == 0;
    vklogLog(g_szLogTag, kLogInfo, "GetDisplayHelpValue (%d)", shown ? 1 : 0);
    return shown;
}

void CPopupAlert::SetMessage(const char* pszMessage) {
    const mvp::LogScope scope("CPopupAlert::SetMessage");
    mvp::Guarded([&] { m_strOtpMessage = pszMessage; },
                 mvp::LogException("CPopupAlert::SetMessage"));
}

void CPopupAlert::SetReader(const char* pszReader) {
    const mvp::LogScope scope("CPopupAlert::SetReader");
    mvp::Guarded([&] { m_strReader = pszReader; }, mvp::LogException("CPopupAlert::SetReader"));
}

LRESULT CPopupAlert::OnCardEvent(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    const mvp::LogScope scope("CPopupAlert::OnCardEvent");
    Hide();
    return 0;
}

LRESULT CPopupAlert::OnPopupAlertClicked(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    const mvp::LogScope scope("CPopupAlert::OnPopupAlertClicked");
    Hide();
    return 0;
}

LRESULT CPopupAlert::OnPopupAlertHelpClicked(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    const mvp::LogScope scope("CPopupAlert::OnPopupAlertHelpClicked");
    const HWND service = ::FindWindowA(nullptr, kCardEventWindow);
    if (service == nullptr) {
        return 0;
    }
    const mvp::PopupKind kind = mvp::PopupKindOf(m_iWndType);
    if (!kind.IsKnown()) {
        vklogLog(g_szLogTag, kLogInfo, "m_iWndType = %d", m_iWndType);
        return 0;
    }
    vklogLog(g_szLogTag, kLogInfo, "%s", kind.pszHelpLog);
    ::PostMessageA(service, WM_POPUP_SHOW_HELP, static_cast<WPARAM>(kind.nHelpTopic), 0);
    return 0;
}

LRESULT CPopupAlert::OnNcHitTest(CPoint point) {
    const mvp::LogScope scope("CPopupAlert::OnNcHitTest");
    const LRESULT place = CWnd::OnNcHitTest(point);
    return place == HTNOWHERE || place == HTTRANSPARENT ? place : HTCLIENT;
}

LRESULT CPopupAlert::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_MOUSEACTIVATE:
            return MA_NOACTIVATE;
        case WM_WINDOWPOSCHANGING:
            reinterpret_cast<WINDOWPOS*>(lParam)->flags |= SWP_NOACTIVATE;
            break;
        case WM_SETTINGCHANGE:
            FollowScreen();
            FollowColours();
            break;
        case WM_DISPLAYCHANGE:
            FollowScreen();
            break;
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED:
            FollowColours();
            break;
        case WM_GETOBJECT:
            if (static_cast<LONG>(lParam) == OBJID_CLIENT && (m_nFlags & WF_DESTROYING) == 0) {
                return AnswerGetObject(wParam);
            }
            break;
        case mvp::kHidePopupMessage:
            Hide();
            return 0;
        default:
            break;
    }
    return CWnd::WindowProc(message, wParam, lParam);
}
