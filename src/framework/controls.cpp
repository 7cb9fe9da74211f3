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
HICON CStatic::GetIcon() const {
    return ToHandle<HICON>(SendMessage(STM_GETICON));
}
HBITMAP CStatic::SetBitmap(HBITMAP hBitmap) {
    return ToHandle<HBITMAP>(SendMessage(STM_SETIMAGE, IMAGE_BITMAP, ToParam(hBitmap)));
}
HBITMAP CStatic::GetBitmap() const {
    return ToHandle<HBITMAP>(SendMessage(STM_GETIMAGE, IMAGE_BITMAP));
}

BOOL CButton::Create(LPCSTR lpszCaption, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd,
                     UINT nID) {
    return CWnd::Create("BUTTON", lpszCaption, dwStyle, rect, pParentWnd, nID);
}
UINT CButton::GetState() const {
    return static_cast<UINT>(SendMessage(BM_GETSTATE));
}
void CButton::SetState(BOOL bHighlight) {
    SendMessage(BM_SETSTATE, Index(bHighlight));
}
int CButton::GetCheck() const {
    return ToInt(SendMessage(BM_GETCHECK));
}
void CButton::SetCheck(int nCheck) {
    SendMessage(BM_SETCHECK, Index(nCheck));
}
UINT CButton::GetButtonStyle() const {
    return GetStyle() & 0xFFFF;
}
void CButton::SetButtonStyle(UINT nStyle, BOOL bRedraw) {
    SendMessage(BM_SETSTYLE, nStyle, bRedraw);
}
HICON CButton::SetIcon(HICON hIcon) {
    return ToHandle<HICON>(SendMessage(BM_SETIMAGE, IMAGE_ICON, ToParam(hIcon)));
}
HICON CButton::GetIcon() const {
    return ToHandle<HICON>(SendMessage(BM_GETIMAGE, IMAGE_ICON));
}
HBITMAP CButton::SetBitmap(HBITMAP hBitmap) {
    return ToHandle<HBITMAP>(SendMessage(BM_SETIMAGE, IMAGE_BITMAP, ToParam(hBitmap)));
}
HBITMAP CButton::GetBitmap() const {
    return ToHandle<HBITMAP>(SendMessage(BM_GETIMAGE, IMAGE_BITMAP));
}

BOOL CEdit::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CWnd::Create("EDIT", nullptr, dwStyle, rect, pParentWnd, nID);
}
BOOL CEdit::CanUndo() const {
    return ToBool(SendMessage(EM_CANUNDO));
}
BOOL CEdit::Undo() {
    return ToBool(SendMessage(EM_UNDO));
}
void CEdit::EmptyUndoBuffer() {
    SendMessage(EM_EMPTYUNDOBUFFER);
}
BOOL CEdit::GetModify() const {
    return ToBool(SendMessage(EM_GETMODIFY));
}
void CEdit::SetModify(BOOL bModified) {
    SendMessage(EM_SETMODIFY, Index(bModified));
}
DWORD CEdit::GetSel() const {
    return static_cast<DWORD>(SendMessage(EM_GETSEL));
}
void CEdit::GetSel(int& nStartChar, int& nEndChar) const {
    SendMessage(EM_GETSEL, reinterpret_cast<WPARAM>(&nStartChar), ToParam(&nEndChar));
}
void CEdit::SetSel(DWORD dwSelection, BOOL bNoScroll) {
    SetSel(static_cast<short>(LOWORD(dwSelection)), static_cast<short>(HIWORD(dwSelection)),
           bNoScroll);
}
void CEdit::SetSel(int nStartChar, int nEndChar, BOOL bNoScroll) {
    SendMessage(EM_SETSEL, Index(nStartChar), nEndChar);
    if (!bNoScroll)
        SendMessage(EM_SCROLLCARET);
}
void CEdit::ReplaceSel(LPCSTR lpszNewText, BOOL bCanUndo) {
    SendMessage(EM_REPLACESEL, Index(bCanUndo), ToParam(lpszNewText));
}
void CEdit::LimitText(int nChars) {
    SendMessage(EM_LIMITTEXT, Index(nChars));
}
void CEdit::SetLimitText(UINT nMax) {
    SendMessage(EM_SETLIMITTEXT, nMax);
}
UINT CEdit::GetLimitText() const {
    return static_cast<UINT>(SendMessage(EM_GETLIMITTEXT));
}
BOOL CEdit::SetReadOnly(BOOL bReadOnly) {
    return ToBool(SendMessage(EM_SETREADONLY, Index(bReadOnly)));
}
char CEdit::GetPasswordChar() const {
    return static_cast<char>(SendMessage(EM_GETPASSWORDCHAR));
}
void CEdit::SetPasswordChar(char ch) {
    SendMessage(EM_SETPASSWORDCHAR, static_cast<unsigned char>(ch));
}
int CEdit::GetLineCount() const {
    return ToInt(SendMessage(EM_GETLINECOUNT));
}
int CEdit::LineLength(int nLine) const {
    return ToInt(SendMessage(EM_LINELENGTH, Index(nLine)));
}
void CEdit::GetRect(LPRECT lpRect) const {
    SendMessage(EM_GETRECT, 0, ToParam(lpRect));
}
void CEdit::SetRect(LPCRECT lpRect) {
    SendMessage(EM_SETRECT, 0, ToParam(lpRect));
}
DWORD CEdit::GetMargins() const {
    return static_cast<DWORD>(SendMessage(EM_GETMARGINS));
}
void CEdit::SetMargins(UINT nLeft, UINT nRight) {
    SendMessage(EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(nLeft, nRight));
}
void CEdit::Clear() {
    SendMessage(WM_CLEAR);
}
void CEdit::Copy() {
    SendMessage(WM_COPY);
}
void CEdit::Cut() {
    SendMessage(WM_CUT);
}
void CEdit::Paste() {
    SendMessage(WM_PASTE);
}

