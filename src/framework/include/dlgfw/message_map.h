// Message maps: which handler of a class answers which message.
//
//     class AskDlg : public CDialog {
//         ...
//         afx_msg void OnChangeName();
//         afx_msg LRESULT OnCardEvent(WPARAM wParam, LPARAM lParam);
//         afx_msg void OnMove(int x, int y);
//         DECLARE_MESSAGE_MAP()
//     };
//
//     BEGIN_MESSAGE_MAP(AskDlg, CDialog)
//         ON_EN_CHANGE(IDC_NAME, &AskDlg::OnChangeName)
//         ON_REGISTERED_MESSAGE(g_nCardRemoved, &AskDlg::OnCardEvent)
//         ON_WM_MOVE()
//     END_MESSAGE_MAP()
//
// An entry is checked by the compiler: a handler with another signature than its macro states, or
// of a foreign class, does not compile. A WM_ macro names its handler itself: ON_WM_MOVE is OnMove.
#pragma once

#include <type_traits>

#include <dlgfw/wnd.h>

#define BEGIN_MESSAGE_MAP(theClass, baseClass)          \
    const AFX_MSGMAP* theClass::GetMessageMap() const { \
        return GetThisMessageMap();                     \
    }                                                   \
    const AFX_MSGMAP* theClass::GetThisMessageMap() {   \
        using ThisClass [[maybe_unused]] = theClass;    \
        using TheBaseClass = baseClass;                 \
        static const AFX_MSGMAP_ENTRY entries[] = {
#define END_MESSAGE_MAP()                                                             \
    { 0, 0, 0, nullptr, nullptr }                                                     \
    }                                                                                 \
    ;                                                                                 \
    static const AFX_MSGMAP messageMap = {&TheBaseClass::GetThisMessageMap, entries}; \
    return &messageMap;                                                               \
    }

// The kinds of call, each with the signature its handlers must have. T is the class of the map.
template <class T, auto pfnHandler>
class AfxThunk {
    template <class R, class... A>
    static R Call(CCmdTarget* pTarget, A... args) {
        static_assert(std::is_convertible_v<decltype(pfnHandler), R (T::*)(A...)>,
                      "the handler has not the signature of its map entry, or is of another class");
        return (static_cast<T*>(pTarget)->*pfnHandler)(args...);
    }
    static int Low(LPARAM lParam) { return static_cast<short>(LOWORD(lParam)); }
    static int High(LPARAM lParam) { return static_cast<short>(HIWORD(lParam)); }
    static HWND Window(WPARAM wParam) { return reinterpret_cast<HWND>(wParam); }
    static UINT Bits(WPARAM wParam) { return static_cast<UINT>(wParam); }
    template <class P>
    static P Pointer(LPARAM lParam) {
        return reinterpret_cast<P>(lParam);
    }

public:
    using Target = CCmdTarget*;
    using Message = const AFX_MSGCALL&;
    using Result = LRESULT&;

