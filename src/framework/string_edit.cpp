// CString: comparing, searching, cutting and replacing.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include <dlgfw/string.h>
#include <mbstring.h>

namespace {

const char g_szWhiteSpace[] = " \t\n\v\f\r";

const unsigned char* Bytes(LPCSTR psz) {
    return reinterpret_cast<const unsigned char*>(psz == nullptr ? "" : psz);
}

// A position from outside, brought into 0 .. nLength.
int Clip(int nValue, int nLength) {
    return std::clamp(nValue, 0, nLength);
}

}  // namespace

int CString::Compare(LPCSTR psz) const {
    return std::strcmp(m_pszData, psz == nullptr ? "" : psz);
}

int CString::CompareNoCase(LPCSTR psz) const {
    return _mbsicmp(Bytes(m_pszData), Bytes(psz));
}

int CString::Find(char ch, int iStart) const {
    if (iStart < 0 || iStart >= m_nLength) {
        return -1;
    }
    const char* pch = std::strchr(m_pszData + iStart, ch);
    return pch == nullptr ? -1 : static_cast<int>(pch - m_pszData);
}

int CString::Find(LPCSTR pszSub, int iStart) const {
    if (pszSub == nullptr || iStart < 0 || iStart > m_nLength) {
        return -1;
    }
    const char* pch = std::strstr(m_pszData + iStart, pszSub);
    return pch == nullptr ? -1 : static_cast<int>(pch - m_pszData);
}

CString CString::Mid(int iFirst) const {
    return Mid(iFirst, m_nLength);
}

CString CString::Mid(int iFirst, int nCount) const {
    iFirst = Clip(iFirst, m_nLength);
    return {m_pszData + iFirst, Clip(nCount, m_nLength - iFirst)};
}

CString CString::Left(int nCount) const {
    return {m_pszData, Clip(nCount, m_nLength)};
}

CString CString::Right(int nCount) const {
    nCount = Clip(nCount, m_nLength);
    return {m_pszData + m_nLength - nCount, nCount};
}

int CString::Replace(char chOld, char chNew) {
    if (chOld == chNew) {
        return 0;
    }
    int count = 0;
    for (int i = 0; i < m_nLength; ++i) {
        if (m_pszData[i] == chOld) {
            m_pszData[i] = chNew;
            ++count;
        }
    }
    return count;
}

int CString::Replace(LPCSTR pszOld, LPCSTR pszNew) {
    const int old = pszOld == nullptr ? 0 : static_cast<int>(std::strlen(pszOld));
    if (old == 0) {
        return 0;
    }
    CString result;
    int count = 0;
    int rest = 0;
    for (int i = Find(pszOld); i >= 0; i = Find(pszOld, rest)) {
        result.Append(m_pszData + rest, i - rest);
        result.Append(pszNew);
        rest = i + old;
        ++count;
    }
    if (count == 0) {
        return 0;
    }
    result.Append(m_pszData + rest, m_nLength - rest);
    *this = std::move(result);
    return count;
}

int CString::Remove(char chRemove) {
    char* end = std::remove(m_pszData, m_pszData + m_nLength, chRemove);
    const int newLength = static_cast<int>(end - m_pszData);
    const int count = m_nLength - newLength;
    Truncate(newLength);
    return count;
}

CString& CString::MakeUpper() {
    if (m_nLength > 0) {
        CharUpperBuffA(m_pszData, static_cast<DWORD>(m_nLength));
    }
    return *this;
}

CString& CString::Trim() {
    return TrimRight().TrimLeft();
}

CString& CString::TrimLeft() {
    const auto cut = static_cast<int>(std::strspn(m_pszData, g_szWhiteSpace));
    SetString(m_pszData + cut, m_nLength - cut);
    return *this;
}

CString& CString::TrimRight() {
    int length = m_nLength;
    while (length > 0 && m_pszData[length - 1] != '\0' &&
           std::strchr(g_szWhiteSpace, m_pszData[length - 1]) != nullptr) {
        --length;
    }
    Truncate(length);
    return *this;
}
