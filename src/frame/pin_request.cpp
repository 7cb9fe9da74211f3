#include <cstdlib>
#include <cstring>

#include "dialogs/pin/enter_pin_dialog.h"
#include "frame/module.h"
#include "frame/parent_window.h"
#include "mvpingui/mvpingui.h"
#include "platform/barrier.h"
#include "services/log.h"
#include "services/wipe.h"

namespace {

// Hands the PIN out in a buffer of exactly its length. Returns false when there is no memory.
bool HandOut(const CEnterPinDlg& dialog, char** ppPin, std::uint32_t* pcbPin) {
    CString pin = dialog.GetPinValue();
    const auto length = static_cast<std::uint32_t>(pin.GetLength());
    if (length == 0) {
        vklogLog(g_szLogTag, kLogInfo, "GetPINFromUser: PIN empty");
        *ppPin = nullptr;
        *pcbPin = 0;
        return true;
    }
    auto* buffer = static_cast<char*>(std::malloc(length));
    if (buffer == nullptr) {
        vklogLog(g_szLogTag, kLogError, "GetPINFromUser: PIN buffer allocation failed");
        return false;
    }
    std::memcpy(buffer, static_cast<LPCSTR>(pin), length);
    *pcbPin = length;
    *ppPin = buffer;
    mvp::Wipe(pin);
    return true;
}

// A request that could not hand its PIN out is refused before anybody types one.
bool CanHandOut(char** ppPin, const std::uint32_t* pcbPin) {
    if (ppPin == nullptr) {
        vklogLog(g_szLogTag, kLogError, "GetPINFromUser: ppPin == NULL");
    }
    if (pcbPin == nullptr) {
        vklogLog(g_szLogTag, kLogError, "GetPINFromUser: pcbPin == NULL");
    }
    return ppPin != nullptr && pcbPin != nullptr;
}

// Runs the dialog. The guard that it sets stays set, whatever the user does: the caller clears it
// when it gives the PIN back.
std::uint32_t AskForPin(HWND hParent, const char* pszReader, std::uint32_t dwMinLength,
                        std::uint32_t dwMaxLength, char** ppPin, std::uint32_t* pcbPin) {
    vklogLog(g_szLogTag, kLogInfo, "GetPINFromUser: Enter PIN action allowed");
    if (dwMinLength > dwMaxLength) {
        vklogLog(g_szLogTag, kLogError, "GetPINFromUser: minimum length %u > maximum length %u",
                 dwMinLength, dwMaxLength);
    }
    mvp::Module().nPinDialogInProgress = 1;
    const mvp::ParentWindow parent(hParent);
    CEnterPinDlg dialog(parent.get(), pszReader, dwMinLength, dwMaxLength, mvp::Module().strPrompt);
    if (dialog.DoModal() != IDOK) {
        vklogLog(g_szLogTag, kLogInfo, "GetPINFromUser: Enter PIN action cancelled");
        return MVPINGUI_REFUSED;
    }
    vklogLog(g_szLogTag, kLogInfo, "GetPINFromUser: Enter PIN action validated");
    return HandOut(dialog, ppPin, pcbPin) ? MVPINGUI_OK : MVPINGUI_REFUSED;
}

// The last lines of a request that has come to a decision.
std::uint32_t Leave(std::uint32_t result) {
    vklogLog(g_szLogTag, result == MVPINGUI_REFUSED ? kLogError : kLogInfo,
             "GetPINFromUser: returns: %d", static_cast<int>(result));
    vklogLog(g_szLogTag, kLogExit, "GetPINFromUser");
    return result;
}

}  // namespace

extern "C" uint32_t GetPINFromUser(HWND hParent, const char* pszReader, int32_t bShowLastTry,
                                   uint32_t dwMinLength, uint32_t dwMaxLength, char** ppPin,
                                   uint32_t* pcbPin) {
    // Not a scope: a declined last try leaves without an exit line.
    vklogLog(g_szLogTag, kLogEntry, "GetPINFromUser");
    vklogLog(g_szLogTag, kLogInfo, "GetPINFromUser: hParent = %x, Reader = %s",
             mvp::LowBits(hParent), pszReader != nullptr ? pszReader : "");
    if (!CanHandOut(ppPin, pcbPin)) {
        return Leave(MVPINGUI_REFUSED);
    }
    if (bShowLastTry != 0) {
        vklogLog(g_szLogTag, kLogInfo, "GetPINFromUser: DisplayLastPINTry");
        const std::uint32_t answer = DisplayLastPINTry(pszReader);
        if (answer != MVPINGUI_OK) {
            return answer;
        }
    }
    if (mvp::Module().nPinDialogInProgress != 0) {
        vklogLog(g_szLogTag, kLogInfo, "GetPINFromUser: Enter PIN action NOT allowed");
        return Leave(MVPINGUI_REFUSED);
    }
    return Leave(mvp::Guarded(
        MVPINGUI_REFUSED,
        [=] { return AskForPin(hParent, pszReader, dwMinLength, dwMaxLength, ppPin, pcbPin); },
        mvp::LogException("GetPINFromUser")));
}