BOOL CListCtrl::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CWnd::Create(WC_LISTVIEWA, nullptr, dwStyle, rect, pParentWnd, nID);
}
CImageList* CListCtrl::SetImageList(CImageList* pImageList, int nImageList) {
    HIMAGELIST hNew = pImageList == nullptr ? nullptr : pImageList->m_hImageList;
    return CImageList::FromHandle(
        ToHandle<HIMAGELIST>(SendMessage(LVM_SETIMAGELIST, Index(nImageList), ToParam(hNew))));
}
CImageList* CListCtrl::GetImageList(int nImageList) const {
    return CImageList::FromHandle(
        ToHandle<HIMAGELIST>(SendMessage(LVM_GETIMAGELIST, Index(nImageList))));
}
DWORD CListCtrl::SetExtendedStyle(DWORD dwNewStyle) {
    return static_cast<DWORD>(SendMessage(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, dwNewStyle));
}
DWORD CListCtrl::GetExtendedStyle() const {
    return static_cast<DWORD>(SendMessage(LVM_GETEXTENDEDLISTVIEWSTYLE));
}
int CListCtrl::InsertColumn(int nCol, const LVCOLUMNA* pColumn) {
    return ToInt(SendMessage(LVM_INSERTCOLUMNA, Index(nCol), ToParam(pColumn)));
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
    return InsertColumn(nCol, &column);
}
BOOL CListCtrl::DeleteColumn(int nCol) {
    return ToBool(SendMessage(LVM_DELETECOLUMN, Index(nCol)));
}
BOOL CListCtrl::GetColumn(int nCol, LVCOLUMNA* pColumn) const {
    return ToBool(SendMessage(LVM_GETCOLUMNA, Index(nCol), ToParam(pColumn)));
}
int CListCtrl::GetColumnWidth(int nCol) const {
    return ToInt(SendMessage(LVM_GETCOLUMNWIDTH, Index(nCol)));
}
BOOL CListCtrl::SetColumnWidth(int nCol, int cx) {
    return ToBool(SendMessage(LVM_SETCOLUMNWIDTH, Index(nCol), MAKELPARAM(cx, 0)));
}
int CListCtrl::InsertItem(const LVITEMA* pItem) {
    return ToInt(SendMessage(LVM_INSERTITEMA, 0, ToParam(pItem)));
}
int CListCtrl::InsertItem(int nItem, LPCSTR lpszItem) {
    LVITEMA item = {};
    item.mask = LVIF_TEXT;
    item.iItem = nItem;
    item.pszText = Writable(lpszItem);
    return InsertItem(&item);
}
int CListCtrl::InsertItem(int nItem, LPCSTR lpszItem, int nImage) {
    LVITEMA item = {};
    item.mask = LVIF_TEXT | LVIF_IMAGE;
    item.iItem = nItem;
    item.pszText = Writable(lpszItem);
    item.iImage = nImage;
    return InsertItem(&item);
}
BOOL CListCtrl::DeleteItem(int nItem) {
    return ToBool(SendMessage(LVM_DELETEITEM, Index(nItem)));
}
BOOL CListCtrl::DeleteAllItems() {
    return ToBool(SendMessage(LVM_DELETEALLITEMS));
}
int CListCtrl::GetItemCount() const {
    return ToInt(SendMessage(LVM_GETITEMCOUNT));
}
BOOL CListCtrl::GetItem(LVITEMA* pItem) const {
    return ToBool(SendMessage(LVM_GETITEMA, 0, ToParam(pItem)));
}
BOOL CListCtrl::SetItem(const LVITEMA* pItem) {
    return ToBool(SendMessage(LVM_SETITEMA, 0, ToParam(pItem)));
}
BOOL CListCtrl::SetItemText(int nItem, int nSubItem, LPCSTR lpszText) {
    LVITEMA item = {};
    item.iSubItem = nSubItem;
    item.pszText = Writable(lpszText);
    return ToBool(SendMessage(LVM_SETITEMTEXTA, Index(nItem), ToParam(&item)));
}
CString CListCtrl::GetItemText(int nItem, int nSubItem) const {
    // The control tells a text's length only by filling a buffer that is larger.
    CString strText;
    LVITEMA item = {};
    item.iSubItem = nSubItem;
    for (int nCapacity = 255;; nCapacity = nCapacity * 2 + 1) {
        item.pszText = strText.GetBuffer(nCapacity);
        item.cchTextMax = nCapacity + 1;
        const int nLength = ToInt(SendMessage(LVM_GETITEMTEXTA, Index(nItem), ToParam(&item)));
        strText.ReleaseBuffer();
        constexpr int nLongest = 0x100000;
        if (nLength < nCapacity || nCapacity >= nLongest)
            return strText;
    }
}
BOOL CListCtrl::SetItemState(int nItem, UINT nState, UINT nMask) {
    LVITEMA item = {};
    item.state = nState;
    item.stateMask = nMask;
    return ToBool(SendMessage(LVM_SETITEMSTATE, Index(nItem), ToParam(&item)));
}
UINT CListCtrl::GetItemState(int nItem, UINT nMask) const {
    return static_cast<UINT>(
        SendMessage(LVM_GETITEMSTATE, Index(nItem), static_cast<LPARAM>(nMask)));
}
BOOL CListCtrl::SetItemData(int nItem, DWORD_PTR dwData) {
    LVITEMA item = {};
    item.mask = LVIF_PARAM;
    item.iItem = nItem;
    item.lParam = static_cast<LPARAM>(dwData);
    return SetItem(&item);
}
DWORD_PTR CListCtrl::GetItemData(int nItem) const {
    LVITEMA item = {};
    item.mask = LVIF_PARAM;
    item.iItem = nItem;
    GetItem(&item);
    return static_cast<DWORD_PTR>(item.lParam);
}
int CListCtrl::GetNextItem(int nItem, int nFlags) const {
    return ToInt(SendMessage(LVM_GETNEXTITEM, Index(nItem), MAKELPARAM(nFlags, 0)));
}
BOOL CListCtrl::EnsureVisible(int nItem, BOOL bPartialOK) {
    return ToBool(SendMessage(LVM_ENSUREVISIBLE, Index(nItem), MAKELPARAM(bPartialOK, 0)));
}
BOOL CListCtrl::GetItemRect(int nItem, LPRECT lpRect, UINT nCode) const {
    lpRect->left = static_cast<LONG>(nCode);
    return ToBool(SendMessage(LVM_GETITEMRECT, Index(nItem), ToParam(lpRect)));
}

