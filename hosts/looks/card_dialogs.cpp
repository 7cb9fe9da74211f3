// The entries of unlocking a card, of its first PIN, of resetting it, and of its card manager.
#include <cstring>
#include <functional>
#include <string>

#include <dlgfw/dlgfw.h>
#include <mvpingui/card_manager_locked_dialog.h>
#include <mvpingui/display_unlock_code.h>
#include <mvpingui/initialize_pin_dialog.h>
#include <mvpingui/mvpingui.h>
#include <mvpingui/reset_card_dialog.h>
#include <mvpingui/unlock_card_dialog.h>
#include <mvpingui/unlock_result_dialogs.h>

#include "looks/dialog_states.h"
#include "looks/dialogs.h"
#include "resources/resource_numbers.h"

namespace looks {

namespace {

constexpr char kCode[] = "0123456789ABCDEF";
constexpr char kChallenge[] = "8D1F04B26A36C34E";
constexpr int kCardError = 14;
constexpr PINPolicies kPolicies{4, 8, 3, 0, 3, 0, 0, 0, 1};
constexpr char kLongMessage[] =
    "The card has answered with something that nobody has foreseen, and what it means is not known "
    "here. Take the card out of the reader, wait until the lamp of the reader has gone out, and "
    "put "
    "it in again.\n\n"
    "If the same happens once more, call the help desk of your company before you go on. Have the "
    "number at hand that is printed on the back of the card, below the signature.";

int Unlock(void*, CString, CString) {
    return MVPINGUI_CARD_OK;
}
int Challenge(void*, CString& strChallenge) {
    strChallenge = kChallenge;
    return MVPINGUI_CARD_OK;
}
int Initialize(void*, CString, int, int, int, int, int, int) {
    return MVPINGUI_CARD_OK;
}
int GetCode(void*, CString& strCode) {
    strCode = kCode;
    return MVPINGUI_CARD_OK;
}
int GetNoCode(void*, CString& strCode) {
    strCode.Empty();
    return MVPINGUI_CARD_OK;
}
int FailToGetCode(void*, CString&) {
    return kCardError;
}
int NeverDisplay(void*) {
    return MVPINGUI_CARD_OK;
}

class ResetDialog : public CResetCardDialogMain {
public:
    ResetDialog(const char* pszChallenge, bool bByPin)
        : CResetCardDialogMain(0, nullptr, 0, 0, 0, kReader),
          m_pszChallenge(pszChallenge),
          m_bByPin(bByPin) {}

protected:
    BOOL OnInitDialog() override {
        const BOOL result = CResetCardDialogMain::OnInitDialog();
        Panel()->SetChallenge(m_pszChallenge);
        if (!m_bByPin) {
            Panel()->DisablePIN();
        }
        return result;
    }

private:
    const char* m_pszChallenge;
    bool m_bByPin;
};

std::function<void()> Reset(const char* pszChallenge, bool bByPin = true) {
    return [=] { ResetDialog(pszChallenge, bByPin).DoModal(); };
}

std::function<void()> UnlockBy(MvpChallengeCallback pfnChallenge, const char* pszReader = kReader) {
    return [=] {
        CUnlockCardDlg(nullptr, &kRules, nullptr, &Unlock, pfnChallenge, pszReader).DoModal();
    };
}

// Is filled in and answered with OK as soon as it opens, whether or not its button can be pressed:
// what it says to that stands before it.
template <typename Dialog>
class Answered : public Dialog {
public:
    template <typename... Arguments>
    explicit Answered(const Texts& texts, Arguments... arguments)
        : Dialog(arguments...), m_fill(Typed(texts)) {}

protected:
    BOOL OnInitDialog() override {
        const BOOL result = Dialog::OnInitDialog();
        m_fill(this->m_hWnd);
        ::ShowWindow(this->m_hWnd, SW_SHOW);
        PostMessageA(this->m_hWnd, WM_COMMAND, IDOK, 0);
        return result;
    }

private:
    std::function<void(HWND)> m_fill;
};

int FailToUnlock(void* pCode, CString, CString) {
    return *static_cast<const int*>(pCode);
}
int FailToInitialize(void* pCode, CString, int, int, int, int, int, int) {
    return *static_cast<const int*>(pCode);
}

// The code of an error whose text is the longest in the language that is spoken.
int LongestError() {
    constexpr int kLastError = 14;
    int longest = MVPINGUI_CARD_FAILED;
    std::size_t length = 0;
    for (int code = MVPINGUI_CARD_FAILED; code <= kLastError; ++code) {
        if (const std::size_t now = std::strlen(GetErrorString(code)); now > length) {
            longest = code;
            length = now;
        }
    }
    return longest;
}

// Unlocking comes to the error; 0: to none.
void FailUnlocking(const Texts& texts, int nCode) {
    Answered<CUnlockCardDlg>(texts, nullptr, &kRules, &nCode, &FailToUnlock, nullptr, kReader)
        .DoModal();
}

void FailInitializing(const Texts& texts, int nCode) {
    Answered<CInitializePinDlg>(texts, nullptr, &kPolicies, &nCode, &FailToInitialize,
                                &NeverDisplay, &GetCode, kReader)
        .DoModal();
}

std::function<void()> Failed(const char* pszMessage, int nMode) {
    return [=] { CUnlockFailedDlg(nullptr, pszMessage, nMode).DoModal(); };
}

std::function<void()> CodeFrom(MvpGetUnlockCodeCallback pfnGetCode) {
    return [=] { DisplayUnlockCode(nullptr, nullptr, pfnGetCode, &NeverDisplay, kReader); };
}

void SetFirstPin() {
    CInitializePinDlg(nullptr, &kPolicies, nullptr, &Initialize, &NeverDisplay, &GetCode, kReader)
        .DoModal();
}

void TellOfLockedManager() {
    CCMLockedDlg(nullptr, kReader).DoModal();
}

}  // namespace

std::vector<Entry> CardDialogs() {
    const Texts unlocking = {{IDC_UNLOCK_CARD_CODE_EDIT, "0123-4567-89AB-CDEF"},
                             {IDC_UNLOCK_CARD_NEW_EDIT, "73942"},
                             {IDC_UNLOCK_CARD_CONFIRM_EDIT, "73942"}};
    const Texts choosing = {{IDC_INITIALIZE_PIN_NEW_EDIT, "73942"},
                            {IDC_INITIALIZE_PIN_CONFIRM_EDIT, "73942"}};
    const Texts differing = {{IDC_UNLOCK_CARD_CODE_EDIT, "0123-4567-89AB-CDEF"},
                             {IDC_UNLOCK_CARD_NEW_EDIT, "73942"},
                             {IDC_UNLOCK_CARD_CONFIRM_EDIT, "73943"}};
    const char* helpDesk = "+1 555 0142 99 88 77 66";
    const char* message =
        "The card manager of this card is blocked, so nothing on it can be changed any more. You "
        "can go on using what is stored on the card until it expires. To get another card, go to "
        "the office on the ground floor with your company badge.";
    return {
        {"unlock-challenge", UnlockBy(&Challenge), {{"empty", {}}, {"typed", Typed(unlocking)}}},
        {"unlock-challenge-help-desk",
         Under(mvp::settings::kContactTel, helpDesk, UnlockBy(&Challenge, kLongReader)),
         {{"empty", {}}}},
        {"unlock-challenge-warning",
         WithInjectedKeys(1, UnlockBy(&Challenge)),
         {{"sent by a program", SentTo(IDC_UNLOCK_CARD_NEW_EDIT)}}},
        {"unlock-challenge-refusing",
         WithInjectedKeys(2, UnlockBy(&Challenge)),
         {{"sent by a program", SentTo(IDC_UNLOCK_CARD_NEW_EDIT)}}},
        {"unlock-code", UnlockBy(nullptr), {{"empty", {}}, {"typed", Typed(unlocking)}}},
        {"unlock-failed",
         Failed("The card has refused the unlock code. Try again.", 0),
         {{"shown", {}}}},
        {"unlock-failed-long", Failed(kLongMessage, 0), {{"shown", {}}}},
        {"first-pin-failed", Failed("The card has refused the PIN.", 1), {{"shown", {}}}},
        // No key answers so while the button is grey, but a program's message does.
        {"unlock-pins-differ",
         [differing] { FailUnlocking(differing, MVPINGUI_CARD_OK); },
         {{"shown", {}}},
         Kind::MessageBox},
        {"unlock-wrong-code",
         [unlocking] { FailUnlocking(unlocking, MVPINGUI_CARD_WRONG_UNLOCK_CODE); },
         {{"shown", {}}}},
        {"unlock-longest-error",
         [unlocking] { FailUnlocking(unlocking, LongestError()); },
         {{"shown", {}}}},
        {"first-pin-longest-error",
         [choosing] { FailInitializing(choosing, LongestError()); },
         {{"shown", {}}}},
        {"unlock-success", [] { CUnlockSuccessDlg(nullptr).DoModal(); }, {{"shown", {}}}},
        {"card-tool-unlocking",
         [] { CUnlockInitToolDlg(nullptr, kReader, 0).DoModal(); },
         {{"shown", {}}}},
        {"card-tool-initializing",
         [] { CUnlockInitToolDlg(nullptr, kReader, 1).DoModal(); },
         {{"shown", {}}}},
        {"first-pin", SetFirstPin, {{"empty", {}}, {"typed", Typed(choosing)}}},
        {"first-pin-warning",
         WithInjectedKeys(1, SetFirstPin),
         {{"sent by a program", SentTo(IDC_INITIALIZE_PIN_NEW_EDIT)}}},
        {"first-pin-refusing",
         WithInjectedKeys(2, SetFirstPin),
         {{"sent by a program", SentTo(IDC_INITIALIZE_PIN_NEW_EDIT)}}},
        {"unlock-code-shown",
         CodeFrom(&GetCode),
         {{"shown", {}}, {"ticked", Clicked(IDC_UNLOCK_CODE_NEVER_AGAIN)}}},
        {"no-unlock-code", CodeFrom(&GetNoCode), {{"shown", {}}}, Kind::MessageBox},
        {"unlock-code-error", CodeFrom(&FailToGetCode), {{"shown", {}}}, Kind::MessageBox},
        {"reset-code",
         Reset(""),
         {{"by PIN", {}},
          {"PIN typed", Typed({{IDC_RESET_CARD_PIN_EDIT, "1234"}})},
          {"by code", Clicked(IDC_RESET_CARD_CODE_ROUTE)}}},
        {"reset-challenge",
         Reset(kChallenge),
         {{"by PIN", {}},
          {"by code", Clicked(IDC_RESET_CARD_CODE_ROUTE)},
          {"response typed", Typed({{IDC_RESET_CARD_RESPONSE_EDIT, "0123-4567"}})}}},
        {"reset-without-pin", Reset("", false), {{"by code", {}}}},
        {"reset-challenge-without-pin", Reset(kChallenge, false), {{"by code", {}}}},
        {"reset-warning",
         WithInjectedKeys(1, Reset("")),
         {{"sent by a program", SentTo(IDC_RESET_CARD_PIN_EDIT)}}},
        {"reset-refusing",
         WithInjectedKeys(2, Reset("")),
         {{"sent by a program", SentTo(IDC_RESET_CARD_PIN_EDIT)}}},
        {"card-manager-locked", TellOfLockedManager, {{"shown", {}}}},
        {"card-manager-locked-long",
         Under(mvp::settings::kBlockedCardManagerMessage, message, TellOfLockedManager),
         {{"shown", {}}}},
    };
}

}  // namespace looks
