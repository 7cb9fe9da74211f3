// What opening each of the card dialogs costs: from the call until it takes key strokes, beside the
// bare dialog (dialog_ready.h).
#include <cstdlib>

#include "dialog_ready.h"
#include "mvpingui/card_manager_locked_dialog.h"
#include "mvpingui/display_unlock_code.h"
#include "mvpingui/initialize_pin_dialog.h"
#include "mvpingui/mvpingui.h"
#include "mvpingui/reset_card_dialog.h"
#include "mvpingui/unlock_card_dialog.h"
#include "resources/resource_numbers.h"

namespace {

constexpr PwdRuleArgs kRules{0, 1, 1, 0, 4, 8, 0};

int GetChallenge(void* /*pContext*/, CString& strChallenge) {
    strChallenge = "0123456789ABCDEF";
    return MVPINGUI_CARD_OK;
}

template <class Dialog, class... Arguments>
void Measure(const char* pszWhat, int nTemplate, int nPanel, Arguments... arguments) {
    const auto open = [=] { Dialog(nullptr, arguments...).DoModal(); };
    const auto openBare = [=] { mvp::bench::DialogReady::RunBare(nTemplate, nPanel); };
    mvp::bench::Print(pszWhat, "bare dialog", mvp::bench::DialogReady::Compare(open, openBare));
}

}  // namespace

int main() {
    InitGUIDll();
    const mvp::bench::DialogReady ready;
    if (!ready.IsWatching()) {
        return EXIT_FAILURE;
    }
    constexpr char reader[] = "Reader A";
    void* const context = nullptr;
    Measure<CUnlockCardDlg>("unlock, challenge", IDD_UNLOCK_CARD, IDD_POLICIES, &kRules, context,
                            nullptr, &GetChallenge, reader);
    Measure<CUnlockCardDlg>("unlock, static", IDD_UNLOCK_CARD, IDD_POLICIES, &kRules, context,
                            nullptr, nullptr, reader);
    Measure<CInitializePinDlg>("initialize", IDD_INITIALIZE_PIN, IDD_POLICIES, nullptr, context,
                               nullptr, nullptr, nullptr, reader);
    const auto reset = [=] { CResetCardDialogMain(0, nullptr, 0, 0, 0, reader).DoModal(); };
    const auto resetBare = [] {
        mvp::bench::DialogReady::RunBare(IDD_RESET_CARD_MAIN, IDD_RESET_CARD_PANEL);
    };
    mvp::bench::Print("reset", "bare dialog", mvp::bench::DialogReady::Compare(reset, resetBare));
    Measure<CDisplayUnlockCodeDlg>("unlock code", IDD_UNLOCK_CODE, IDD_UNLOCK_CODE_PANEL,
                                   "0123-4567-89AB-CDEF", reader, 0);
    Measure<CCMLockedDlg>("card manager locked", IDD_CARD_MANAGER_LOCKED, 0, reader);
}
