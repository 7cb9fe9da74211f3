#include <algorithm>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include <dlgfw/ptr_array.h>

CPtrArray::~CPtrArray() {
    std::free(m_pData);
}

void CPtrArray::RemoveAll() {
    std::free(m_pData);
    m_pData = nullptr;
    m_nSize = 0;
    m_nMaxSize = 0;
}

void* CPtrArray::GetAt(INT_PTR nIndex) const {
    if (nIndex < 0 || nIndex >= m_nSize) {
        throw std::out_of_range("CPtrArray::GetAt");
    }
    return m_pData[nIndex];
}

INT_PTR CPtrArray::Add(void* pElement) {
    InsertAt(m_nSize, pElement);
    return m_nSize - 1;
}

void CPtrArray::InsertAt(INT_PTR nIndex, void* pElement) {
    if (nIndex < 0 || nIndex > m_nSize) {
        throw std::out_of_range("CPtrArray::InsertAt");
    }
    if (m_nSize == m_nMaxSize) {
        const INT_PTR most = m_nMaxSize + std::max<INT_PTR>(4, m_nMaxSize / 2);
        void* p = std::realloc(m_pData, static_cast<size_t>(most) * sizeof(void*));
        if (p == nullptr) {
            throw std::bad_alloc();
        }
        m_pData = static_cast<void**>(p);
        m_nMaxSize = most;
    }
    std::move_backward(m_pData + nIndex, m_pData + m_nSize, m_pData + m_nSize + 1);
    m_pData[nIndex] = pElement;
    ++m_nSize;
}
