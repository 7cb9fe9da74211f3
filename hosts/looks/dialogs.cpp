#include "looks/dialogs.h"

#include <cstdint>
#include <utility>

#include <dlgfw/dlgfw.h>
#include <mvpingui/change_pin_dialog.h>
#include <mvpingui/mvpingui.h>

#include "looks/dialog_states.h"
#include "pinhost/flows/change_pin_window.h"
#include "resources/resource_numbers.h"

namespace looks {

namespace {

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
    PinHostChangePin request{&kRules,     kReader,          true, pin.next, &pin.nextSize,
                             pin.current, &pin.currentSize, 0};
    pinhost::ChangePinEmbedded(request);
}

// Under every rule there is, or under none but the confirmation's.
std::function<void()> ChangeUnder(const PwdRuleArgs& rules) {
    return [rules] { ChangePin(rules, true); };
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
        {"change-pin-refusing", WithInjectedKeys(2, ChangeUnder(kRules)), {sentNewPin}},
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
