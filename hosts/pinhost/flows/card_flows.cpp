#include "pinhost/flows/card_flows.h"

#include <array>
#include <cstring>

#include <dlgfw/dlgfw.h>
#include <mvpingui/card_manager_locked_dialog.h>
#include <mvpingui/display_unlock_code.h>
#include <mvpingui/initialize_pin_dialog.h>
#include <mvpingui/reset_card_dialog.h>
#include <mvpingui/unlock_card_dialog.h>
#include <mvpingui/unlock_result_dialogs.h>

#include "pinhost/secret.h"
#include "resources/resource_numbers.h"

namespace {

const PinHostCard& CardOf(void* pContext) {
    return *static_cast<const PinHostCard*>(pContext);
}

// The library hands the context back as it was given.
void* ContextOf(const PinHostCard& card) {
    return const_cast<PinHostCard*>(&card);
}

// Asks the card for a text; the buffer between is overwritten.
int Fetch(const PinHostCard& card, std::int32_t (*pfnGet)(void*, char*), CString& strText) {
    std::array<char, PINHOST_CODE_CAPACITY> text = {};
    const std::int32_t result = pfnGet(card.pContext, text.data());
    if (result == MVPINGUI_CARD_OK) {
        strText = text.data();
    }
    pinhost::Wipe(text.data(), text.size());
    return result;
}

int Unlock(void* pContext, CString strUnlockCode, CString strNewPin) {
    const PinHostCard& card = CardOf(pContext);
    return card.pfnUnlock(card.pContext, strUnlockCode, strNewPin);
}

int GetChallenge(void* pContext, CString& strChallenge) {
    return Fetch(CardOf(pContext), CardOf(pContext).pfnGetChallenge, strChallenge);
}

int Initialize(void* pContext, CString strNewPin, int nMinimumPINLength, int nMaximumPINLength,
               int nMaxPINTries, int nWeakPINAllowed, int nForceChangePIN, int nMaxPINUnlock) {
    const PinHostCard& card = CardOf(pContext);
    const auto value = [](int nValue) { return static_cast<std::uint32_t>(nValue); };
    PINPolicies policies{};
    policies.MinimumPINLength = value(nMinimumPINLength);
    policies.MaximumPINLength = value(nMaximumPINLength);
    policies.MaxPINTries = value(nMaxPINTries);
    policies.WeakPINAllowed = value(nWeakPINAllowed);
    policies.ForceChangePIN = value(nForceChangePIN);
    policies.MaxPINUnlock = value(nMaxPINUnlock);
    policies.AlphaPINAllowed = MVP_POLICY_FROM_CONFIGURATION;
    return card.pfnInitialize(card.pContext, strNewPin, &policies);
}

int GetUnlockCode(void* pContext, CString& strCode) {
    return Fetch(CardOf(pContext), CardOf(pContext).pfnGetUnlockCode, strCode);
}

int NeverDisplay(void* pContext) {
    const PinHostCard& card = CardOf(pContext);
    card.pfnNeverDisplay(card.pContext);
    return MVPINGUI_CARD_OK;
}

// Gives the panel its challenge when it has come to be, and takes the route down when it is left.
class ResetDialog : public CResetCardDialogMain {
public:
    ResetDialog(const PinHostCard& card, PinHostReset& reset)
        : CResetCardDialogMain(0, nullptr, 0, 0, 0, card.pszReader), m_reset(reset) {}

protected:
    BOOL OnInitDialog() override {
        // The library leaves it to its host where this dialog stands. The panel moves the focus,
        // and the window that gets it thereby should be in front already.
        SetForegroundWindow();
        CResetCardDialogMain::OnInitDialog();
        if (CResetCardDialog* panel = Panel()) {
            panel->SetChallenge(m_reset.pszChallenge);
            if (m_reset.bNoPinRoute) {
                panel->DisablePIN();
            }
        }
        // The panel has put the focus where the user begins.
        return FALSE;
    }

    void OnOK() override {
        if (CResetCardDialog* panel = Panel()) {
            m_reset.bByPin = panel->IsDlgButtonChecked(IDC_RESET_CARD_PIN_ROUTE) == BST_CHECKED;
        }
        CResetCardDialogMain::OnOK();
    }

private:
    PinHostReset& m_reset;
};

}  // namespace

namespace pinhost {

bool UnlockCard(const PinHostCard& card, const PwdRuleArgs& rules) {
    return CUnlockCardDlg(nullptr, &rules, ContextOf(card), &Unlock, &GetChallenge, card.pszReader)
               .DoModal() == IDOK;
}

bool InitializePin(const PinHostCard& card, const PINPolicies& policies) {
    return CInitializePinDlg(nullptr, &policies, ContextOf(card), &Initialize, &NeverDisplay,
                             &GetUnlockCode, card.pszReader)
               .DoModal() == IDOK;
}

bool ShowUnlockCode(const PinHostCard& card) {
    return DisplayUnlockCode(nullptr, ContextOf(card), &GetUnlockCode, &NeverDisplay,
                             card.pszReader) == 1;
}

bool ShowCardManagerLocked(const PinHostCard& card) {
    return CCMLockedDlg(nullptr, card.pszReader).DoModal() == IDOK;
}

bool ShowToolAtWork(const PinHostCard& card, bool bUnlocking) {
    constexpr int kUnlocking = 0;
    constexpr int kInitializing = 1;
    return CUnlockInitToolDlg(nullptr, card.pszReader, bUnlocking ? kUnlocking : kInitializing)
               .DoModal() == IDOK;
}

bool ResetCard(const PinHostCard& card, PinHostReset& reset) {
    ResetDialog dialog(card, reset);
    if (dialog.DoModal() != IDOK) {
        return false;
    }
    CString proof = dialog.GetPin();
    const auto size = static_cast<std::size_t>(proof.GetLength()) + 1;
    const bool fits = size <= reset.cbProof;
    if (fits) {
        std::memcpy(reset.pszProof, static_cast<const char*>(proof), size);
    }
    CBaseDialog::HidePinFromMemory(proof);
    return fits;
}

}  // namespace pinhost
