#include <dlgfw/controls.h>

namespace {

// Handles travel in message parameters.
template <class Handle>
Handle ToHandle(LRESULT lResult) {
    return reinterpret_cast<Handle>(lResult);
}

template <class T>
LPARAM ToParam(T p) {
    return reinterpret_cast<LPARAM>(p);
}

// A number as it travels in a WPARAM, sign and all.
WPARAM Index(int n) {
    return static_cast<WPARAM>(n);
}

int ToInt(LRESULT lResult) {
    return static_cast<int>(lResult);
}
BOOL ToBool(LRESULT lResult) {
    return lResult != 0;
}

// The system reads through these pointers and declares them writable.
LPSTR Writable(LPCSTR psz) {
    return const_cast<LPSTR>(psz);
}

}  // namespace

BOOL CStatic::Create(LPCSTR lpszText, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CWnd::Create("STATIC", lpszText, dwStyle, rect, pParentWnd, nID);
}
HICON CStatic::SetIcon(HICON hIcon) {
    return ToHandle<HICON>(SendMessage(STM_SETICON, reinterpret_cast<WPARAM>(hIcon)));
}
HBITMAP CStatic::SetBitmap(HBITMAP hBitmap) {
    return ToHandle<HBITMAP>(SendMessage(STM_SETIMAGE, IMAGE_BITMAP, ToParam(hBitmap)));
}

BOOL CButton::Create(LPCSTR lpszCaption, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd,
                     UINT nID) {
    return CWnd::Create("BUTTON", lpszCaption, dwStyle, rect, pParentWnd, nID);
}
int CButton::GetCheck() const {
    return ToInt(SendMessage(BM_GETCHECK));
}
void CButton::SetCheck(int nCheck) {
    SendMessage(BM_SETCHECK, Index(nCheck));
}

BOOL CEdit::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CWnd::Create("EDIT", nullptr, dwStyle, rect, pParentWnd, nID);
}
void CEdit::GetSel(int& nStartChar, int& nEndChar) const {
    SendMessage(EM_GETSEL, reinterpret_cast<WPARAM>(&nStartChar), ToParam(&nEndChar));
}
void CEdit::SetSel(int nStartChar, int nEndChar, BOOL bNoScroll) {
    SendMessage(EM_SETSEL, Index(nStartChar), nEndChar);
    if (!bNoScroll) {
        SendMessage(EM_SCROLLCARET);
    }
}
void CEdit::SetLimitText(UINT nMax) {
    SendMessage(EM_SETLIMITTEXT, nMax);
}
BOOL CEdit::SetReadOnly(BOOL bReadOnly) {
    return ToBool(SendMessage(EM_SETREADONLY, Index(bReadOnly)));
}
void CEdit::SetPasswordChar(char ch) {
    SendMessage(EM_SETPASSWORDCHAR, static_cast<unsigned char>(ch));
}

CImageList* CListCtrl::SetImageList(CImageList* pImageList, int nImageList) {
    HIMAGELIST newHandle = pImageList == nullptr ? nullptr : pImageList->m_hImageList;
    return CImageList::FromHandle(
        ToHandle<HIMAGELIST>(SendMessage(LVM_SETIMAGELIST, Index(nImageList), ToParam(newHandle))));
}
int CListCtrl::InsertColumn(int nCol, LPCSTR lpszColumnHeading, int nFormat, int nWidth,
                            int nSubItem) {
    LVCOLUMNA column = {};
    column.mask = LVCF_TEXT | LVCF_FMT;
    column.pszText = Writable(lpszColumnHeading);
    column.fmt = nFormat;
    if (nWidth != -1) {
        column.mask |= LVCF_WIDTH;
        column.cx = nWidth;
    }
    if (nSubItem != -1) {
        column.mask |= LVCF_SUBITEM;
        column.iSubItem = nSubItem;
    }
    return ToInt(SendMessage(LVM_INSERTCOLUMNA, Index(nCol), ToParam(&column)));
}
int CListCtrl::InsertItem(int nItem, LPCSTR lpszItem, int nImage) {
    LVITEMA item = {};
    item.mask = LVIF_TEXT | LVIF_IMAGE;
    item.iItem = nItem;
    item.pszText = Writable(lpszItem);
    item.iImage = nImage;
    return ToInt(SendMessage(LVM_INSERTITEMA, 0, ToParam(&item)));
}
BOOL CListCtrl::SetItemText(int nItem, int nSubItem, LPCSTR lpszText) {
    LVITEMA item = {};
    item.iSubItem = nSubItem;
    item.pszText = Writable(lpszText);
    return ToBool(SendMessage(LVM_SETITEMTEXTA, Index(nItem), ToParam(&item)));
}

void CSpinButtonCtrl::SetRange32(int nLower, int nUpper) {
    SendMessage(UDM_SETRANGE32, Index(nLower), nUpper);
}
CWnd* CSpinButtonCtrl::SetBuddy(CWnd* pWndBuddy) {
    HWND newHandle = pWndBuddy == nullptr ? nullptr : pWndBuddy->m_hWnd;
    return FromHandle(
        ToHandle<HWND>(SendMessage(UDM_SETBUDDY, reinterpret_cast<WPARAM>(newHandle))));
}
