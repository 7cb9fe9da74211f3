#include "pinhost/flows/popup_flow.h"

#include <mvpingui/popup_alert.h>

namespace pinhost {

bool ShowPopup(PinHostPopup& request) {
    CPopupAlert popup;
    request.bCreated = popup.Create(request.hParent) != 0;
    if (!request.bCreated) {
        return false;
    }
    popup.SetReader(request.pszReader);
    popup.SetMessage(request.pszMessage);
    if (!popup.InitWindow(request.hParent, request.nType, GetCurrentThreadId())) {
        return false;
    }
    popup.SetThreadRoutine(request.pfnFetchPassword);
    request.pfnShow(request.pContext, popup.m_hWnd);
    popup.Show();
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (message.hwnd == nullptr && message.message == WM_POPUP_CLOSED) {
            request.pfnClosed(request.pContext);
            return true;
        }
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return false;
}

}  // namespace pinhost
