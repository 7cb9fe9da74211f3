#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <stdexcept>

#include <dlgfw/ptr_array.h>

namespace {

constexpr INT_PTR g_nMaxCount =
    std::numeric_limits<INT_PTR>::max() / static_cast<INT_PTR>(sizeof(void*));

}  // namespace

CPtrArray::~CPtrArray() {
    std::free(m_pData);
}

void CPtrArray::CheckIndex(INT_PTR nIndex) const {
    if (nIndex < 0 || nIndex >= m_nSize)
        throw std::out_of_range("CPtrArray");
}

void CPtrArray::Reserve(INT_PTR nSize) {
    if (nSize <= m_nMaxSize)
        return;
    if (nSize > g_nMaxCount)
        throw std::bad_alloc();
    const INT_PTR nStep = m_nGrowBy > 0 ? m_nGrowBy : std::max<INT_PTR>(4, m_nSize / 2);
    const INT_PTR nMax =
        nStep > g_nMaxCount - m_nMaxSize ? nSize : std::max(nSize, m_nMaxSize + nStep);
    void* p = std::realloc(m_pData, static_cast<size_t>(nMax) * sizeof(void*));
    if (p == nullptr)
        throw std::bad_alloc();
    m_pData = static_cast<void**>(p);
    m_nMaxSize = nMax;
}

void CPtrArray::SetSize(INT_PTR nNewSize, INT_PTR nGrowBy) {
    if (nNewSize < 0)
        throw std::out_of_range("CPtrArray::SetSize");
    if (nGrowBy >= 0)
        m_nGrowBy = nGrowBy;
    if (nNewSize == 0) {
        std::free(m_pData);
        m_pData = nullptr;
        m_nMaxSize = 0;
    } else {
        Reserve(nNewSize);
        if (nNewSize > m_nSize)
            std::fill(m_pData + m_nSize, m_pData + nNewSize, nullptr);
    }
    m_nSize = nNewSize;
}

void CPtrArray::RemoveAll() {
    SetSize(0);
}

void* CPtrArray::GetAt(INT_PTR nIndex) const {
    CheckIndex(nIndex);
    return m_pData[nIndex];
}

void CPtrArray::SetAt(INT_PTR nIndex, void* pElement) {
    ElementAt(nIndex) = pElement;
}

void*& CPtrArray::ElementAt(INT_PTR nIndex) {
    CheckIndex(nIndex);
    return m_pData[nIndex];
}

void CPtrArray::SetAtGrow(INT_PTR nIndex, void* pElement) {
    if (nIndex >= m_nSize)
        SetSize(nIndex + 1);
    SetAt(nIndex, pElement);
}

INT_PTR CPtrArray::Add(void* pElement) {
    const INT_PTR nIndex = m_nSize;
    SetAtGrow(nIndex, pElement);
    return nIndex;
}

// An index behind the end fills the gap with nulls.
void CPtrArray::InsertAt(INT_PTR nIndex, void* pElement, INT_PTR nCount) {
    if (nIndex < 0 || nCount < 0 || nCount > g_nMaxCount - std::max(m_nSize, nIndex))
        throw std::out_of_range("CPtrArray::InsertAt");
    const INT_PTR nOldSize = m_nSize;
    SetSize(std::max(m_nSize, nIndex) + nCount);
    if (nIndex < nOldSize)
        std::move_backward(m_pData + nIndex, m_pData + nOldSize, m_pData + m_nSize);
    std::fill_n(m_pData + nIndex, nCount, pElement);
}

void CPtrArray::RemoveAt(INT_PTR nIndex, INT_PTR nCount) {
    if (nIndex < 0 || nCount < 0 || nIndex > m_nSize || nCount > m_nSize - nIndex)
        throw std::out_of_range("CPtrArray::RemoveAt");
    std::move(m_pData + nIndex + nCount, m_pData + m_nSize, m_pData + nIndex);
    m_nSize -= nCount;
}
