#include "pinhost/flows/flows.h"

#include <cstdio>

#include <mvpingui/mvpingui.h>

#include "pinhost/flows/card_flows.h"
#include "pinhost/flows/change_pin_window.h"
#include "pinhost/flows/expiry_flow.h"
#include "pinhost/flows/popup_flow.h"
#include "platform/barrier.h"

namespace {

template <class Flow>
std::uint32_t RunFlow(const char* pszName, Flow&& flow) {
    return mvp::Guarded(
        MVPINGUI_REFUSED, [&] { return flow() ? MVPINGUI_OK : MVPINGUI_REFUSED; },
        [=] { std::fprintf(stderr, "pinhost_flows: %s failed\n", pszName); });
}

}  // namespace

extern "C" std::uint32_t PinHostChangePinEmbedded(PinHostChangePin* pRequest) {
    return RunFlow("the change-PIN window", [=] { return pinhost::ChangePinEmbedded(*pRequest); });
}

extern "C" std::uint32_t PinHostUnlockCard(const PinHostCard* pCard, const PwdRuleArgs* pRules) {
    return RunFlow("unlocking the card", [=] { return pinhost::UnlockCard(*pCard, *pRules); });
}

extern "C" std::uint32_t PinHostInitializePin(const PinHostCard* pCard,
                                              const PINPolicies* pPolicies) {
    return RunFlow("the first PIN", [=] { return pinhost::InitializePin(*pCard, *pPolicies); });
}

extern "C" std::uint32_t PinHostShowUnlockCode(const PinHostCard* pCard) {
    return RunFlow("showing the unlock code", [=] { return pinhost::ShowUnlockCode(*pCard); });
}

extern "C" std::uint32_t PinHostCardManagerLocked(const PinHostCard* pCard) {
    return RunFlow("the card manager's notice",
                   [=] { return pinhost::ShowCardManagerLocked(*pCard); });
}

extern "C" std::uint32_t PinHostToolAtWork(const PinHostCard* pCard, bool bUnlocking) {
    return RunFlow("the tool's notice",
                   [=] { return pinhost::ShowToolAtWork(*pCard, bUnlocking); });
}

extern "C" std::uint32_t PinHostResetCard(const PinHostCard* pCard, PinHostReset* pReset) {
    return RunFlow("resetting the card", [=] { return pinhost::ResetCard(*pCard, *pReset); });
}

extern "C" std::uint32_t PinHostShowPopup(PinHostPopup* pRequest) {
    return RunFlow("the notice", [=] { return pinhost::ShowPopup(*pRequest); });
}

extern "C" std::uint32_t PinHostTellExpiry(PinHostExpiry* pExpiry) {
    return RunFlow("the expiry notice", [=] { return pinhost::TellExpiry(*pExpiry); });
}
