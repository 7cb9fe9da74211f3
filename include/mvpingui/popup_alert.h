// CPopupAlert: a notice that slides in beside the taskbar, stays for a while and goes again,
// without taking the focus or a key stroke from anyone. It tells that there is no card reader, that
// a card was left in the reader (and goes when the card does), or a one-time password, which a
// routine of the host fetches while a busy bar runs.
//
//     CPopupAlert popup;
//     if (popup.Create(hWndParent) != 0 &&
//         popup.InitWindow(hWndParent, DIALOG_POPUP_CARD_ALERT, GetCurrentThreadId())) {
//         popup.Show();
//         MSG msg;
//         while (GetMessageA(&msg, nullptr, 0, 0) > 0 &&
//                (msg.hwnd != nullptr || msg.message != WM_POPUP_CLOSED)) {
//             DispatchMessageA(&msg);
//         }
//     }
//
// For a one-time password SetReader and SetMessage come before InitWindow, and SetThreadRoutine
// between InitWindow and Show.
//
// What is shown, and for how long, is the administrator's: see docs/configuration.md. The texts are
// rich text; a text of the configuration that could open anything is not shown, the library's own
// stands in its place.
//
// All calls are made on the thread that creates the window and runs its messages, but Hide, which
// any thread may call while the window is there. The host keeps the object until WM_POPUP_CLOSED
// has come to the thread, and may use it again then: Show, or InitWindow with another type. A popup
// that is destroyed, for one because its parent is, tells nobody. No exception leaves a member but
// a constructor, which lets std::bad_alloc pass. A class that derives from it leaves the message
// WM_APP + 1 alone.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <dlgfw/gdi_object.h>
#include <dlgfw/geometry.h>
#include <dlgfw/string.h>
#include <dlgfw/wnd.h>
#include <mvpingui/export.h>
#include <mvpingui/popup_motion.h>
#include <mvpingui/skin_layout.h>

class CCardRemoved;
class CHtmlStatic;
class VKDelegateSubscriberCardRemoved;

namespace mvp {
class NamedAccessible;
enum class Scaling;
}  // namespace mvp

// What the popup is about. Another number is shown without icon, text and links.
constexpr int DIALOG_POPUP_NO_READER = 0;
constexpr int DIALOG_POPUP_CARD_ALERT = 1;
constexpr int DIALOG_POPUP_CARD_OTP = 2;

// Sent to the popup when the user follows a link of it.
constexpr UINT WM_POPUP_LINK_CLICKED = WM_USER + 200;
constexpr UINT WM_POPUP_HELP_CLICKED = WM_USER + 202;
// Posted to the parent window and to the parent's thread when the popup has closed. No parameters.
constexpr UINT WM_POPUP_CLOSED = WM_USER + 201;
// Posted to the card-event service's window "vkcrdsub" when help is asked for; wParam: the topic.
constexpr UINT WM_POPUP_SHOW_HELP = WM_USER + 203;
// Posted to the popup by the host's routine; lParam: the one-time password, a zero-terminated rich
// text from NewPopupText that the popup then owns. Where posting fails, it stays the routine's.
constexpr UINT WM_POPUP_OTP_READY = WM_USER + 204;

// A copy of a text on the heap of the process, which is the same for every language runtime, for
// WM_POPUP_OTP_READY. Null when there is no memory. What is not handed over goes with HeapFree.
inline char* NewPopupText(const char* pszText) {
    const SIZE_T size = static_cast<SIZE_T>(lstrlenA(pszText)) + 1;
    auto* copy = static_cast<char*>(HeapAlloc(GetProcessHeap(), 0, size));
    return copy != nullptr ? lstrcpynA(copy, pszText, static_cast<int>(size)) : nullptr;
}

class MVPINGUI_API CPopupAlert : public CWnd {
public:
    CPopupAlert();
    CPopupAlert(const CPopupAlert&) = delete;
    CPopupAlert& operator=(const CPopupAlert&) = delete;
    ~CPopupAlert() override;

