#include <utility>

#include <dlgfw/image_list.h>

#include "framework/handle_maps.h"

CImageList::~CImageList() {
    DeleteImageList();
}

CImageList* CImageList::FromHandle(HIMAGELIST hImageList) {
    return dlgfw::ObjectFromHandle<CImageList>(dlgfw::ImageLists(), hImageList);
}

BOOL CImageList::Attach(HIMAGELIST hImageList) {
    if (hImageList == nullptr) {
        return FALSE;
    }
    if (hImageList == m_hImageList) {
        return TRUE;
    }
    DeleteImageList();
    dlgfw::ImageLists().Insert(hImageList, this);
    m_hImageList = hImageList;
    return TRUE;
}

HIMAGELIST CImageList::Detach() {
    HIMAGELIST imageList = std::exchange(m_hImageList, nullptr);
    dlgfw::ImageLists().Erase(imageList, this);
    return imageList;
}

BOOL CImageList::Create(int cx, int cy, UINT nFlags, int nInitial, int nGrow) {
    return Attach(ImageList_Create(cx, cy, nFlags, nInitial, nGrow));
}

BOOL CImageList::DeleteImageList() {
    HIMAGELIST imageList = Detach();
    return imageList != nullptr && ImageList_Destroy(imageList);
}

int CImageList::Add(HICON hIcon) {
    return ImageList_ReplaceIcon(m_hImageList, -1, hIcon);
}
