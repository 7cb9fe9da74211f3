#include "governed/windows.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <stdexcept>
#include <utility>
#include <vector>

#include <mvpingui/popup_alert.h>

#include "common/thread_windows.h"
#include "common/utf8.h"
#include "governed/library.h"
#include "governed/replaced.h"
#include "looks/visitor.h"
#include "resources/resource_numbers.h"

namespace governed {
namespace {

using Json = nlohmann::ordered_json;

constexpr char kReader[] = "Veskara Software Reader 0";
constexpr char kPin[] = "73942";
constexpr std::int32_t kDone = 0;                  // of the card's functions
constexpr std::int64_t kExpiring = 2'209'075'200;  // 2040-01-02
constexpr PwdRuleArgs kRules = {0, 1, 1, 1, 4, 8, 0};
// The text of a message box.
constexpr int kMessageText = 0xFFFF;

struct Case {
    const Library& library;
    Json told;  // what the window's callers learn
};

struct Window {
    const char* pszName;
    void (*pfnOpen)(Case& one);  // returns when it has closed, or has not been opened
    std::vector<std::pair<const char*, int>> controls;  // what settings change, by their numbers
    int nField = 0;                                     // that a character is sent to
    int nButton = 0;                                    // that is pressed
    void (*pfnEnter)(HWND hWindow) = nullptr;           // brings it to where settings show
    void (*pfnConfirm)(HWND hWindow) = nullptr;
};

void EnterPin(Case& one) {
    char* pin = nullptr;
    std::uint32_t size = 0;
    one.library.GetPINFromUser(nullptr, kReader, 0, 4, 8, &pin, &size);
    one.library.FreeGetPinBuffer(pin, size);
}

void ChangePin(Case& one) {
    std::array<char, 64> next{};
    std::array<char, 64> current{};
    std::uint32_t nextSize = next.size();
    std::uint32_t currentSize = current.size();
    PinHostChangePin request{&kRules,   kReader,        true,         next.data(),
                             &nextSize, current.data(), &currentSize, 0};
    one.library.ChangePinEmbedded(&request);
    one.told["smallPinEntryPrevention"] = request.nSmallPinEntryPrevention;
}

std::int32_t Initialize(void* pContext, const char*, const PINPolicies* pPolicies) {
    static_cast<Case*>(pContext)->told = {
        {"minimum", pPolicies->MinimumPINLength}, {"maximum", pPolicies->MaximumPINLength},
        {"tries", pPolicies->MaxPINTries},        {"unlocks", pPolicies->MaxPINUnlock},
        {"weak", pPolicies->WeakPINAllowed},      {"force", pPolicies->ForceChangePIN}};
    return kDone;
}

std::int32_t Text(char* pszText) {
    std::strcpy(pszText, "8D1F04B26A36C34E");
    return kDone;
}

PinHostCard CardOf(Case& one) {
    return {&one,
            kReader,
            [](void*, const char*, const char*) -> std::int32_t { return kDone; },
            [](void*, char* pszChallenge) { return Text(pszChallenge); },
            &Initialize,
            [](void*, char* pszCode) { return Text(pszCode); },
            [](void*) {}};
}

void FirstPin(Case& one) {
    const PinHostCard card = CardOf(one);
    constexpr auto kUnset = MVP_POLICY_FROM_CONFIGURATION;
    const PINPolicies policies{kUnset, kUnset, kUnset, kUnset, kUnset,
                               kUnset, kUnset, kUnset, kUnset};
    one.library.InitializePin(&card, &policies);
}

void Unlock(Case& one) {
    const PinHostCard card = CardOf(one);
    one.library.UnlockCard(&card, &kRules);
}

void ShowUnlockCode(Case& one) {
    const PinHostCard card = CardOf(one);
    one.library.ShowUnlockCode(&card);
}

void TellOfLockedManager(Case& one) {
    const PinHostCard card = CardOf(one);
    one.library.CardManagerLocked(&card);
}

void TellExpiry(Case& one) {
    PinHostExpiry expiry{kReader, nullptr, 14, true, kExpiring, nullptr, 0, 0};
    one.library.TellExpiry(&expiry);
}

void ShowAbout(Case& one) {
    one.library.ShowAbout(0, nullptr, "");
}

void TellLastTry(Case& one) {
    one.library.DisplayLastPINTry(kReader);
}

template <int nType>
void Popup(Case& one) {
    PinHostPopup request{};
    request.nType = nType;
    request.pszReader = kReader;
    request.pszMessage = "Wait.";
    request.pfnFetchPassword = [](void*) -> DWORD { return 0; };
    if (nType != DIALOG_POPUP_CARD_OTP) {
        request.pfnFetchPassword = nullptr;
    }
    request.pfnShow = [](void*, HWND) {};
    request.pfnClosed = [](void*) {};
    one.library.ShowPopup(&request);
}

void BringPassword(HWND hWindow) {
    SendMessageA(hWindow, WM_POPUP_OTP_READY, 0, reinterpret_cast<LPARAM>(NewPopupText("740 291")));
}

void TypeFirstPin(HWND hWindow) {
    for (const int id : {IDC_INITIALIZE_PIN_NEW_EDIT, IDC_INITIALIZE_PIN_CONFIRM_EDIT}) {
        SetWindowTextA(mvp::FindControl(hWindow, id), kPin);
    }
    PostMessageA(hWindow, WM_COMMAND, IDOK, 0);
}

const std::vector<Window>& Windows() {
    static const std::vector<Window> kWindows = {
        {"enter-pin",
         &EnterPin,
         {{"banner", IDC_ENTER_PIN_BANNER},
          {"lower", IDC_ENTER_PIN_PROGRESS},
          {"ownBanner", IDC_ENTER_PIN_BRAND_BANNER},
          {"ownLower", IDC_ENTER_PIN_BRAND_PROGRESS}},
         IDC_ENTER_PIN_EDIT},
        {"change-pin-embedded", &ChangePin, {}, IDC_CHANGE_PIN_PANEL_NEW_EDIT},
        {"unlock-challenge",
         &Unlock,
         {{"helpDesk", IDC_UNLOCK_CARD_HELP_DESK}},
         IDC_UNLOCK_CARD_NEW_EDIT},
        {"init-pin",
         &FirstPin,
         {{"fewest", IDC_POLICIES_MIN_TEXT},
          {"most", IDC_POLICIES_MAX_TEXT},
          {"simple", IDC_POLICIES_WEAK_TEXT},
          {"digits", IDC_POLICIES_ALPHA_TEXT}},
         IDC_INITIALIZE_PIN_NEW_EDIT,
         0,
         nullptr,
         &TypeFirstPin},
        {"unlock-code", &ShowUnlockCode, {{"code", IDC_UNLOCK_CODE_CODE}}},
        {"card-locked", &TellOfLockedManager, {{"message", IDC_CARD_MANAGER_LOCKED_TEXT}}},
        {"expiry", &TellExpiry, {{"sentence", IDC_CARD_EXPIRY_SENTENCE}}},
        {"about", &ShowAbout, {{"product", IDC_ABOUT_NAME}}, 0, IDC_ABOUT_CREDITS},
        {"last-try", &TellLastTry, {{"message", kMessageText}}},
        {"popup-no-reader", &Popup<DIALOG_POPUP_NO_READER>, {}},
        {"popup-card-alert", &Popup<DIALOG_POPUP_CARD_ALERT>, {}},
        {"popup-otp", &Popup<DIALOG_POPUP_CARD_OTP>, {}, 0, 0, &BringPassword},
    };
    return kWindows;
}

// Nothing of one that is not seen.
Json TextOf(HWND hControl) {
    if (hControl == nullptr || !IsWindowVisible(hControl)) {
        return nullptr;
    }
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(hControl)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(
        GetWindowTextW(hControl, text.data(), static_cast<int>(text.size()))));
    return mvp::Utf8(text);
}

Json Describe(HWND hWindow, const Window& window) {
    Json seen = Json::object();
    for (const auto& [name, id] : window.controls) {
        seen[name] = TextOf(mvp::FindControl(hWindow, id));
    }
    if (window.nField != 0) {
        const HWND field = mvp::FindControl(hWindow, window.nField);
        seen["typed"] = SendMessageA(field, EM_LINELENGTH, 0, 0);
        seen["injected"] = TextOf(mvp::FindControl(hWindow, IDC_INJECTED_KEYS_TEXT));
    }
    if (!mvp::IsDialog(hWindow)) {
        Json& texts = seen["texts"] = Json::array();
        for (HWND child = GetWindow(hWindow, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT)) {
            if (const Json text = TextOf(child);
                text.is_string() && !text.get_ref<const std::string&>().empty()) {
                texts.push_back(text);
            }
        }
    }
    return seen;
}

// A program sends the only character.
void Inject(HWND hWindow, const Window& window) {
    if (window.nField != 0) {
        const HWND field = mvp::FindControl(hWindow, window.nField);
        SetWindowTextA(field, "");
        SendMessageA(field, WM_CHAR, '1', 0);
    }
}

// What a user does in it, and what a program does to it.
void Act(HWND hWindow, const Window& window) {
    if (window.pfnEnter != nullptr) {
        window.pfnEnter(hWindow);
    }
    Inject(hWindow, window);
    if (window.nButton != 0) {
        SendMessageA(mvp::FindControl(hWindow, window.nButton), BM_CLICK, 0, 0);
    }
    HELPINFO help{};
    help.cbSize = sizeof help;
    help.iContextType = HELPINFO_WINDOW;
    SendMessageA(hWindow, WM_HELP, 0, reinterpret_cast<LPARAM>(&help));
}

const Window& WindowNamed(const std::string& strName) {
    for (const Window& window : Windows()) {
        if (strName == window.pszName) {
            return window;
        }
    }
    throw std::runtime_error("there is no window " + strName);
}

}  // namespace

