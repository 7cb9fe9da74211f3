// CImageList: an owner of one of the system's image lists.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <dlgfw/gdi_object.h>

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

    int GetImageCount() const;
    // Each returns the index of the first new image, or -1. The sources are copied.
    int Add(HICON hIcon);
    int Add(CBitmap* pbmImage, CBitmap* pbmMask);
    int Add(CBitmap* pbmImage, COLORREF crMask);
    BOOL Remove(int nImage);
    int Replace(int nImage, HICON hIcon);
    // The caller destroys the icon.
    HICON ExtractIcon(int nImage);
    BOOL Draw(CDC* pDC, int nImage, POINT pt, UINT nStyle);

    HIMAGELIST m_hImageList = nullptr;
};