BOOL CSpinButtonCtrl::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CWnd::Create(UPDOWN_CLASSA, nullptr, dwStyle, rect, pParentWnd, nID);
}
void CSpinButtonCtrl::SetRange(short nLower, short nUpper) {
    SendMessage(UDM_SETRANGE, 0, MAKELPARAM(nUpper, nLower));
}
DWORD CSpinButtonCtrl::GetRange() const {
    return static_cast<DWORD>(SendMessage(UDM_GETRANGE));
}
void CSpinButtonCtrl::GetRange(int& lower, int& upper) const {
    const DWORD dwRange = GetRange();
    lower = static_cast<short>(HIWORD(dwRange));
    upper = static_cast<short>(LOWORD(dwRange));
}
void CSpinButtonCtrl::SetRange32(int nLower, int nUpper) {
    SendMessage(UDM_SETRANGE32, Index(nLower), nUpper);
}
void CSpinButtonCtrl::GetRange32(int& lower, int& upper) const {
    SendMessage(UDM_GETRANGE32, reinterpret_cast<WPARAM>(&lower), ToParam(&upper));
}
int CSpinButtonCtrl::SetPos(int nPos) {
    return static_cast<short>(LOWORD(SendMessage(UDM_SETPOS, 0, MAKELPARAM(nPos, 0))));
}
int CSpinButtonCtrl::GetPos() const {
    return ToInt(SendMessage(UDM_GETPOS));
}
int CSpinButtonCtrl::SetPos32(int nPos) {
    return ToInt(SendMessage(UDM_SETPOS32, 0, nPos));
}
int CSpinButtonCtrl::GetPos32(LPBOOL lpbError) const {
    return ToInt(SendMessage(UDM_GETPOS32, 0, ToParam(lpbError)));
}
int CSpinButtonCtrl::SetBase(int nBase) {
    return ToInt(SendMessage(UDM_SETBASE, Index(nBase)));
}
UINT CSpinButtonCtrl::GetBase() const {
    return static_cast<UINT>(SendMessage(UDM_GETBASE));
}
CWnd* CSpinButtonCtrl::SetBuddy(CWnd* pWndBuddy) {
    HWND hNew = pWndBuddy == nullptr ? nullptr : pWndBuddy->m_hWnd;
    return FromHandle(ToHandle<HWND>(SendMessage(UDM_SETBUDDY, reinterpret_cast<WPARAM>(hNew))));
}
CWnd* CSpinButtonCtrl::GetBuddy() const {
    return FromHandle(ToHandle<HWND>(SendMessage(UDM_GETBUDDY)));
}
