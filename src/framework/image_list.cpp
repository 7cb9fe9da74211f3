#include <utility>

#include <dlgfw/dc.h>
#include <dlgfw/image_list.h>

#include "framework/handle_maps.h"

CImageList::~CImageList() {
    DeleteImageList();
}

CImageList* CImageList::FromHandle(HIMAGELIST hImageList) {
    return dlgfw::ObjectFromHandle<CImageList>(dlgfw::ImageLists(), hImageList);
}

BOOL CImageList::Attach(HIMAGELIST hImageList) {
    if (hImageList == nullptr)
        return FALSE;
    if (hImageList == m_hImageList)
        return TRUE;
    DeleteImageList();
    dlgfw::ImageLists().Insert(hImageList, this);
    m_hImageList = hImageList;
    return TRUE;
}

HIMAGELIST CImageList::Detach() {
    HIMAGELIST hImageList = std::exchange(m_hImageList, nullptr);
    dlgfw::ImageLists().Erase(hImageList, this);
    return hImageList;
}

BOOL CImageList::Create(int cx, int cy, UINT nFlags, int nInitial, int nGrow) {
    return Attach(ImageList_Create(cx, cy, nFlags, nInitial, nGrow));
}

BOOL CImageList::DeleteImageList() {
    HIMAGELIST hImageList = Detach();
    return hImageList != nullptr && ImageList_Destroy(hImageList);
}

int CImageList::GetImageCount() const {
    return ImageList_GetImageCount(m_hImageList);
}

int CImageList::Add(HICON hIcon) {
    return Replace(-1, hIcon);
}

int CImageList::Add(CBitmap* pbmImage, CBitmap* pbmMask) {
    return ImageList_Add(m_hImageList, *pbmImage,
                         pbmMask == nullptr ? nullptr : static_cast<HBITMAP>(*pbmMask));
}

int CImageList::Add(CBitmap* pbmImage, COLORREF crMask) {
    return ImageList_AddMasked(m_hImageList, *pbmImage, crMask);
}

BOOL CImageList::Remove(int nImage) {
    return ImageList_Remove(m_hImageList, nImage);
}

int CImageList::Replace(int nImage, HICON hIcon) {
    return ImageList_ReplaceIcon(m_hImageList, nImage, hIcon);
}

HICON CImageList::ExtractIcon(int nImage) {
    return ImageList_GetIcon(m_hImageList, nImage, ILD_NORMAL);
}

BOOL CImageList::Draw(CDC* pDC, int nImage, POINT pt, UINT nStyle) {
    return ImageList_Draw(m_hImageList, nImage, pDC->m_hDC, pt.x, pt.y, nStyle);
}
