// CImageList: an owner of one of the system's image lists.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <dlgfw/afx_export.h>

class DLGFW_API CImageList {
public:
    CImageList() noexcept = default;
    CImageList(const CImageList&) = delete;
    CImageList& operator=(const CImageList&) = delete;
    virtual ~CImageList();

    // The object attached to the list on this thread, or a temporary one (wnd.h).
    static CImageList* FromHandle(HIMAGELIST hImageList);
    HIMAGELIST GetSafeHandle() const noexcept { return m_hImageList; }
    operator HIMAGELIST() const noexcept { return m_hImageList; }
    BOOL Attach(HIMAGELIST hImageList);
    HIMAGELIST Detach();

    // Sizes in pixels, nInitial and nGrow in images; nFlags: ILC_*.
    BOOL Create(int cx, int cy, UINT nFlags, int nInitial, int nGrow);
    BOOL DeleteImageList();

    // Returns the index of the new image, or -1. The icon is copied.
    int Add(HICON hIcon);

    HIMAGELIST m_hImageList = nullptr;
};
