#include "framework/handle_maps.h"

namespace dlgfw {
namespace {

HandleTable<CWnd> g_windows;
HandleTable<CDC> g_deviceContexts;
HandleTable<CGdiObject> g_gdiObjects;
HandleTable<CImageList> g_imageLists;

}  // namespace

HandleTable<CWnd>& Windows() noexcept {
    return g_windows;
}
HandleTable<CDC>& DeviceContexts() noexcept {
    return g_deviceContexts;
}
HandleTable<CGdiObject>& GdiObjects() noexcept {
    return g_gdiObjects;
}
HandleTable<CImageList>& ImageLists() noexcept {
    return g_imageLists;
}

}  // namespace dlgfw

// These stand below the tables because their destructors look there.
const CWnd CWnd::wndTop(HWND_TOP);
const CWnd CWnd::wndTopMost(HWND_TOPMOST);
