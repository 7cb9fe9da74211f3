// CWnd: a window and the object that answers its messages.
//
// Binding. Create, CreateEx and CreateDlgIndirect bind the object before the window's first
// message; SubclassWindow and Attach bind it to a window that exists, the latter without taking its
// messages. A window has one object at most, on the thread that bound it; objects are used on that
// thread alone. When the window goes, the object is unbound and PostNcDestroy runs as the very last
// thing, the place for `delete this` in objects that own themselves. An object that is deleted
// while its window lives destroys the window; by then only CWnd's own handlers are left of it, so a
// class that must see WM_DESTROY calls DestroyWindow in its destructor.
//
// Anybody may send a window WM_DESTROY or WM_NCDESTROY without destroying it. A bound window takes
// them at their word: its handlers run, a modal loop around it ends with -1, and the window is
// destroyed as soon as it shows that it was not.
//
// Messages. They reach WindowProc, which looks in the message maps (message_map.h) and leaves what
// nobody handled to DefWindowProc. Default() inside a handler does the standard processing with the
// message as it came; the OnX handlers of this class do just that.
//
// Exceptions. One that leaves a handler ends there: it is reported (AfxSetExceptionReporter), the
// message gets the result 0, and the program goes on. While the window is being created (WM_CREATE,
// WM_INITDIALOG) creation fails.
//
// Temporaries. FromHandle, GetDlgItem, GetParent, SetFocus and the like return the window's object,
// or a temporary one that owns nothing and lasts until the thread is idle: until the outermost
// message handler returns or a modal loop waits for input. Never keep such a pointer in a member;
// bind an object of your own (SubclassDlgItem, DDX_Control) instead.
#pragma once

#include <dlgfw/cmd_target.h>
#include <dlgfw/dc.h>

// A macro of the operating system's headers, which would take the calls of this function.
#undef SubclassWindow

class CDataExchange;

// Bits of CWnd::m_nFlags.
constexpr UINT WF_MODALLOOP = 0x0008;      // inside RunModalLoop
constexpr UINT WF_CONTINUEMODAL = 0x0010;  // the modal loop has not been told to end
constexpr UINT WF_DESTROYING = 0x0020;     // has been sent WM_DESTROY

// Flags of RunModalLoop.
constexpr DWORD MLF_NOIDLEMSG = 0x0001;   // no WM_ENTERIDLE to the parent
constexpr DWORD MLF_SHOWONIDLE = 0x0004;  // show the window when the queue is first empty

// Sent to the window of a modal loop when its queue is empty: wParam MSGF_DIALOGBOX, lParam the
// number of times since the last message. Nonzero asks to be called again at once.
constexpr UINT WM_KICKIDLE = 0x036A;

class DLGFW_API CWnd : public CCmdTarget {
public:
    HWND m_hWnd = nullptr;
    UINT m_nFlags = 0;  // WF_*

    // Special places for SetWindowPos.
    static const CWnd wndTop;
    static const CWnd wndTopMost;

    CWnd() noexcept = default;
    ~CWnd() override;

    HWND GetSafeHwnd() const noexcept { return m_hWnd; }
    operator HWND() const noexcept { return m_hWnd; }

    // Null for a null handle.
    static CWnd* FromHandle(HWND hWnd);
    // Null when no object of this thread is bound to the window.
    static CWnd* FromHandlePermanent(HWND hWnd);
    // Frees this thread's temporary objects. For hosts that run their own message loop for long.
    static void DeleteTempMap();

    // FALSE when hWnd is null or has an object already, and for SubclassWindow when the window is
    // of another thread. The window is not destroyed by Detach.
    BOOL Attach(HWND hWnd);
    HWND Detach();
    BOOL SubclassWindow(HWND hWnd);
    BOOL SubclassDlgItem(UINT nID, CWnd* pParent);