    // Creates the window, which has no size before Show; one that is there already is destroyed
    // first. hWndParent: owner of the window and receiver of WM_POPUP_CLOSED; may be null. Returns
    // nonzero on success.
    using CWnd::Create;
    int Create(HWND hWndParent);

    // Fills the window. hWnd: the new parent, or the same as for Create, or null.
    // dwParentThreadID: the thread that gets WM_POPUP_CLOSED; 0: the thread that hides the popup.
    // False when the popup is not to be shown: the configuration does not ask for it, or there is
    // no skin.
    bool InitWindow(HWND hWnd, int iWndType, DWORD dwParentThreadID);

    // The rich text that stands over the busy bar, for InitWindow with DIALOG_POPUP_CARD_OTP. It is
    // the caller's: its links are live. Null is an empty text.
    void SetMessage(const char* pszMessage);
    // The reader whose card's removal hides the popup; for SetThreadRoutine. Null or empty: none.
    void SetReader(const char* pszReader);
    // Shows the busy bar and starts the routine on a thread of its own with the popup's window
    // handle as argument. It fetches the one-time password and posts WM_POPUP_OTP_READY; nothing
    // else of the popup is touched from there.
    void SetThreadRoutine(LPTHREAD_START_ROUTINE pfnRoutine);

    // Slides the popup in. When it is there already its stay begins anew.
    void Show();
    // Hides the popup at once and tells the parent. On another thread than the window's it is
    // hidden there soon after.
    void Hide();

    // The picture behind everything, which gives the popup its size, from the resource module with
    // or without bullets for the two links, or from a bitmap file. Its pixels are those of 96 dpi:
    // it grows with the resolution, as all distances and texts of the popup do. In high contrast
    // its size counts alone. With three colour values (0 to 255) what has that colour is cut out of
    // the window; 65535 (-1 for the file's red) for none. Returns 1; 0 when the file is none, which
    // changes nothing.
    int SetSkin(UINT nBitmapID, bool bLinkBullet, bool bHelpBullet, short nRed, short nGreen,
                short nBlue);
    int SetSkin(const char* pszFileName, short nRed, short nGreen, short nBlue);
    // Size in tenths of a point; styles: the sum of 1 bold, 2 italic, 4 underlined.
    void SetTextFont(const char* pszFont, int nSize, int nNormalStyle, int nSelectedStyle);
    void SetTextColor(COLORREF crNormal, COLORREF crSelected);
    // Where the message moves below a busy bar and the password comes, until InitWindow or a skin
    // lays the window out anew; client coordinates in pixels.
    void SetTextRect(RECT rect);

protected:
    // The region of a bitmap without its pixels of one colour; the caller's to delete. The last
    // width % 4 columns are left out. Null on failure.
    static HRGN GenerateRegion(HBITMAP hBitmap, BYTE red, BYTE green, BYTE blue);
    // The pixels, rows from top to bottom, 3 bytes each: blue, green, red. The width comes without
    // its last width % 4 columns. To be freed with HeapFree from the process heap. Null on failure.
    static BYTE* Get24BitPixels(HBITMAP hBitmap, WORD* pwWidth, WORD* pwHeight);

