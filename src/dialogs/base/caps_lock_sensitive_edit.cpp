#include "mvpingui/caps_lock_sensitive_edit.h"

#include <commctrl.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

#include <dlgfw/message_map.h>

#include "dialogs/base/caps_lock_balloon.h"
#include "dialogs/base/secret_accessible.h"
#include "dialogs/base/secret_field.h"
#include "dialogs/base/shown_secret.h"
#include "platform/barrier.h"
#include "platform/own_module.h"
#include "platform/window_dpi.h"
#include "resources/resource_numbers.h"
#include "services/log.h"
#include "services/resource_module.h"

BEGIN_MESSAGE_MAP(CCapsLockSensitiveEdit, CEdit)
    ON_WM_DESTROY()
    ON_WM_SETFOCUS()
    ON_WM_KILLFOCUS()
    ON_WM_KEYUP()
    ON_WM_PAINT()
    ON_MESSAGE(WM_GETOBJECT, &CCapsLockSensitiveEdit::OnGetObject)
END_MESSAGE_MAP()

namespace {

constexpr char kDefaultTitle[] = "Caps Lock is On";
constexpr char kDefaultPinWarning[] =
    "Having Caps Lock on may cause you to enter your PIN incorrectly.\r\n\r\n"
    "You should press Caps Lock to turn it off before entering your PIN.";
constexpr char kDefaultPasswordWarning[] =
    "Having Caps Lock on may cause you to enter your password incorrectly.\r\n\r\n"
    "You should press Caps Lock to turn it off before entering your password.";

// In pixels of 96 dpi.
constexpr int kLargestTipWidth = 300;
// A point of the edit that the balloon takes for the pointer's place.
constexpr int kPointerOffset = 5;
// The icon of the balloon's title.
constexpr WPARAM kWarningIcon = 2;

// Reserves room for the longest text a tool may have.
constexpr std::size_t kToolTextCapacity = 1040;

template <std::size_t Size>
void LoadText(UINT nId, const char* pszDefault, char (&text)[Size]) {
    const CString loaded = mvp::ResourceString(nId);
    std::snprintf(text, Size, "%s", loaded.IsEmpty() ? pszDefault : static_cast<LPCSTR>(loaded));
}

BOOL IsSystemWithoutWarning() {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExA(&version) &&
           mvp::LacksCapsLockWarning(version.dwPlatformId, version.dwMajorVersion,
                                     version.dwMinorVersion);
}

template <std::size_t Size>
void Widen(const char* pszText, wchar_t (&wide)[Size]) {
    MultiByteToWideChar(CP_ACP, 0, pszText, -1, wide, static_cast<int>(Size));
    wide[Size - 1] = L'\0';
}

// Whether the control may look different afterwards. Systems draw what changes at once, without
// WM_PAINT.
bool ChangesLooks(UINT message, WPARAM wParam) {
    switch (message) {
        case WM_SETTEXT:
        case WM_ENABLE:
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
        case WM_CLEAR:
        case WM_PASTE:
        case WM_UNDO:
        case WM_TIMER:
        case WM_HSCROLL:
        case WM_IME_CHAR:
        case WM_IME_COMPOSITION:
        case EM_UNDO:
        case EM_SETSEL:
        case EM_REPLACESEL:
        case EM_SCROLLCARET:
        case EM_SETREADONLY:
            return true;
        case WM_MOUSEMOVE:
            return (wParam & MK_LBUTTON) != 0;
        default:
            return (message >= WM_KEYFIRST && message <= WM_KEYLAST) ||
                   (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST);
    }
}

LRESULT Send(HWND hWnd, UINT message, WPARAM wParam, const void* pParameter) {
    return SendMessageA(hWnd, message, wParam, reinterpret_cast<LPARAM>(pParameter));
}

TOOLINFOA ToolOf(HWND hEdit, UINT_PTR uId) {
    TOOLINFOA tool{};
    // The size of the record's first version, which every version of the control accepts.
    tool.cbSize = TTTOOLINFOA_V1_SIZE;
    tool.hwnd = hEdit;
    tool.uId = uId;
    return tool;
}

// Tells whether the edit, whose parent may delete it when it is told of something, has gone.
class Lifeline {
public:
    explicit Lifeline(bool*& pbGone) noexcept
        : m_slot(pbGone), m_pOuter(std::exchange(pbGone, &m_bGone)) {}
    Lifeline(const Lifeline&) = delete;
    Lifeline& operator=(const Lifeline&) = delete;
    ~Lifeline() {
        if (!m_bGone) {
            m_slot = m_pOuter;
        } else if (m_pOuter != nullptr) {
            *m_pOuter = true;
        }
    }
    bool IsCut() const noexcept { return m_bGone; }

private:
    bool*& m_slot;
    bool* m_pOuter;
    bool m_bGone = false;
};

}  // namespace