    // A child window with the identifier nID.
    virtual BOOL Create(LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle,
                        const RECT& rect, CWnd* pParentWnd, UINT nID);
    BOOL CreateEx(DWORD dwExStyle, LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle,
                  int x, int y, int nWidth, int nHeight, HWND hWndParent, HMENU nIDorHMenu,
                  LPVOID lpParam = nullptr);
    BOOL CreateEx(DWORD dwExStyle, LPCSTR lpszClassName, LPCSTR lpszWindowName, DWORD dwStyle,
                  const RECT& rect, CWnd* pParentWnd, UINT nID, LPVOID lpParam = nullptr);
    virtual BOOL DestroyWindow();

    // Messages.
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    LRESULT SendDlgItemMessage(int nID, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    static const MSG* GetCurrentMessage();

    // Text, font, icon.
    void SetWindowText(LPCSTR lpszString);
    void GetWindowText(CString& rString) const;
    int GetWindowTextLength() const;
    void SetFont(CFont* pFont, BOOL bRedraw = TRUE);
    CFont* GetFont() const;
    HICON SetIcon(HICON hIcon, BOOL bBigIcon);

    // Style.
    DWORD GetStyle() const;
    // TRUE when the style changed; nonzero nFlags are SetWindowPos flags to apply it with.
    BOOL ModifyStyleEx(DWORD dwRemove, DWORD dwAdd, UINT nFlags = 0);

    // State.
    BOOL IsWindowVisible() const;
    BOOL ShowWindow(int nCmdShow);
    BOOL IsWindowEnabled() const;
    BOOL EnableWindow(BOOL bEnable = TRUE);
    CWnd* SetActiveWindow();
    BOOL SetForegroundWindow();
    CWnd* SetFocus();
    CWnd* SetCapture();

    // Size, place, mapping.
    void MoveWindow(int x, int y, int nWidth, int nHeight, BOOL bRepaint = TRUE);
    void MoveWindow(LPCRECT lpRect, BOOL bRepaint = TRUE);
    BOOL SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags);
    void GetWindowRect(LPRECT lpRect) const;
    void GetClientRect(LPRECT lpRect) const;
    void ClientToScreen(LPPOINT lpPoint) const;
    void ClientToScreen(LPRECT lpRect) const;
    void ScreenToClient(LPPOINT lpPoint) const;
    void ScreenToClient(LPRECT lpRect) const;
    // A top-level window over its owner, within the monitor's work area.
    void CenterWindow();
    int SetWindowRgn(HRGN hRgn, BOOL bRedraw);

    // Painting.
    void UpdateWindow();
    void Invalidate(BOOL bErase = TRUE);
    BOOL RedrawWindow(LPCRECT lpRectUpdate = nullptr, CRgn* prgnUpdate = nullptr,
                      UINT flags = RDW_INVALIDATE | RDW_UPDATENOW | RDW_ERASE);

    // Timers; a null function posts WM_TIMER.
    UINT_PTR SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer = nullptr);
    BOOL KillTimer(UINT_PTR nIDEvent);

    // Relatives.
    CWnd* GetParent() const;
    CWnd* SetParent(CWnd* pWndNewParent);
    static CWnd* FindWindow(LPCSTR lpszClassName, LPCSTR lpszWindowName);

    // Dialog items. A missing one gives null, 0 or an empty text.
    CWnd* GetDlgItem(int nID) const;
    void SetDlgItemText(int nID, LPCSTR lpszString);
    int GetDlgItemText(int nID, CString& rString) const;
    void CheckDlgButton(int nIDButton, UINT nCheck);
    UINT IsDlgButtonChecked(int nIDButton) const;

    int MessageBox(LPCSTR lpszText, LPCSTR lpszCaption = nullptr, UINT nType = MB_OK);

    // Moves values between the controls and the members named in DoDataExchange: TRUE reads the
    // controls and checks, FALSE fills them. FALSE when a check or an exchange failed. Control
    // notifications that come meanwhile are not dispatched.
    BOOL UpdateData(BOOL bSaveAndValidate = TRUE);

    // Runs messages until EndModalLoop, the end of the window or WM_QUIT, which is posted again.
    // Returns the result given to EndModalLoop; -1 in the other cases, or what was set before.
    int RunModalLoop(DWORD dwFlags = 0);
    virtual BOOL ContinueModal();
    virtual void EndModalLoop(int nResult);

    // Called for a message of this window or a descendant before it is translated; TRUE eats it.
    virtual BOOL PreTranslateMessage(MSG* pMsg);

    // Offers the notification being dispatched to this control, which sent it (OnChildNotify).
    BOOL SendChildNotifyLastMsg(LRESULT* pResult = nullptr);

