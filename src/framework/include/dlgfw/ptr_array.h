// CPtrArray: a growing array of pointers that it does not own.
//
// An index out of range throws std::out_of_range, except where a function grows the array.
#pragma once

#include <dlgfw/afx_export.h>

class DLGFW_API CPtrArray {
public:
    CPtrArray() noexcept = default;
    CPtrArray(const CPtrArray&) = delete;
    CPtrArray& operator=(const CPtrArray&) = delete;
    ~CPtrArray();

    INT_PTR GetSize() const noexcept { return m_nSize; }
    INT_PTR GetCount() const noexcept { return m_nSize; }
    INT_PTR GetUpperBound() const noexcept { return m_nSize - 1; }
    BOOL IsEmpty() const noexcept { return m_nSize == 0; }
    // New elements are null. The growth step is kept for later growth; 0 lets the array choose.
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1);
    void RemoveAll();

    void* GetAt(INT_PTR nIndex) const;
    void SetAt(INT_PTR nIndex, void* pElement);
    void*& ElementAt(INT_PTR nIndex);
    void* operator[](INT_PTR nIndex) const { return GetAt(nIndex); }
    void*& operator[](INT_PTR nIndex) { return ElementAt(nIndex); }
    void** GetData() noexcept { return m_pData; }
    void* const* GetData() const noexcept { return m_pData; }

    // Grow as needed; Add returns the new element's index.
    void SetAtGrow(INT_PTR nIndex, void* pElement);
    INT_PTR Add(void* pElement);
    void InsertAt(INT_PTR nIndex, void* pElement, INT_PTR nCount = 1);
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1);

private:
    void Reserve(INT_PTR nSize);
    void CheckIndex(INT_PTR nIndex) const;

    void** m_pData = nullptr;
    INT_PTR m_nSize = 0;
    INT_PTR m_nMaxSize = 0;
    INT_PTR m_nGrowBy = 0;
};
