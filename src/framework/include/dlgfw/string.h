// CString: an 8-bit string that wipes what it gives up.
//
// Every object has storage of its own. Whenever bytes are no longer part of the text (the
// destructor, a reallocation, an assignment of something shorter, Empty, ReleaseBuffer) they are
// overwritten with zeros, over the whole capacity, in a way that the optimiser keeps. So a secret
// may be held in a CString without leaving copies behind; pass it by reference or move it.
//
//     CString strPin;
//     edit.GetWindowText(strPin);
//     strLine.Format("%d tries left for %s", nTries, static_cast<LPCSTR>(strReader));
//
// Indices and lengths count bytes. Functions that take a position or a count accept values out of
// range and clip them, as stated; GetAt, SetAt and operator[] throw std::out_of_range instead.
// Running out of memory throws std::bad_alloc.
#pragma once

#include <dlgfw/afx_export.h>

class DLGFW_API CString {
public:
    CString() noexcept;
    CString(const CString& strSource);
    // Takes the storage over; the source is empty afterwards.
    CString(CString&& strSource) noexcept;
    // A null pointer gives an empty string.
    CString(LPCSTR psz);  // NOLINT(google-explicit-constructor): converts, as its users expect
    CString(LPCSTR pch, int nLength);
    explicit CString(char ch, int nRepeat = 1);
    ~CString();

    CString& operator=(const CString& strSource);
    CString& operator=(CString&& strSource) noexcept;
    CString& operator=(LPCSTR psz);

    int GetLength() const noexcept { return m_nLength; }
    bool IsEmpty() const noexcept { return m_nLength == 0; }
    // The number of bytes that fit without a reallocation, the terminator not counted.
    int GetAllocLength() const noexcept { return m_nAlloc; }
    LPCSTR GetString() const noexcept { return m_pszData; }
    operator LPCSTR() const noexcept { return m_pszData; }

    // Wipes and releases the storage.
    void Empty() noexcept;

    // 0 <= iChar <= GetLength(); the terminator may be read.
    char GetAt(int iChar) const;
    char operator[](int iChar) const { return GetAt(iChar); }
    // 0 <= iChar < GetLength().
    void SetAt(int iChar, char ch);

    void SetString(LPCSTR psz);
    void SetString(LPCSTR pch, int nLength);
    void Append(LPCSTR psz);
    void Append(LPCSTR pch, int nLength);
    void AppendChar(char ch);
    CString& operator+=(const CString& str);
    CString& operator+=(LPCSTR psz);
    CString& operator+=(char ch);
    // Cuts the text down to nNewLength; a longer value changes nothing.
    void Truncate(int nNewLength);

    // Lends the storage for direct writing: at least nMinBufLength bytes and a terminator. Every
    // loan ends with ReleaseBuffer before the string is used otherwise.
    LPSTR GetBuffer();
    LPSTR GetBuffer(int nMinBufLength);
    // -1 takes the text up to its terminator. What stands behind the text is wiped.
    void ReleaseBuffer(int nNewLength = -1);

    // printf; the string's own text may be among the arguments.
    void Format(LPCSTR pszFormat, ...) AFX_PRINTF(2, 3);

    // A string resource, looked for along the resource chain (module_state.h) or in one module.
    // FALSE when it is missing or empty, and then the text stays as it was.
    BOOL LoadString(UINT nID);
    BOOL LoadString(HINSTANCE hInstance, UINT nID);

    // The position of the first match at or behind iStart, or -1.
    int Find(char ch, int iStart = 0) const;
    int Find(LPCSTR pszSub, int iStart = 0) const;

    CString Mid(int iFirst) const;
    CString Mid(int iFirst, int nCount) const;
    CString Left(int nCount) const;
    CString Right(int nCount) const;

    // Each returns the number of changes.
    int Replace(char chOld, char chNew);
    int Replace(LPCSTR pszOld, LPCSTR pszNew);
    int Remove(char chRemove);

    // In the ANSI code page, as the operating system's own function does it.
    CString& MakeUpper();

    // Of white space.
    CString& Trim();
    CString& TrimLeft();
    CString& TrimRight();

    // < 0, 0 or > 0, by byte values and by the ANSI code page without regard to case.
    int Compare(LPCSTR psz) const;
    int CompareNoCase(LPCSTR psz) const;

private:
    struct Block;  // a new storage block under construction

    void Reserve(int nLength);
    void SetLength(int nLength) noexcept;
    void Take(Block& block) noexcept;

    LPSTR m_pszData;  // the shared empty text, or a block of m_nAlloc + 1 bytes
    int m_nLength;    // all bytes behind it are zero, except while a buffer is lent
    int m_nAlloc;     // 0 for the shared empty text
};

DLGFW_API CString operator+(const CString& str1, const CString& str2);
DLGFW_API CString operator+(const CString& str1, LPCSTR psz2);
DLGFW_API CString operator+(LPCSTR psz1, const CString& str2);

inline bool operator==(const CString& str1, const CString& str2) {
    return str1.Compare(str2) == 0;
}
inline bool operator==(const CString& str1, LPCSTR psz2) {
    return str1.Compare(psz2) == 0;
}
inline bool operator!=(const CString& str1, const CString& str2) {
    return str1.Compare(str2) != 0;
}
inline bool operator!=(const CString& str1, LPCSTR psz2) {
    return str1.Compare(psz2) != 0;
}
inline bool operator==(LPCSTR psz1, const CString& str2) {
    return str2 == psz1;
}
inline bool operator!=(LPCSTR psz1, const CString& str2) {
    return str2 != psz1;
}