protected:
    int m_nModalResult = 0;

    virtual BOOL PreCreateWindow(CREATESTRUCTA& cs);
    virtual void PreSubclassWindow();
    virtual void PostNcDestroy();

    // Creates a dialog window, invisible unless the template says otherwise, and sets up the modal
    // state (m_nModalResult -1, WF_CONTINUEMODAL). FALSE when there is no window afterwards: with
    // WF_CONTINUEMODAL still set it could not be made; with it cleared it was ended from within
    // OnInitDialog (m_nModalResult has the result) or a handler threw (-1).
    BOOL CreateDlgIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd, HINSTANCE hInst);

    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // TRUE when a handler took the message.
    virtual BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Default();
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    virtual BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    // In a control, before its parent's handlers; TRUE when the control took it.
    virtual BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    static BOOL ReflectLastMsg(HWND hWndChild, LRESULT* pResult = nullptr);
    virtual void DoDataExchange(CDataExchange* pDX);

    afx_msg int OnCreate(LPCREATESTRUCTA lpCreateStruct);
    afx_msg void OnDestroy();
    afx_msg void OnNcDestroy();
    afx_msg void OnMove(int x, int y);
    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg void OnPaint();
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    // nCtlColor: CTLCOLOR_*. Asks the control first (OnChildNotify).
    afx_msg HBRUSH OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor);
    // These two are sent on to the objects' windows below a top-level window.
    afx_msg void OnSysColorChange();
    afx_msg void OnSettingChange(UINT uFlags, LPCSTR lpszSection);
    afx_msg void OnSetFocus(CWnd* pOldWnd);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    afx_msg void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnKeyUp(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnTimer(UINT_PTR nIDEvent);
    afx_msg void OnMouseLeave();
    afx_msg void OnLButtonDown(UINT nFlags, CPoint point);
    afx_msg void OnLButtonUp(UINT nFlags, CPoint point);
    afx_msg BOOL OnSetCursor(CWnd* pWnd, UINT nHitTest, UINT message);
    afx_msg LRESULT OnNcHitTest(CPoint point);
    afx_msg void OnEnable(BOOL bEnable);
    afx_msg BOOL OnHelpInfo(HELPINFO* pHelpInfo);

    DECLARE_MESSAGE_MAP()

private:
    friend class WndAccess;  // the window procedure's and the handle maps' way in

    explicit CWnd(HWND hWnd) noexcept : m_hWnd(hWnd) {}
    void SendCurrentToDescendants();

    WNDPROC m_pfnSuper = nullptr;         // the procedure that was subclassed
    class WndGuard* m_pGuards = nullptr;  // who wants to know when this object goes
};

// Called with the number of the message whose handler threw (0 outside of messages), on the thread
// concerned, while the exception is being handled; it must not throw, nor rethrow what it cannot
// see. Returns the reporter before. Null restores the standard one, which writes a debug line.
using AFX_EXCEPTION_REPORTER = void (*)(UINT message);
DLGFW_API AFX_EXCEPTION_REPORTER AfxSetExceptionReporter(AFX_EXCEPTION_REPORTER pfnReporter);

// The name of a window class with these properties, registered when it is not yet; valid for the
// thread until the next call. Null on failure.
DLGFW_API LPCSTR AfxRegisterWndClass(UINT nClassStyle, HCURSOR hCursor = nullptr,
                                     HBRUSH hbrBackground = nullptr, HICON hIcon = nullptr);

// TRUE when the objects over the message's window ate it.
DLGFW_API BOOL AfxPreTranslateMessage(MSG* pMsg);

// Shows the wait cursor while it lives.
class DLGFW_API CWaitCursor {
public:
    CWaitCursor();
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;
    ~CWaitCursor();

private:
    HCURSOR m_hOld;
};
