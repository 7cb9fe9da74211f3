// What the types of popups differ in.
#pragma once

#include "resources/resource_numbers.h"

namespace mvp {

struct PopupKind {
    // Bullets beside the link that closes the popup and beside the one to the help.
    bool bLinkBullet = false;
    bool bHelpBullet = false;
    int nIcon = 0;       // 0: none
    int nHelpTopic = 0;  // 0: none
    // What the log is told when the window is filled, and when help is asked for.
    const char* pszInitLog = nullptr;
    const char* pszHelpLog = nullptr;

    bool IsKnown() const { return pszInitLog != nullptr; }
};

// By type: no reader, card left in the reader, one-time password.
inline constexpr PopupKind kPopupKinds[] = {
    {true, true, IDI_POPUP_NO_READER, 1017,
     "CPopupAlert::InitWindow: iWndType = DIALOG_POPUP_NO_READER",
     "iWndType = DIALOG_POPUP_NO_READER"},
    {true, false, IDI_POPUP_CARD_ALERT, 1016,
     "CPopupAlert::InitWindow: iWndType = DIALOG_POPUP_CARD_ALERT",
     "iWndType = DIALOG_POPUP_CARD_ALERT"},
    {true, true, IDI_POPUP_OTP, 1025, "iWndType = DIALOG_POPUP_CARD_OTP",
     "iWndType = DIALOG_POPUP_CARD_OTP"},
};

// An unknown type has no icon, no bullets and no topic.
constexpr PopupKind PopupKindOf(int nType) {
    constexpr int kCount = sizeof kPopupKinds / sizeof kPopupKinds[0];
    return nType >= 0 && nType < kCount ? kPopupKinds[nType] : PopupKind();
}

}  // namespace mvp
