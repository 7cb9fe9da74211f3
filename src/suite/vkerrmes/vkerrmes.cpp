#include "suite/vkerrmes/vkerrmes.h"

#include <cstdio>

namespace {

constexpr char kProductName[] = "Veskara";
constexpr UINT kFlagsTaken = MB_DEFMASK | MB_RIGHT | MB_RTLREADING | MB_SETFOREGROUND | MB_TOPMOST;

UINT Icon(UINT nIcon) noexcept {
    switch (nIcon) {
        case MB_ICONERROR:
        case MB_ICONQUESTION:
        case MB_ICONINFORMATION:
            return nIcon;
        default:
            return MB_ICONWARNING;
    }
}

// Buttons, icon and flags of a box; `nOwnButtons`, with their default button, is what nButtons 0
// stands for.
UINT Style(UINT nButtons, UINT nOwnButtons, UINT nIcon, UINT nFlags) noexcept {
    nFlags &= kFlagsTaken;
    if (nButtons == 0 || nButtons > MB_RETRYCANCEL) {
        nButtons = (nFlags & MB_DEFMASK) != 0 ? nOwnButtons & MB_TYPEMASK : nOwnButtons;
    }
    return nButtons | Icon(nIcon) | nFlags;
}

int Show(HWND hParent, const char* pszText, const char* pszReader, UINT nStyle) noexcept {
    char text[VKERRMES_TEXT_MAX + 1];
    std::snprintf(text, sizeof(text), "%s", pszText != nullptr ? pszText : "");

    // Longer than the longest reader name of the system.
    char caption[256];
    if (pszReader != nullptr && *pszReader != '\0') {
        std::snprintf(caption, sizeof(caption), "%s - %s", kProductName, pszReader);
    } else {
        std::snprintf(caption, sizeof(caption), "%s", kProductName);
    }

    if (!IsWindow(hParent)) {
        hParent = nullptr;
        nStyle |= MB_TASKMODAL | MB_SETFOREGROUND | MB_TOPMOST;
    }
    const int answer = MessageBoxA(hParent, text, caption, nStyle);
    return answer == IDOK || answer == IDYES ? 1 : 0;
}

}  // namespace

int VKErrMesDisplayEx(int /*nMessageType*/, const char* pszText, UINT nButtons, UINT nIcon,
                      UINT nFlags) {
    return Show(nullptr, pszText, nullptr, Style(nButtons, MB_OK, nIcon, nFlags));
}

int VKErrMesDisplayExWithParentParamAndReader(HWND hParent, int /*nMessageType*/,
                                              const char* pszText, UINT nButtons, UINT nIcon,
                                              UINT nFlags, const void* /*pReserved*/,
                                              const char* pszReader) {
    const UINT ownButtons = UINT{MB_OKCANCEL} | MB_DEFBUTTON2;
    return Show(hParent, pszText, pszReader, Style(nButtons, ownButtons, nIcon, nFlags));
}