    // void ()
    static BOOL Plain(Target pTarget, Message, Result) {
        Call<void>(pTarget);
        return TRUE;
    }
    // LRESULT (WPARAM, LPARAM)
    static BOOL Raw(Target pTarget, Message msg, Result lResult) {
        lResult = Call<LRESULT, WPARAM, LPARAM>(pTarget, msg.wParam, msg.lParam);
        return TRUE;
    }
    // int (LPCREATESTRUCTA)
    static BOOL Create(Target pTarget, Message msg, Result lResult) {
        lResult = Call<int, LPCREATESTRUCTA>(pTarget, Pointer<LPCREATESTRUCTA>(msg.lParam));
        return TRUE;
    }
    // void (int x, int y)
    static BOOL Move(Target pTarget, Message msg, Result) {
        Call<void, int, int>(pTarget, Low(msg.lParam), High(msg.lParam));
        return TRUE;
    }
    // void (UINT nType, int cx, int cy)
    static BOOL Size(Target pTarget, Message msg, Result) {
        Call<void, UINT, int, int>(pTarget, Bits(msg.wParam), LOWORD(msg.lParam),
                                   HIWORD(msg.lParam));
        return TRUE;
    }
    // BOOL (CDC*)
    static BOOL Erase(Target pTarget, Message msg, Result lResult) {
        lResult = Call<BOOL, CDC*>(pTarget, CDC::FromHandle(reinterpret_cast<HDC>(msg.wParam)));
        return TRUE;
    }
    // HBRUSH (CDC*, CWnd*, UINT nCtlColor)
    static BOOL CtlColor(Target pTarget, Message msg, Result lResult) {
        lResult = reinterpret_cast<LRESULT>(Call<HBRUSH, CDC*, CWnd*, UINT>(
            pTarget, CDC::FromHandle(reinterpret_cast<HDC>(msg.wParam)),
            CWnd::FromHandle(Pointer<HWND>(msg.lParam)), msg.message - WM_CTLCOLORMSGBOX));
        return TRUE;
    }
    // void (UINT uFlags, LPCSTR lpszSection)
    static BOOL Setting(Target pTarget, Message msg, Result) {
        Call<void, UINT, LPCSTR>(pTarget, Bits(msg.wParam), Pointer<LPCSTR>(msg.lParam));
        return TRUE;
    }
    // void (CWnd*)
    static BOOL Focus(Target pTarget, Message msg, Result) {
        Call<void, CWnd*>(pTarget, CWnd::FromHandle(Window(msg.wParam)));
        return TRUE;
    }
    // void (UINT nChar, UINT nRepCnt, UINT nFlags)
    static BOOL Key(Target pTarget, Message msg, Result) {
        Call<void, UINT, UINT, UINT>(pTarget, Bits(msg.wParam), LOWORD(msg.lParam),
                                     HIWORD(msg.lParam));
        return TRUE;
    }
    // void (UINT_PTR nIDEvent)
    static BOOL Timer(Target pTarget, Message msg, Result) {
        Call<void, UINT_PTR>(pTarget, msg.wParam);
        return TRUE;
    }
    // void (UINT nFlags, CPoint)
    static BOOL Mouse(Target pTarget, Message msg, Result) {
        Call<void, UINT, CPoint>(pTarget, Bits(msg.wParam), CPoint(msg.lParam));
        return TRUE;
    }
    // BOOL (CWnd*, UINT nHitTest, UINT message)
    static BOOL Cursor(Target pTarget, Message msg, Result lResult) {
        lResult = Call<BOOL, CWnd*, UINT, UINT>(pTarget, CWnd::FromHandle(Window(msg.wParam)),
                                                LOWORD(msg.lParam), HIWORD(msg.lParam));
        return TRUE;
    }
    // LRESULT (CPoint)
    static BOOL HitTest(Target pTarget, Message msg, Result lResult) {
        lResult = Call<LRESULT, CPoint>(pTarget, CPoint(msg.lParam));
        return TRUE;
    }
    // void (BOOL bEnable)
    static BOOL Enable(Target pTarget, Message msg, Result) {
        Call<void, BOOL>(pTarget, static_cast<BOOL>(msg.wParam));
        return TRUE;
    }
    // BOOL (HELPINFO*)
    static BOOL Help(Target pTarget, Message msg, Result lResult) {
        lResult = Call<BOOL, HELPINFO*>(pTarget, Pointer<HELPINFO*>(msg.lParam));
        return TRUE;
    }
};

// One line of a map. Identifiers and notification codes are 16 bits wide; some headers define them
// as negative numbers.
#define AFX_MAP_ENTRY(message, nCode, nID, pnRegistered, memberFxn, kind)     \
    {message, static_cast<WORD>(nCode), static_cast<WORD>(nID), pnRegistered, \
     &AfxThunk<ThisClass, memberFxn>::kind},

#define ON_CONTROL(nCode, id, memberFxn) \
    AFX_MAP_ENTRY(WM_COMMAND, nCode, id, nullptr, memberFxn, Plain)
