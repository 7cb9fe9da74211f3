// The system's controls: each class adds the messages of its control to CWnd.
//
// An object is bound to a control of a dialog by DDX_Control or SubclassDlgItem, or makes one with
// Create.
#pragma once

#include <dlgfw/image_list.h>
#include <dlgfw/wnd.h>

class DLGFW_API CStatic : public CWnd {
public:
    using CWnd::Create;
    virtual BOOL Create(LPCSTR lpszText, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd,
                        UINT nID = 0xFFFF);

    // What is set stays the caller's; what was shown before is returned.
    HICON SetIcon(HICON hIcon);
    HICON GetIcon() const;
    HBITMAP SetBitmap(HBITMAP hBitmap);
    HBITMAP GetBitmap() const;
};

class DLGFW_API CButton : public CWnd {
public:
    using CWnd::Create;
    virtual BOOL Create(LPCSTR lpszCaption, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd,
                        UINT nID);

    UINT GetState() const;
    void SetState(BOOL bHighlight);
    int GetCheck() const;
    void SetCheck(int nCheck);
    UINT GetButtonStyle() const;
    void SetButtonStyle(UINT nStyle, BOOL bRedraw = TRUE);
    HICON SetIcon(HICON hIcon);
    HICON GetIcon() const;
    HBITMAP SetBitmap(HBITMAP hBitmap);
    HBITMAP GetBitmap() const;
};

class DLGFW_API CEdit : public CWnd {
public:
    using CWnd::Create;
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);

    BOOL CanUndo() const;
    BOOL Undo();
    void EmptyUndoBuffer();
    BOOL GetModify() const;
    void SetModify(BOOL bModified = TRUE);
    DWORD GetSel() const;
    void GetSel(int& nStartChar, int& nEndChar) const;
    void SetSel(DWORD dwSelection, BOOL bNoScroll = FALSE);
    void SetSel(int nStartChar, int nEndChar, BOOL bNoScroll = FALSE);
    void ReplaceSel(LPCSTR lpszNewText, BOOL bCanUndo = FALSE);
    void LimitText(int nChars = 0);
    void SetLimitText(UINT nMax);
    UINT GetLimitText() const;
    BOOL SetReadOnly(BOOL bReadOnly = TRUE);
    char GetPasswordChar() const;
    void SetPasswordChar(char ch);
    int GetLineCount() const;
    int LineLength(int nLine = -1) const;
    void GetRect(LPRECT lpRect) const;
    void SetRect(LPCRECT lpRect);
    DWORD GetMargins() const;
    void SetMargins(UINT nLeft, UINT nRight);
    void Clear();
    void Copy();
    void Cut();
    void Paste();
};

class DLGFW_API CListCtrl : public CWnd {
public:
    using CWnd::Create;
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);

    // nImageList: LVSIL_*. The list stays the caller's (or the control's, without
    // LVS_SHAREIMAGELISTS); the one shown before is returned.
    CImageList* SetImageList(CImageList* pImageList, int nImageList);
    CImageList* GetImageList(int nImageList) const;
    DWORD SetExtendedStyle(DWORD dwNewStyle);
    DWORD GetExtendedStyle() const;

    // Each returns the index of what was inserted, or -1.
    int InsertColumn(int nCol, const LVCOLUMNA* pColumn);
    int InsertColumn(int nCol, LPCSTR lpszColumnHeading, int nFormat = LVCFMT_LEFT, int nWidth = -1,
                     int nSubItem = -1);
    BOOL DeleteColumn(int nCol);
    BOOL GetColumn(int nCol, LVCOLUMNA* pColumn) const;
    int GetColumnWidth(int nCol) const;
    BOOL SetColumnWidth(int nCol, int cx);

    int InsertItem(const LVITEMA* pItem);
    int InsertItem(int nItem, LPCSTR lpszItem);
    int InsertItem(int nItem, LPCSTR lpszItem, int nImage);
    BOOL DeleteItem(int nItem);
    BOOL DeleteAllItems();
    int GetItemCount() const;
    BOOL GetItem(LVITEMA* pItem) const;
    BOOL SetItem(const LVITEMA* pItem);
    BOOL SetItemText(int nItem, int nSubItem, LPCSTR lpszText);
    CString GetItemText(int nItem, int nSubItem) const;
    BOOL SetItemState(int nItem, UINT nState, UINT nMask);
    UINT GetItemState(int nItem, UINT nMask) const;
    BOOL SetItemData(int nItem, DWORD_PTR dwData);
    DWORD_PTR GetItemData(int nItem) const;
    int GetNextItem(int nItem, int nFlags) const;
    BOOL EnsureVisible(int nItem, BOOL bPartialOK);
    BOOL GetItemRect(int nItem, LPRECT lpRect, UINT nCode) const;
};

class DLGFW_API CSpinButtonCtrl : public CWnd {
public:
    using CWnd::Create;
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);

    void SetRange(short nLower, short nUpper);
    DWORD GetRange() const;
    void GetRange(int& lower, int& upper) const;
    void SetRange32(int nLower, int nUpper);
    void GetRange32(int& lower, int& upper) const;
    // The position before. GetPos has a nonzero high word when the buddy's text is no number.
    int SetPos(int nPos);
    int GetPos() const;
    int SetPos32(int nPos);
    int GetPos32(LPBOOL lpbError = nullptr) const;
    int SetBase(int nBase);
    UINT GetBase() const;
    CWnd* SetBuddy(CWnd* pWndBuddy);
    CWnd* GetBuddy() const;
};
