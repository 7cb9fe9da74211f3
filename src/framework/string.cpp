// CString: storage, assignment, concatenation, buffers, formatting.
#include <windows.h>

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

#include <dlgfw/module_state.h>
#include <dlgfw/string.h>

namespace {

const char g_szEmpty[1] = "";

// What every empty string without storage points to. It is never written to: all writes go through
// Reserve, which takes a null capacity for "no storage".
LPSTR EmptyText() noexcept {
    return const_cast<LPSTR>(g_szEmpty);
}

size_t Size(int nLength) noexcept {
    return static_cast<size_t>(nLength);
}

int Length(LPCSTR psz) {
    if (psz == nullptr) {
        return 0;
    }
    const size_t length = std::strlen(psz);
    if (length >= INT_MAX) {
        throw std::bad_alloc();
    }
    return static_cast<int>(length);
}

int Sum(int nLength1, int nLength2) {
    if (nLength2 > INT_MAX - nLength1) {
        throw std::bad_alloc();
    }
    return nLength1 + nLength2;
}

// The capacity for a text of nLength: some room to grow, and one that fills the heap's own steps.
int Capacity(int nLength, int nPrevious) noexcept {
    const long long wanted = std::max<long long>(nLength, nPrevious + nPrevious / 2LL);
    return static_cast<int>(std::min<long long>(wanted | 15, INT_MAX - 1));
}

}  // namespace

// A zeroed block of its own, wiped and freed unless a string takes it.
struct CString::Block {
    explicit Block(int nCapacity)
        : pszData(static_cast<LPSTR>(std::calloc(Size(nCapacity) + 1, 1))), nAlloc(nCapacity) {
        if (pszData == nullptr) {
            throw std::bad_alloc();
        }
    }
    Block(LPSTR psz, int nCapacity) noexcept : pszData(psz), nAlloc(nCapacity) {}
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block() {
        if (pszData == EmptyText()) {
            return;
        }
        SecureZeroMemory(pszData, Size(nAlloc) + 1);
        std::free(pszData);
    }

    LPSTR pszData;
    int nAlloc;
};

// Exchanges the storage: the block leaves with the old one.
void CString::Take(Block& block) noexcept {
    std::swap(m_pszData, block.pszData);
    std::swap(m_nAlloc, block.nAlloc);
}

// Makes the storage writable and large enough; the text stays.
void CString::Reserve(int nLength) {
    if (m_nAlloc != 0 && nLength <= m_nAlloc) {
        return;
    }
    Block block(Capacity(nLength, m_nAlloc));
    std::memcpy(block.pszData, m_pszData, Size(m_nLength));
    Take(block);
}

// Ends the text at nLength and wipes the rest of the storage.
void CString::SetLength(int nLength) noexcept {
    if (m_nAlloc == 0) {
        return;
    }
    SecureZeroMemory(m_pszData + nLength, Size(m_nAlloc - nLength) + 1);
    m_nLength = nLength;
}

CString::CString() noexcept : m_pszData(EmptyText()), m_nLength(0), m_nAlloc(0) {}

CString::CString(const CString& strSource) : CString() {
    SetString(strSource.m_pszData, strSource.m_nLength);
}

CString::CString(CString&& strSource) noexcept
    : m_pszData(std::exchange(strSource.m_pszData, EmptyText())),
      m_nLength(std::exchange(strSource.m_nLength, 0)),
      m_nAlloc(std::exchange(strSource.m_nAlloc, 0)) {}

CString::CString(LPCSTR psz) : CString() {
    SetString(psz);
}

CString::CString(LPCSTR pch, int nLength) : CString() {
    SetString(pch, nLength);
}

CString::CString(char ch, int nRepeat) : CString() {
    if (nRepeat <= 0) {
        return;
    }
    std::memset(GetBuffer(nRepeat), ch, Size(nRepeat));
    ReleaseBuffer(nRepeat);
}

CString::~CString() {
    Empty();
}

CString& CString::operator=(const CString& strSource) {
    if (this != &strSource) {
        SetString(strSource.m_pszData, strSource.m_nLength);
    }
    return *this;
}

CString& CString::operator=(CString&& strSource) noexcept {
    if (this != &strSource) {
        Empty();
        std::swap(m_pszData, strSource.m_pszData);
        std::swap(m_nLength, strSource.m_nLength);
        std::swap(m_nAlloc, strSource.m_nAlloc);
    }
    return *this;
}

