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
    if (iStart < 0 || iStart >= m_nLength)
        return -1;
    const char* pch = std::strchr(m_pszData + iStart, ch);
    return pch == nullptr ? -1 : static_cast<int>(pch - m_pszData);
}

int CString::Find(LPCSTR pszSub, int iStart) const {
    if (pszSub == nullptr || iStart < 0 || iStart > m_nLength)
        return -1;
    const char* pch = std::strstr(m_pszData + iStart, pszSub);
    return pch == nullptr ? -1 : static_cast<int>(pch - m_pszData);
}

int CString::FindOneOf(LPCSTR pszCharSet) const {
    const char* pch = pszCharSet == nullptr ? nullptr : std::strpbrk(m_pszData, pszCharSet);
    return pch == nullptr ? -1 : static_cast<int>(pch - m_pszData);
}

int CString::ReverseFind(char ch) const {
    const char* pch = std::strrchr(m_pszData, ch);
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
    if (chOld == chNew)
        return 0;
    int nCount = 0;
    for (int i = 0; i < m_nLength; ++i) {
        if (m_pszData[i] == chOld) {
            m_pszData[i] = chNew;
            ++nCount;
        }
    }
    return nCount;
}

int CString::Replace(LPCSTR pszOld, LPCSTR pszNew) {
    const int nOld = pszOld == nullptr ? 0 : static_cast<int>(std::strlen(pszOld));
    if (nOld == 0)
        return 0;
    CString strResult;
    int nCount = 0;
    int iRest = 0;
    for (int i = Find(pszOld); i >= 0; i = Find(pszOld, iRest)) {
        strResult.Append(m_pszData + iRest, i - iRest);
        strResult.Append(pszNew);
        iRest = i + nOld;
        ++nCount;
    }
    if (nCount == 0)
        return 0;
    strResult.Append(m_pszData + iRest, m_nLength - iRest);
    *this = std::move(strResult);
    return nCount;
}

int CString::Remove(char chRemove) {
    char* pEnd = std::remove(m_pszData, m_pszData + m_nLength, chRemove);
    const int nNewLength = static_cast<int>(pEnd - m_pszData);
    const int nCount = m_nLength - nNewLength;
    Truncate(nNewLength);
    return nCount;
}

int CString::Insert(int iIndex, char ch) {
    const char szText[] = {ch, '\0'};
    return Insert(iIndex, szText);
}

int CString::Insert(int iIndex, LPCSTR psz) {
    iIndex = Clip(iIndex, m_nLength);
    CString strResult(m_pszData, iIndex);
    strResult.Append(psz);
    strResult.Append(m_pszData + iIndex, m_nLength - iIndex);
    *this = std::move(strResult);
    return m_nLength;
}

int CString::Delete(int iIndex, int nCount) {
    iIndex = Clip(iIndex, m_nLength);
    nCount = Clip(nCount, m_nLength - iIndex);
    if (nCount > 0) {
        std::memmove(m_pszData + iIndex, m_pszData + iIndex + nCount,
                     static_cast<size_t>(m_nLength - iIndex - nCount));
        Truncate(m_nLength - nCount);
    }
    return m_nLength;
}

CString& CString::MakeUpper() {
    if (m_nLength > 0)
        CharUpperBuffA(m_pszData, static_cast<DWORD>(m_nLength));
    return *this;
}

CString& CString::MakeLower() {
    if (m_nLength > 0)
        CharLowerBuffA(m_pszData, static_cast<DWORD>(m_nLength));
    return *this;
}

CString& CString::Trim() {
    return Trim(g_szWhiteSpace);
}
CString& CString::TrimLeft() {
    return TrimLeft(g_szWhiteSpace);
}
CString& CString::TrimRight() {
    return TrimRight(g_szWhiteSpace);
}

CString& CString::Trim(char ch) {
    return TrimRight(ch).TrimLeft(ch);
}

CString& CString::TrimLeft(char ch) {
    const char szTarget[] = {ch, '\0'};
    return TrimLeft(szTarget);
}

CString& CString::TrimRight(char ch) {
    const char szTarget[] = {ch, '\0'};
    return TrimRight(szTarget);
}

CString& CString::Trim(LPCSTR pszTargets) {
    return TrimRight(pszTargets).TrimLeft(pszTargets);
}

CString& CString::TrimLeft(LPCSTR pszTargets) {
    if (pszTargets != nullptr)
        Delete(0, static_cast<int>(std::strspn(m_pszData, pszTargets)));
    return *this;
}

CString& CString::TrimRight(LPCSTR pszTargets) {
    int nLength = m_nLength;
    while (pszTargets != nullptr && nLength > 0 && m_pszData[nLength - 1] != '\0' &&
           std::strchr(pszTargets, m_pszData[nLength - 1]) != nullptr)
        --nLength;
    Truncate(nLength);
    return *this;
}