    afx_msg int OnCreate(LPCREATESTRUCTA pCreate);
    afx_msg LRESULT OnCardEvent(WPARAM wParam, LPARAM lParam);
    afx_msg void OnDestroy();
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    afx_msg void OnTimer(UINT_PTR nIDEvent);
    afx_msg LRESULT OnPopupAlertClicked(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnPopupAlertHelpClicked(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnOtpOk(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnNcHitTest(CPoint point);

    // Manners, below what the message map answers: no message makes the window active, it follows
    // the work area, and it answers a screen reader.
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

    DECLARE_MESSAGE_MAP()

private:
    class CardRemovedTarget;
    struct ReleaseAccessible {
        void operator()(mvp::NamedAccessible* pAccessible) const noexcept;
    };

    // False: not to be shown. pdwDuration: milliseconds, left as it is where nothing is set; null
    // only fails the one-time password.
    bool GetRegistryParameters(CString& csText, DWORD* pdwDuration, int iWndType);
    static void TakeDefaultMessage(CString& csText, int iWndType);
    bool GetDisplayHelpValue();
    int PrepareBackgroundBitmap(UINT nBitmapID, bool bLinkBullet, bool bHelpBullet);
    void SetAnimStatusToWaiting();
    // Strictly inside; false when both are null.
    static bool IsPointOnArea(const CPoint* pPoint, const CRect* pRect);
    void DoBeep();

    bool DressAs(int iWndType, CString& csText, DWORD& dwDuration);
    void WatchCards();
    void WatchReader();
    void MeasureSkin();
    void CutOut(short nRed, short nGreen, short nBlue);

    void CreateControls(int iWndType);
    std::unique_ptr<CHtmlStatic> CreateText(const RECT& place, UINT nId, SIZE margins);
    void MakeLink(CHtmlStatic& control, UINT nTextId, UINT nMessage, CFont& font);
    void ShowLinks(bool bClose, bool bHelp);
    void DrawSkin(HDC hDC) const;
    void Colour(CHtmlStatic& text, COLORREF crText, COLORREF crLink) const;
    void ColourMessage() const;
    void FollowColours();
    int Dpi() const;
    void ForgetLastNotice();
    void StartBusyBar();
    void RunBusyBar(bool bRun);
    void EndBusyBar();
    bool HasProgressBar() const;
    void ShowPassword(std::string_view text);
    void LayPlate(const RECT& place);
    void FreeOtp();

    void Obey(const mvp::PopupOrders& orders);
    mvp::PopupSize Skin() const { return {m_nSkinWidth, m_nSkinHeight}; }
    bool IsCursorInside() const;
    void FollowScreen();
    void TellClosed();
    void Announce();
    std::string SpokenText();
    LRESULT AnswerGetObject(WPARAM wParam);

    HWND m_hWndParent = nullptr;
    CWnd* m_pParentWnd = nullptr;  // after InitWindow with another parent; not owned
    CFont m_normalFont;
    CFont m_selectedFont;
    COLORREF m_crNormal = 0xFFFFFF;
    COLORREF m_crSelected = 0xB59285;
    HCURSOR m_hHandCursor = nullptr;
    CBitmap m_background;
    HRGN m_hRegion = nullptr;  // the system's, once the window has it
    bool m_bFileSkin = false;
    mvp::Scaling m_skinScaling{};
    bool m_bHighContrast = false;
    bool m_bPassword = false;  // stands in the message's place
    int m_nSkinWidth = 0;
    int m_nSkinHeight = 0;
    mvp::SkinBands m_bands;
    CString m_csText;
    mvp::PopupMotion m_motion;
    int m_iWndType = DIALOG_POPUP_NO_READER;
    BOOL m_bHasBeenCreated = FALSE;
    DWORD m_dwParentThreadID = 0;
    CString m_strOtpMessage;
    CString m_strReader;
    HWND m_hProgressBar = nullptr;
    // Came before the popup was in its place; owned.
    char* m_pszPendingOtp = nullptr;
    // Left alone when the popup goes: it finds no window then, and posts nothing.
    VKDelegateSubscriberCardRemoved* m_pReaderEvents = nullptr;
    std::unique_ptr<CardRemovedTarget> m_pCardRemovedTarget;
    std::unique_ptr<CCardRemoved> m_pCardRemoved;
    std::unique_ptr<CHtmlStatic> m_pMessage;
    std::unique_ptr<CHtmlStatic> m_pCloseLink;
    std::unique_ptr<CHtmlStatic> m_pHelpLink;
    std::unique_ptr<CHtmlStatic> m_pTitle;
    BOOL m_bDisplayHelp = TRUE;
    std::unique_ptr<mvp::NamedAccessible, ReleaseAccessible> m_pAccessible;
};
