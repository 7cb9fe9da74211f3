#include "looks/dialogs.h"

#include <initializer_list>
#include <utility>

#include <dlgfw/dlgfw.h>
#include <mvpingui/card_manager_locked_dialog.h>
#include <mvpingui/change_pin_dialog.h>
#include <mvpingui/display_unlock_code.h>
#include <mvpingui/initialize_pin_dialog.h>
#include <mvpingui/mvpingui.h>
#include <mvpingui/reset_card_dialog.h>
#include <mvpingui/unlock_card_dialog.h>
#include <mvpingui/unlock_result_dialogs.h>

#include "common/thread_windows.h"
#include "pinhost/flows/change_pin_window.h"
#include "pinhost/popup_room.h"
#include "resources/resource_numbers.h"

namespace looks {

namespace {

constexpr char kCode[] = "0123456789ABCDEF";
constexpr char kChallenge[] = "8D1F04B26A36C34E";
constexpr PwdRuleArgs kRules = {0, 1, 1, 1, 4, 8, 0};
constexpr int kCardError = 14;
constexpr char kLongMessage[] =
    "The card has answered with something that nobody has foreseen, and what it means is not known "
    "here. Take the card out of the reader, wait until the lamp of the reader has gone out, and "
    "put "
    "it in again.\n\n"
    "If the same happens once more, call the help desk of your company before you go on. Have the "
    "number at hand that is printed on the back of the card, below the signature.";

using Texts = std::initializer_list<std::pair<int, const char*>>;

// Types the texts into the edits.
std::function<void(HWND)> Typed(Texts texts) {
    return [typed = std::vector<std::pair<int, const char*>>(texts)](HWND hWindow) {
        for (const auto& [id, text] : typed) {
            SetWindowTextA(mvp::FindControl(hWindow, id), text);
        }
    };
}

std::function<void(HWND)> Clicked(int nId) {
    return [nId](HWND hWindow) { SendMessageA(mvp::FindControl(hWindow, nId), BM_CLICK, 0, 0); };
}

// A character that no key has brought.
std::function<void(HWND)> SentTo(int nId) {
    return [nId](HWND hWindow) { SendMessageA(mvp::FindControl(hWindow, nId), WM_CHAR, '1', 0); };
}

// Opens it under a setting of the machine's.
template <typename Value>
std::function<void()> Under(const char* pszKey, const char* pszName, Value value,
                            std::function<void()> open) {
    return [=] {
        pinhost::OwnConfiguration configuration;
        configuration.Set(pszKey, pszName, value);
        open();
    };
}

std::function<void()> WithInjectedKeys(DWORD dwPolicy, std::function<void()> open) {
    return Under("AuthenticationDialog", "InjectedKeys", dwPolicy, std::move(open));
}

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

void EnterPinOver(HWND hOwner) {
    char* pin = nullptr;
    std::uint32_t size = 0;
    GetPINFromUser(hOwner, kReader, 0, 4, 8, &pin, &size);
    FreeGetPinBuffer(pin, size);
}

void EnterPin() {
    EnterPinOver(nullptr);
}

void EnterPinForLongPrompt() {
    SetPinPromptString(
        "The program \"Quarterly accounts\" wants to sign the document \"Annual report of the "
        "board, "
        "second draft\" with the certificate on your smart card.");
    EnterPin();
    SetPinPromptString(nullptr);
}

struct ChangedPin {
    char current[64] = "";
    std::uint32_t currentSize = sizeof current;
    char next[64] = "";
    std::uint32_t nextSize = sizeof next;
};

void ChangePin(const PwdRuleArgs& rules, bool bCurrent, const char* pszReader = kReader) {
    ChangedPin pin;
    GetChangePINInfoFromUser(&rules, 0, pin.next, &pin.nextSize, pin.current, &pin.currentSize,
                             pszReader, nullptr, bCurrent);
}

void ChangeEmbedded() {
    ChangedPin pin;
    pinhost::ChangePinEmbedded(
        {&kRules, kReader, true, pin.next, &pin.nextSize, pin.current, &pin.currentSize});
}

// Under every rule there is, or under none but the confirmation's.
std::function<void()> ChangeUnder(const PwdRuleArgs& rules) {
    return [rules] { ChangePin(rules, true); };
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

std::function<void()> Failed(const char* pszMessage, int nMode) {
    return [=] { CUnlockFailedDlg(nullptr, pszMessage, nMode).DoModal(); };
}

std::function<void()> CodeFrom(MvpGetUnlockCodeCallback pfnGetCode) {
    return [=] { DisplayUnlockCode(nullptr, nullptr, pfnGetCode, &NeverDisplay, kReader); };
}

void SetFirstPin() {
    PINPolicies policies{4, 8, 3, 0, 3, 0, 0, 0, 1};
    CInitializePinDlg(nullptr, &policies, nullptr, &Initialize, &NeverDisplay, &GetCode, kReader)
        .DoModal();
}

void TellOfLockedManager() {
    CCMLockedDlg(nullptr, kReader).DoModal();
}

}  // namespace

OwnerWindow::OwnerWindow()
    : m_hWnd(CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_BORDER | WS_DISABLED | WS_VISIBLE, 40,
                             30, 700, 600, nullptr, nullptr, nullptr, nullptr)) {}

std::vector<Entry> PinDialogs() {
    PwdRuleArgs mandatory = kRules;
    mandatory.bCancelDisabled = 1;
    const PwdRuleArgs every = {1, 1, 1, 1, 4, 8, 0};
    const PwdRuleArgs none = {0, 0, 0, 0, 0xFFFFFFFF, 0xFFFFFFFF, 0};
    const Texts good = {{IDC_CHANGE_PIN_PANEL_CURRENT_EDIT, "1234"},
                        {IDC_CHANGE_PIN_PANEL_NEW_EDIT, "73942"},
                        {IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT, "73942"}};
    const Texts bad = {{IDC_CHANGE_PIN_PANEL_NEW_EDIT, "ab"},
                       {IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT, "b"}};
    const State sentPin{"sent by a program", SentTo(IDC_ENTER_PIN_EDIT)};
    const State sentNewPin{"sent by a program", SentTo(IDC_CHANGE_PIN_PANEL_NEW_EDIT)};
    return {
        {"enter-pin", EnterPin, {{"empty", {}}, {"typed", Typed({{IDC_ENTER_PIN_EDIT, "1234"}})}}},
        {"enter-pin-over-owner", [] { EnterPinOver(OwnerWindow().Handle()); }, {{"empty", {}}}},
        {"enter-pin-long-prompt", EnterPinForLongPrompt, {{"empty", {}}}},
        {"enter-pin-warning", WithInjectedKeys(1, EnterPin), {sentPin}},
        {"enter-pin-refusing", WithInjectedKeys(2, EnterPin), {sentPin}},
        {"change-pin",
         ChangeUnder(kRules),
         {{"empty", {}}, {"against the rules", Typed(bad)}, {"typed", Typed(good)}}},
        {"change-pin-every-rule", ChangeUnder(every), {{"against the rules", Typed(bad)}}},
        {"change-pin-no-rule", ChangeUnder(none), {{"empty", {}}}},
        {"change-pin-mandatory", ChangeUnder(mandatory), {{"empty", {}}}},
        {"change-pin-new-only", [] { ChangePin(kRules, false); }, {{"empty", {}}}},
        {"change-pin-long-reader", [] { ChangePin(kRules, true, kLongReader); }, {{"empty", {}}}},
        {"change-pin-warning", WithInjectedKeys(1, ChangeUnder(kRules)), {sentNewPin}},
        {"change-pin-embedded", ChangeEmbedded, {{"empty", {}}, {"typed", Typed(good)}}},
        {"change-pin-embedded-warning", WithInjectedKeys(1, ChangeEmbedded), {sentNewPin}},
        {"last-try", [] { DisplayLastPINTry(kReader); }, {{"shown", {}}}, Kind::MessageBox},
        {"last-try-long-reader",
         [] { DisplayLastPINTry(kLongReader); },
         {{"shown", {}}},
         Kind::MessageBox},
        {"last-try-any-reader",
         [] { DisplayLastPINTry(nullptr); },
         {{"shown", {}}},
         Kind::MessageBox},
    };
}

std::vector<Entry> CardDialogs() {
    const Texts unlocking = {{IDC_UNLOCK_CARD_CODE_EDIT, "0123-4567-89AB-CDEF"},
                             {IDC_UNLOCK_CARD_NEW_EDIT, "73942"},
                             {IDC_UNLOCK_CARD_CONFIRM_EDIT, "73942"}};
    const Texts choosing = {{IDC_INITIALIZE_PIN_NEW_EDIT, "73942"},
                            {IDC_INITIALIZE_PIN_CONFIRM_EDIT, "73942"}};
    const char* helpDesk = "+1 555 0142 99 88 77 66";
    const char* message =
        "The card manager of this card is blocked, so nothing on it can be changed any more. You "
        "can go on using what is stored on the card until it expires. To get another card, go to "
        "the office on the ground floor with your company badge.";
    return {
        {"unlock-challenge", UnlockBy(&Challenge), {{"empty", {}}, {"typed", Typed(unlocking)}}},
        {"unlock-challenge-help-desk",
         Under("GlobalConfig", "ContactTel", std::string(helpDesk),
               UnlockBy(&Challenge, kLongReader)),
         {{"empty", {}}}},
        {"unlock-challenge-warning",
         WithInjectedKeys(1, UnlockBy(&Challenge)),
         {{"sent by a program", SentTo(IDC_UNLOCK_CARD_NEW_EDIT)}}},
        {"unlock-code", UnlockBy(nullptr), {{"empty", {}}, {"typed", Typed(unlocking)}}},
        {"unlock-failed",
         Failed("The card has refused the unlock code. Try again.", 0),
         {{"shown", {}}}},
        {"unlock-failed-long", Failed(kLongMessage, 0), {{"shown", {}}}},
        {"first-pin-failed", Failed("The card has refused the PIN.", 1), {{"shown", {}}}},
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
        {"card-manager-locked", TellOfLockedManager, {{"shown", {}}}},
        {"card-manager-locked-long",
         Under("PXRM", "BlockedCardManagerMessage", std::string(message), TellOfLockedManager),
         {{"shown", {}}}},
    };
}

std::vector<Entry> AllDialogs() {
    std::vector<Entry> all;
    for (auto* each : {&PinDialogs, &CardDialogs, &Notices}) {
        for (Entry& entry : each()) {
            // What is set on this machine changes nothing, but for the product that the about box
            // tells of.
            if (entry.strName != "about") {
                entry.open = [open = std::move(entry.open)] {
                    const pinhost::OwnConfiguration empty;
                    open();
                };
            }
            all.push_back(std::move(entry));
        }
    }
    return all;
}

}  // namespace looks
