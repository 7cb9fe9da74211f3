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
    HBITMAP SetBitmap(HBITMAP hBitmap);
};

class DLGFW_API CButton : public CWnd {
public:
    using CWnd::Create;
    virtual BOOL Create(LPCSTR lpszCaption, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd,
                        UINT nID);

    // BST_*.
    int GetCheck() const;
    void SetCheck(int nCheck);
};

class DLGFW_API CEdit : public CWnd {
public:
    using CWnd::Create;
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);

    void GetSel(int& nStartChar, int& nEndChar) const;
    void SetSel(int nStartChar, int nEndChar, BOOL bNoScroll = FALSE);
    void SetLimitText(UINT nMax);
    BOOL SetReadOnly(BOOL bReadOnly = TRUE);
    void SetPasswordChar(char ch);
};

class DLGFW_API CListCtrl : public CWnd {
public:
    // nImageList: LVSIL_*. The list stays the caller's (or the control's, without
    // LVS_SHAREIMAGELISTS); the one shown before is returned.
    CImageList* SetImageList(CImageList* pImageList, int nImageList);

    // Each returns the index of what was inserted, or -1.
    int InsertColumn(int nCol, LPCSTR lpszColumnHeading, int nFormat = LVCFMT_LEFT, int nWidth = -1,
                     int nSubItem = -1);
    int InsertItem(int nItem, LPCSTR lpszItem, int nImage);
    BOOL SetItemText(int nItem, int nSubItem, LPCSTR lpszText);
};

class DLGFW_API CSpinButtonCtrl : public CWnd {
public:
    void SetRange32(int nLower, int nUpper);
    // The window whose text shows the position; returns the one before.
    CWnd* SetBuddy(CWnd* pWndBuddy);
};
