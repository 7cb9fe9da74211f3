#include <cstring>

#include "dialogs/pin/change_pin_main_dialog.h"
#include "dialogs/pin/change_pin_panels.h"
#include "mvpingui/change_pin_dialog.h"
#include "mvpingui/mvpingui.h"
#include "platform/barrier.h"
#include "policy/pin_policy.h"
#include "services/log.h"

namespace {

struct Output {
    char* pszNewPin;
    std::uint32_t* pcbNewPin;
    char* pszOldPin;
    std::uint32_t* pcbOldPin;
};

void CopyOut(const CString& strPin, char* pszPin, std::uint32_t* pcbPin) {
    const auto length = static_cast<std::uint32_t>(strPin.GetLength());
    if (pszPin != nullptr) {
        std::memcpy(pszPin, static_cast<LPCSTR>(strPin), length + 1);
    }
    if (pcbPin != nullptr) {
        *pcbPin = length;
    }
}

// Nobody is asked for PINs that could not be handed out. The current one need not be, where it is
// not asked for.
bool CanHandOut(const Output& output, bool bAskCurrentPin) {
    const struct {
        const void* pArgument;
        bool bNeeded;
        const char* pszMissing;
    } arguments[] = {
        {output.pszNewPin, true, "GetChangePINInfoFromUser: pszNewPin == NULL"},
        {output.pcbNewPin, true, "GetChangePINInfoFromUser: pcbNewPin == NULL"},
        {output.pszOldPin, bAskCurrentPin, "GetChangePINInfoFromUser: pszOldPin == NULL"},
        {output.pcbOldPin, bAskCurrentPin, "GetChangePINInfoFromUser: pcbOldPin == NULL"},
    };
    bool usable = true;
    for (const auto& each : arguments) {
        if (each.pArgument != nullptr || !each.bNeeded) {
            continue;
        }
        vklogLog(g_szLogTag, kLogError, "%s", each.pszMissing);
        usable = false;
    }
    return usable;
}

void LogContradiction(const PwdRuleArgs* pRules) {
    const mvp::PinRules rules(pRules);
    if (rules.InForce(mvp::PinRule::MinLength) && rules.InForce(mvp::PinRule::MaxLength) &&
        rules.dwMinPINLen > rules.dwMaxPINLen) {
        vklogLog(g_szLogTag, kLogError,
                 "GetChangePINInfoFromUser: minimum length %u > maximum length %u",
                 rules.dwMinPINLen, rules.dwMaxPINLen);
    }
}

void HandOut(const CString& strCurrentPin, const CString& strNewPin, const Output& output) {
    CopyOut(strCurrentPin, output.pszOldPin, output.pcbOldPin);
    CopyOut(strNewPin, output.pszNewPin, output.pcbNewPin);
}

std::uint32_t ReadEmbedded(CChangePINDialog* pPanel, const Output& output) {
    CString currentPin;
    CString newPin;
    // The check sends messages, in whose course the host may destroy the panel.
    if (!pPanel->ReadPins(currentPin, newPin) || !pPanel->VerifyAndUpdateAllPolicies(newPin) ||
        !mvp::IsChangePinPanel(pPanel)) {
        return MVPINGUI_REFUSED;
    }
    HandOut(currentPin, newPin, output);
    return MVPINGUI_OK;
}

std::uint32_t AskModal(const PwdRuleArgs* pRules, bool bAskCurrentPin, const char* pszReader,
                       const Output& output) {
    LogContradiction(pRules);
    CChangePINDialogMain dialog(pRules, 0, bAskCurrentPin, nullptr, MVPINGUI_CHANGE_PIN_TOP_MARGIN,
                                MVPINGUI_CHANGE_PIN_LEFT_INDENT, MVPINGUI_CHANGE_PIN_LINE_SPACING,
                                pszReader);
    if (dialog.DoModal() != IDOK) {
        return MVPINGUI_REFUSED;
    }
    // Straight from the panel: a text between would be one more to overwrite, and its memory could
    // be refused.
    if (const CChangePINDialog* panel = dialog.Panel()) {
        HandOut(panel->CurrentPin(), panel->NewPin(), output);
    } else {
        HandOut({}, {}, output);
    }
    return MVPINGUI_OK;
}

}  // namespace

// NOLINTBEGIN(readability-non-const-parameter): written to through `output`
extern "C" uint32_t GetChangePINInfoFromUser(const PwdRuleArgs* pRules, int32_t bShowLastTry,
                                             char* pszNewPin, uint32_t* pcbNewPin, char* pszOldPin,
                                             uint32_t* pcbOldPin, const char* pszReader,
                                             HWND hEmbeddingHost, bool bAskCurrentPin) {
    // NOLINTEND(readability-non-const-parameter)
    const mvp::LogScope scope("GetChangePINInfoFromUser");
    const Output output{pszNewPin, pcbNewPin, pszOldPin, pcbOldPin};
    if (!CanHandOut(output, bAskCurrentPin)) {
        return MVPINGUI_REFUSED;
    }
    if (bShowLastTry != 0) {
        const std::uint32_t answer = DisplayLastPINTry(pszReader);
        if (answer != MVPINGUI_OK) {
            return answer;
        }
    }
    return mvp::Guarded(
        MVPINGUI_REFUSED,
        [&] {
            if (CChangePINDialog* panel = mvp::FindChangePinPanel(hEmbeddingHost)) {
                return ReadEmbedded(panel, output);
            }
            return AskModal(pRules, bAskCurrentPin, pszReader, output);
        },
        mvp::LogException("GetChangePINInfoFromUser"));
}