#define ON_COMMAND(id, memberFxn) ON_CONTROL(CN_COMMAND, id, memberFxn)
#define ON_BN_CLICKED(id, memberFxn) ON_CONTROL(BN_CLICKED, id, memberFxn)
#define ON_EN_CHANGE(id, memberFxn) ON_CONTROL(EN_CHANGE, id, memberFxn)
#define ON_EN_SETFOCUS(id, memberFxn) ON_CONTROL(EN_SETFOCUS, id, memberFxn)

#define ON_MESSAGE(message, memberFxn) AFX_MAP_ENTRY(message, 0, 0, nullptr, memberFxn, Raw)
// nVariable holds what RegisterWindowMessage returned; it is read when a message arrives.
#define ON_REGISTERED_MESSAGE(nVariable, memberFxn) \
    AFX_MAP_ENTRY(0xC000, 0, 0, &(nVariable), memberFxn, Raw)

// The message number that stands for the WM_CTLCOLORxxx messages in a map.
#ifndef WM_CTLCOLOR
#define WM_CTLCOLOR 0x0019
#endif

#define AFX_ON_WM(message, kind, handler) \
    AFX_MAP_ENTRY(message, 0, 0, nullptr, &ThisClass::handler, kind)

#define ON_WM_CREATE() AFX_ON_WM(WM_CREATE, Create, OnCreate)
#define ON_WM_DESTROY() AFX_ON_WM(WM_DESTROY, Plain, OnDestroy)
#define ON_WM_NCDESTROY() AFX_ON_WM(WM_NCDESTROY, Plain, OnNcDestroy)
#define ON_WM_MOVE() AFX_ON_WM(WM_MOVE, Move, OnMove)
#define ON_WM_SIZE() AFX_ON_WM(WM_SIZE, Size, OnSize)
#define ON_WM_PAINT() AFX_ON_WM(WM_PAINT, Plain, OnPaint)
#define ON_WM_ERASEBKGND() AFX_ON_WM(WM_ERASEBKGND, Erase, OnEraseBkgnd)
#define ON_WM_CTLCOLOR() AFX_ON_WM(WM_CTLCOLOR, CtlColor, OnCtlColor)
#define ON_WM_SYSCOLORCHANGE() AFX_ON_WM(WM_SYSCOLORCHANGE, Plain, OnSysColorChange)
#define ON_WM_SETTINGCHANGE() AFX_ON_WM(WM_SETTINGCHANGE, Setting, OnSettingChange)
#define ON_WM_SETFOCUS() AFX_ON_WM(WM_SETFOCUS, Focus, OnSetFocus)
#define ON_WM_KILLFOCUS() AFX_ON_WM(WM_KILLFOCUS, Focus, OnKillFocus)
#define ON_WM_KEYDOWN() AFX_ON_WM(WM_KEYDOWN, Key, OnKeyDown)
#define ON_WM_KEYUP() AFX_ON_WM(WM_KEYUP, Key, OnKeyUp)
#define ON_WM_TIMER() AFX_ON_WM(WM_TIMER, Timer, OnTimer)
#define ON_WM_MOUSELEAVE() AFX_ON_WM(WM_MOUSELEAVE, Plain, OnMouseLeave)
#define ON_WM_LBUTTONDOWN() AFX_ON_WM(WM_LBUTTONDOWN, Mouse, OnLButtonDown)
#define ON_WM_LBUTTONUP() AFX_ON_WM(WM_LBUTTONUP, Mouse, OnLButtonUp)
#define ON_WM_SETCURSOR() AFX_ON_WM(WM_SETCURSOR, Cursor, OnSetCursor)
#define ON_WM_NCHITTEST() AFX_ON_WM(WM_NCHITTEST, HitTest, OnNcHitTest)
#define ON_WM_ENABLE() AFX_ON_WM(WM_ENABLE, Enable, OnEnable)
#define ON_WM_HELPINFO() AFX_ON_WM(WM_HELP, Help, OnHelpInfo)
