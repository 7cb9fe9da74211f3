// CPtrArray: a growing array of pointers that it does not own.
//
// An index out of range throws std::out_of_range.
#pragma once

#include <dlgfw/afx_export.h>

class DLGFW_API CPtrArray {
public:
    CPtrArray() noexcept = default;
    CPtrArray(const CPtrArray&) = delete;
    CPtrArray& operator=(const CPtrArray&) = delete;
    ~CPtrArray();

    INT_PTR GetSize() const noexcept { return m_nSize; }
    void RemoveAll();

    void* GetAt(INT_PTR nIndex) const;
    void* operator[](INT_PTR nIndex) const { return GetAt(nIndex); }

    // Returns the new element's index.
    INT_PTR Add(void* pElement);
    // 0 <= nIndex <= GetSize(); what stands there and behind moves up.
    void InsertAt(INT_PTR nIndex, void* pElement);

private:
    void** m_pData = nullptr;
    INT_PTR m_nSize = 0;
    INT_PTR m_nMaxSize = 0;
};