CCapsLockSensitiveEdit::CCapsLockSensitiveEdit()
    : m_bOldSystem(IsSystemWithoutWarning()), m_pField(new mvp::SecretField(*this)) {
    LoadText(IDS_CAPS_LOCK_TITLE, kDefaultTitle, m_szTitle);
    LoadText(IDS_CAPS_LOCK_PIN, kDefaultPinWarning, m_szPinWarning);
    LoadText(IDS_CAPS_LOCK_PASSWORD, kDefaultPasswordWarning, m_szPasswordWarning);
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_BAR_CLASSES};
    InitCommonControlsEx(&classes);
}

CCapsLockSensitiveEdit::~CCapsLockSensitiveEdit() {
    if (m_pbGone != nullptr) {
        *m_pbGone = true;
    }
    mvp::SecretAccessible::Drop(m_pAccessible);
    if (m_hBalloon != nullptr) {
        ::DestroyWindow(m_hBalloon);
    }
    delete m_pField;
}

bool CCapsLockSensitiveEdit::ReadSecret(CString& strSecret) const {
    return mvp::Guarded(
        false, [&] { return m_pField->Read(strSecret); },
        [&] {
            mvp::LogException("CCapsLockSensitiveEdit::ReadSecret")();
            strSecret.Empty();
        });
}

bool CCapsLockSensitiveEdit::WriteSecret(LPCSTR lpszSecret) {
    return mvp::Guarded(
        false,
        [&] {
            return m_hWnd != nullptr &&
                   m_pField->Write(lpszSecret == nullptr ? "" : lpszSecret) != FALSE;
        },
        mvp::LogException("CCapsLockSensitiveEdit::WriteSecret"));
}

void CCapsLockSensitiveEdit::ShowText() {
    if (m_hWnd != nullptr) {
        // Codes are read from left to right in every language.
        ModifyStyleEx(WS_EX_LAYOUTRTL | WS_EX_RTLREADING, 0);
        m_chShownMask = mvp::MaskForDigits(m_hWnd);
        SetPasswordChar(m_chShownMask);
        Invalidate();
    }
}

BOOL CCapsLockSensitiveEdit::PreCreateWindow(CREATESTRUCTA& cs) {
    cs.style |= ES_PASSWORD;
    // The window would keep it for good.
    cs.lpszName = nullptr;
    return CEdit::PreCreateWindow(cs);
}

void CCapsLockSensitiveEdit::PreSubclassWindow() {
    CEdit::PreSubclassWindow();
    // Of a window that was bound before nothing stays.
    m_chShownMask = '\0';
    m_bHasFocus = FALSE;
    m_bCapsLockTold = false;
    m_bSystemBalloonHooked = FALSE;
    m_hSystemBalloon = nullptr;
    mvp::Guarded([&] { m_pField->TakeOver(m_hWnd); },
                 [&] {
                     mvp::LogException("CCapsLockSensitiveEdit::PreSubclassWindow")();
                     // What could not be taken over does not stay.
                     m_pField->Clear();
                     ::SetWindowTextA(m_hWnd, "");
                 });
}

BOOL CCapsLockSensitiveEdit::PreTranslateMessage(MSG* pMsg) {
    if (pMsg->hwnd == m_hWnd) {
        m_pField->NoteQueued(*pMsg);
    }
    return CEdit::PreTranslateMessage(pMsg);
}

LRESULT CCapsLockSensitiveEdit::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    return m_pField->Arrives(message, wParam, lParam) ? CEdit::WindowProc(message, wParam, lParam)
                                                      : 0;
}

void CCapsLockSensitiveEdit::OnPaint() {
    const Lifeline lifeline(m_pbGone);
    CEdit::OnPaint();
    if (!lifeline.IsCut() && m_chShownMask != '\0') {
        mvp::DrawShownSecret(m_hWnd, m_chShownMask, m_pField->Text());
    }
}

void CCapsLockSensitiveEdit::OnDestroy() {
    m_pField->Clear();
    mvp::SecretAccessible::Drop(m_pAccessible);
    CEdit::OnDestroy();
}

LRESULT CCapsLockSensitiveEdit::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    // The object may go with the message.
    const HWND window = m_hWnd;
    const bool looks = m_chShownMask != '\0' && ChangesLooks(message, wParam);
    const LRESULT result = m_pField->Process(message, wParam, lParam);
    if (looks) {
        ::InvalidateRect(window, nullptr, FALSE);
    }
    return result;
}

void CCapsLockSensitiveEdit::ResetToolTip() {
    if (m_hBalloon != nullptr) {
        Send(m_hBalloon, TTM_ACTIVATE, FALSE, nullptr);
    }
}