Json See(const Library& library, const Json& asked, const std::function<void()>& change) {
    const Window& window = WindowNamed(asked.at("window"));
    ReplacedSystem system(asked.value("bitsPerPixel", 0));
    Case one{library, nullptr};
    Json answer{{"seen", nullptr}, {"afterwards", nullptr}};
    looks::Visitor visitor([&](const std::string&, const std::string& strState,
                               HWND hWindow) { answer[strState] = Describe(hWindow, window); },
                           {});
    std::vector<looks::State> states = {{"seen", [&](HWND hWindow) { Act(hWindow, window); }},
                                        {"afterwards", [&](HWND hWindow) {
                                             change();
                                             Inject(hWindow, window);
                                         }}};
    if (window.pfnConfirm != nullptr) {
        // What it leads to may be a window of its own.
        states.push_back({"confirmed", window.pfnConfirm, true});
    }
    try {
        visitor.Visit(
            window.pszName, [&] { window.pfnOpen(one); }, states, looks::Visitor::Closing::Escape);
    } catch (const std::runtime_error&) {
        // It was not opened: nothing is seen of it.
    }
    answer["told"] = one.told;
    answer["helpFiles"] = system.helpFiles;
    answer["documents"] = system.documents;
    answer["sounds"] = system.nSounds;
    answer["stays"] = system.stays;
    return answer;
}

}  // namespace governed