CString& CString::operator=(LPCSTR psz) {
    SetString(psz);
    return *this;
}

void CString::Empty() noexcept {
    const Block old(std::exchange(m_pszData, EmptyText()), std::exchange(m_nAlloc, 0));
    m_nLength = 0;
}

char CString::GetAt(int iChar) const {
    if (iChar < 0 || iChar > m_nLength) {
        throw std::out_of_range("CString::GetAt");
    }
    return m_pszData[iChar];
}

void CString::SetAt(int iChar, char ch) {
    if (iChar < 0 || iChar >= m_nLength) {
        throw std::out_of_range("CString::SetAt");
    }
    m_pszData[iChar] = ch;
}

void CString::SetString(LPCSTR psz) {
    SetString(psz, Length(psz));
}

// The source may be a part of this very text.
void CString::SetString(LPCSTR pch, int nLength) {
    if (pch == nullptr || nLength <= 0) {
        Empty();
    } else if (nLength <= m_nAlloc) {
        std::memmove(m_pszData, pch, Size(nLength));
        SetLength(nLength);
    } else {
        Block block(Capacity(nLength, 0));
        std::memcpy(block.pszData, pch, Size(nLength));
        Take(block);
        m_nLength = nLength;
    }
}

void CString::Append(LPCSTR psz) {
    Append(psz, Length(psz));
}

// The source may be a part of this very text, so the old storage goes last.
void CString::Append(LPCSTR pch, int nLength) {
    if (pch == nullptr || nLength <= 0) {
        return;
    }
    const int newLength = Sum(m_nLength, nLength);
    if (newLength <= m_nAlloc) {
        std::memmove(m_pszData + m_nLength, pch, Size(nLength));
    } else {
        Block block(Capacity(newLength, m_nAlloc));
        std::memcpy(block.pszData, m_pszData, Size(m_nLength));
        std::memcpy(block.pszData + m_nLength, pch, Size(nLength));
        Take(block);
    }
    m_nLength = newLength;
}

void CString::AppendChar(char ch) {
    Append(&ch, 1);
}

CString& CString::operator+=(const CString& str) {
    Append(str.m_pszData, str.m_nLength);
    return *this;
}

CString& CString::operator+=(LPCSTR psz) {
    Append(psz);
    return *this;
}

CString& CString::operator+=(char ch) {
    AppendChar(ch);
    return *this;
}

void CString::Truncate(int nNewLength) {
    if (nNewLength < m_nLength) {
        SetLength(std::max(nNewLength, 0));
    }
}

LPSTR CString::GetBuffer() {
    return GetBuffer(0);
}

LPSTR CString::GetBuffer(int nMinBufLength) {
    Reserve(std::max(nMinBufLength, m_nLength));
    return m_pszData;
}

void CString::ReleaseBuffer(int nNewLength) {
    if (nNewLength < 0) {
        nNewLength = static_cast<int>(strnlen(m_pszData, Size(m_nAlloc)));
    }
    SetLength(std::min(nNewLength, m_nAlloc));
}

void CString::Format(LPCSTR pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    const int length = std::vsnprintf(nullptr, 0, pszFormat, args);
    va_end(args);

    CString result;
    if (length > 0) {
        va_start(args, pszFormat);
        std::vsnprintf(result.GetBuffer(length), Size(length) + 1, pszFormat, args);
        va_end(args);
        result.ReleaseBuffer(length);
    }
    *this = std::move(result);
}

BOOL CString::LoadString(UINT nID) {
    return LoadString(AfxFindStringResourceHandle(nID), nID);
}

BOOL CString::LoadString(HINSTANCE hInstance, UINT nID) {
    // The system tells a text's length only by filling a buffer that is larger.
    CString text;
    for (int capacity = 255;; capacity = capacity * 2 + 1) {
        const int length = ::LoadStringA(hInstance, nID, text.GetBuffer(capacity), capacity + 1);
        text.ReleaseBuffer(length);
        if (length == 0) {
            return FALSE;
        }
        if (length < capacity) {
            break;
        }
    }
    *this = std::move(text);
    return TRUE;
}

CString operator+(const CString& str1, const CString& str2) {
    CString str(str1);
    str += str2;
    return str;
}

CString operator+(const CString& str1, LPCSTR psz2) {
    CString str(str1);
    str += psz2;
    return str;
}

CString operator+(LPCSTR psz1, const CString& str2) {
    CString str;
    str = psz1;
    str += str2;
    return str;
}