void CCapsLockSensitiveEdit::CheckCapsLockMessage() {
    // Positive: toggled on, and the key is not held down.
    if (!m_bHasFocus || GetKeyState(VK_CAPITAL) <= 0) {
        ResetToolTip();
        return;
    }
    if (m_hBalloon == nullptr) {
        CreateBalloon();
    }
    Send(m_hBalloon, TTM_ACTIVATE, TRUE, nullptr);
    MSG move{};
    move.hwnd = m_hWnd;
    move.message = WM_MOUSEMOVE;
    move.lParam = MAKELPARAM(kPointerOffset, kPointerOffset);
    Send(m_hBalloon, TTM_RELAYEVENT, 0, &move);
}

void CCapsLockSensitiveEdit::OnSetFocus(CWnd* pOldWnd) {
    const Lifeline lifeline(m_pbGone);
    CEdit::OnSetFocus(pOldWnd);
    if (lifeline.IsCut()) {
        return;
    }
    m_bHasFocus = TRUE;
    TellCapsLock();
    if (m_bOldSystem) {
        CheckCapsLockMessage();
    }
}

void CCapsLockSensitiveEdit::OnKillFocus(CWnd* pNewWnd) {
    const Lifeline lifeline(m_pbGone);
    CEdit::OnKillFocus(pNewWnd);
    if (lifeline.IsCut()) {
        return;
    }
    m_bHasFocus = FALSE;
    TellCapsLock();
    if (m_bOldSystem) {
        CheckCapsLockMessage();
    }
}

void CCapsLockSensitiveEdit::OnKeyUp(UINT nChar, UINT nRepCnt, UINT nFlags) {
    if (m_bOldSystem) {
        switch (mvp::BalloonActionForKey(nChar)) {
            case mvp::BalloonAction::Check:
                CheckCapsLockMessage();
                break;
            case mvp::BalloonAction::Hide:
                ResetToolTip();
                break;
            case mvp::BalloonAction::Leave:
                break;
        }
    }
    TellCapsLock();
    CEdit::OnKeyUp(nChar, nRepCnt, nFlags);
}

void CCapsLockSensitiveEdit::TellCapsLock() {
    mvp::TellCapsLock(m_hWnd, m_bHasFocus != FALSE, m_bCapsLockTold);
}

LRESULT CCapsLockSensitiveEdit::OnGetObject(WPARAM wParam, LPARAM lParam) {
    if (static_cast<LONG>(lParam) != OBJID_CLIENT) {
        return Default();
    }
    return mvp::SecretAccessible::Answer(m_pAccessible, m_hWnd, wParam, [this] {
        return m_bCapsLockTold ? std::string(m_szTitle) + ". " + Warning() : std::string();
    });
}

void CCapsLockSensitiveEdit::CreateBalloon() {
    // No member, which would be exported with the class: a 32-bit system's callbacks have names
    // that say so, and no export does.
    struct Balloon {
        static LRESULT CALLBACK Proc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
            auto* edit =
                reinterpret_cast<CCapsLockSensitiveEdit*>(GetWindowLongPtrA(hWnd, GWLP_USERDATA));
            if (edit == nullptr) {
                return ::DefWindowProcA(hWnd, message, wParam, lParam);
            }
            return mvp::Guarded(
                LRESULT{0}, [=] { return edit->OnBalloonMessage(hWnd, message, wParam, lParam); },
                mvp::LogException("CCapsLockSensitiveEdit::BalloonProc"));
        }
    };
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&classes);
    m_hBalloon =
        CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                        WS_POPUP | TTS_NOPREFIX | TTS_BALLOON, CW_USEDEFAULT, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, m_hWnd, nullptr, mvp::OwnModule(), nullptr);
    if (m_hBalloon == nullptr) {
        return;
    }
    SetWindowLongPtrA(m_hBalloon, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_pOldBalloonProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(m_hBalloon, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Balloon::Proc)));
    ::SetWindowPos(m_hBalloon, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    AddTool();
    // The system's own delay for tool-tips.
    ::SendMessageA(m_hBalloon, TTM_SETDELAYTIME, TTDT_INITIAL,
                   static_cast<LPARAM>(GetDoubleClickTime()));
    ::SendMessageA(m_hBalloon, TTM_SETMAXTIPWIDTH, 0, mvp::PixelsIn(m_hBalloon, kLargestTipWidth));
    // In wide characters: not every system takes the 8-bit form for what it is.
    wchar_t title[kTextSize]{};
    Widen(m_szTitle, title);
    Send(m_hBalloon, TTM_SETTITLEW, kWarningIcon, title);
}

void CCapsLockSensitiveEdit::AddTool() {
    TOOLINFOA tool = ToolOf(m_hWnd, 0);
    ::GetClientRect(m_hWnd, &tool.rect);
    tool.lpszText = LPSTR_TEXTCALLBACKA;
    Send(m_hBalloon, TTM_ADDTOOLA, 0, &tool);
}

LRESULT CCapsLockSensitiveEdit::OnBalloonMessage(HWND hWnd, UINT message, WPARAM wParam,
                                                 LPARAM lParam) {
    switch (message) {
        case WM_MOUSEMOVE:
            // A pointer that passes does not dismiss the warning.
            return 0;
        case TTM_WINDOWFROMPOINT: {
            // To the balloon the pointer always rests on the edit.
            CRect rect;
            GetWindowRect(&rect);
            auto* point = reinterpret_cast<POINT*>(lParam);
            *point = {rect.left + kPointerOffset, rect.top + kPointerOffset};
            break;
        }
        case WM_NCDESTROY:
            // The system may take the balloon down with its owner, before this object goes.
            m_hBalloon = nullptr;
            break;
        default:
            break;
    }
    return CallWindowProcA(m_pOldBalloonProc, hWnd, message, wParam, lParam);
}

void CCapsLockSensitiveEdit::PlaceOwnBalloon() {
    CRect edit;
    GetWindowRect(&edit);
    CRect balloon;
    ::GetWindowRect(m_hBalloon, &balloon);
    const mvp::BalloonPlace place =
        mvp::PlaceBalloon({edit.left, edit.top, edit.bottom}, {balloon.Width(), balloon.Height()},
                          GetSystemMetrics(SM_CXSCREEN), mvp::WindowDpi(m_hBalloon));
    ::SetWindowPos(m_hBalloon, nullptr, place.nLeft, place.nTop, 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

bool CCapsLockSensitiveEdit::IsSystemWarning(const NMHDR& header) const {
    std::array<char, kToolTextCapacity> text{};
    TOOLINFOA tool = ToolOf(m_hWnd, header.idFrom);
    tool.lpszText = text.data();
    Send(header.hwndFrom, TTM_GETTEXTA, text.size(), &tool);
    text.back() = '\0';
    const CString systemWording = mvp::ResourceString(IDS_CAPS_LOCK_SYSTEM_BEGIN);
    return !systemWording.IsEmpty() &&
           std::strncmp(text.data(), systemWording,
                        static_cast<std::size_t>(systemWording.GetLength())) == 0;
}

void CCapsLockSensitiveEdit::AdoptSystemBalloon(const NMHDR& header) {
    if (m_chShownMask != '\0') {
        // It is meant for what cannot be seen. It cannot be kept from showing, just taken down.
        if (IsSystemWarning(header)) {
            PostMessage(EM_HIDEBALLOONTIP);
        }
        return;
    }
    if (m_bSystemBalloonHooked && m_hSystemBalloon == header.hwndFrom) {
        return;
    }
    m_bSystemBalloonHooked = TRUE;
    m_hSystemBalloon = header.hwndFrom;
    if (IsSystemWarning(header)) {
        TOOLINFOA tool = ToolOf(m_hWnd, header.idFrom);
        tool.lpszText = LPSTR_TEXTCALLBACKA;
        Send(m_hSystemBalloon, TTM_UPDATETIPTEXTA, 0, &tool);
    }
}

void CCapsLockSensitiveEdit::GiveText(NMHDR& header) {
    if (header.code == TTN_GETDISPINFOA) {
        auto& info = reinterpret_cast<NMTTDISPINFOA&>(header);
        info.lpszText = const_cast<char*>(Warning());
        info.hinst = nullptr;
        info.uFlags |= TTF_DI_SETITEM;
        info.lParam = 0;
    } else {
        Widen(Warning(), m_szWideWarning);
        auto& info = reinterpret_cast<NMTTDISPINFOW&>(header);
        info.lpszText = m_szWideWarning;
        info.hinst = nullptr;
        info.uFlags |= TTF_DI_SETITEM;
        info.lParam = 0;
    }
    if (m_hSystemBalloon != nullptr) {
        ::RedrawWindow(m_hSystemBalloon, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    }
}

BOOL CCapsLockSensitiveEdit::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    return mvp::Guarded(
        FALSE, [=, this] { return AnswerBalloon(wParam, lParam, pResult); },
        mvp::LogException("CCapsLockSensitiveEdit::OnNotify"));
}

BOOL CCapsLockSensitiveEdit::AnswerBalloon(WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    NMHDR& header = *reinterpret_cast<NMHDR*>(lParam);
    switch (header.code) {
        case TTN_SHOW:
            if (m_bOldSystem && m_hBalloon != nullptr) {
                PlaceOwnBalloon();
                *pResult = 1;
                return TRUE;
            }
            if (!m_bOldSystem) {
                AdoptSystemBalloon(header);
            }
            break;
        case TTN_GETDISPINFOA:
        case TTN_GETDISPINFOW:
            GiveText(header);
            break;
        default:
            break;
    }
    return CEdit::OnNotify(wParam, lParam, pResult);
}
