#include "looks/flows.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "common/keyboard.h"

namespace looks {

namespace {

struct Key {
    std::string_view name;
    WORD vk;
};

constexpr Key kKeys[] = {
    {"Tab", VK_TAB},   {"Enter", VK_RETURN},   {"Space", VK_SPACE},       {"Up", VK_UP},
    {"Down", VK_DOWN}, {"Backspace", VK_BACK}, {"Caps Lock", VK_CAPITAL},
};

// A named key, Shift and a named key, Alt and a letter, or a character.
void Press(const std::string& strName) {
    constexpr std::string_view kAlt = "Alt+";
    constexpr std::string_view kShift = "Shift+";
    const bool shift = strName.starts_with(kShift);
    const std::string_view name = std::string_view(strName).substr(shift ? kShift.size() : 0);
    const auto* const found = std::ranges::find(kKeys, name, &Key::name);
    bool sent = false;
    if (found != std::end(kKeys)) {
        sent = shift ? mvp::SendKey(found->vk, {VK_SHIFT}) : mvp::SendKey(found->vk);
    } else if (strName.starts_with(kAlt)) {
        sent = mvp::SendKey(static_cast<WORD>(strName.at(kAlt.size())), {VK_MENU});
    } else {
        sent = mvp::SendText(strName);
    }
    if (!sent) {
        throw std::runtime_error("the system takes no keys");
    }
}

// The steps are set apart by blanks; a word that is no key is typed character by character.
std::vector<State> StepsOf(std::string_view steps) {
    std::vector<State> states = {{"", {}}};
    const auto add = [&](std::string strName) {
        states.push_back({strName, [strName](HWND) { Press(strName); }, true});
    };
    while (!steps.empty()) {
        const std::size_t end = std::min(steps.find(' '), steps.size());
        std::string word(steps.substr(0, end));
        steps.remove_prefix(std::min(end + 1, steps.size()));
        std::ranges::replace(word, '_', ' ');
        if (word == kManyKeys) {
            states.push_back({kManyKeys, {}});
        } else if (word.find('+') != std::string::npos ||
                   std::ranges::count(kKeys, word, &Key::name) != 0) {
            add(word);
        } else {
            for (const char typed : word) {
                add(std::string(1, typed));
            }
        }
    }
    return states;
}

struct Flow {
    const char* pszName;
    const char* pszDialog;
    const char* pszSteps;
};

constexpr Flow kFlows[] = {
    {"enter PIN", "enter-pin", "5797 Backspace Tab Tab Tab Alt+P Shift+Tab"},
    {"enter PIN with Caps Lock", "enter-pin", "Caps_Lock Tab Alt+P Caps_Lock"},
    {"enter PIN, many keys", "enter-pin", "many_keys"},
    {"enter PIN, warning of programs", "enter-pin-warning", "57 Tab"},
    {"enter PIN, refusing programs", "enter-pin-refusing", "57 Tab"},
    {"change PIN", "change-pin", "5797 Tab 5797 Backspace 59 Tab 57959 Tab Tab Alt+F"},
    {"change PIN, every rule", "change-pin-every-rule", "5797 Tab 5797 Tab 5797 Tab"},
    {"change PIN in a host's window", "change-pin-embedded", "5797 Tab 57959 Tab 57959 Tab"},
    {"unlock with a code", "unlock-code", "5797597957975979 Tab 57959 Tab 57959 Tab Enter"},
    {"unlock with a challenge", "unlock-challenge", "Shift+Tab Tab 5797 Tab 57959 Tab 57959 Tab"},
    {"unlock failed", "unlock-failed", "Tab"},
    {"first PIN", "first-pin", "57959 Tab 57959 Tab Enter Tab Space"},
    {"reset by PIN", "reset-code", "5797 Tab Tab"},
    {"reset by code", "reset-code", "Shift+Tab Down 5797 Tab"},
    {"reset by challenge", "reset-challenge", "Shift+Tab Down 57975979 Shift+Tab Tab Tab"},
    {"unlock code shown", "unlock-code-shown", "Tab Space Tab Tab"},
    {"no unlock code", "no-unlock-code", ""},
    {"expiry", "expiry", "Tab Tab Down Tab Space Shift+Tab Alt+R Space Alt+D Alt+N Tab Tab"},
    {"expired", "expiry-expired", "Tab Tab"},
    {"about", "about", "Tab"},
    {"card manager blocked", "card-manager-locked", "Tab"},
    {"card tool", "card-tool-unlocking", ""},
    {"last try", "last-try", ""},
    {"popup without a reader", "popup-no-reader", ""},
    {"popup of a card left", "popup-card-alert", ""},
};

}  // namespace

std::vector<Entry> Flows() {
    const std::vector<Entry> dialogs = AllDialogs();
    std::vector<Entry> flows;
    for (const Flow& flow : kFlows) {
        const auto dialog = std::ranges::find(dialogs, flow.pszDialog, &Entry::strName);
        if (dialog == dialogs.end()) {
            throw std::runtime_error(std::string("there is no dialog ") + flow.pszDialog);
        }
        flows.push_back({flow.pszName, dialog->open, StepsOf(flow.pszSteps), dialog->kind});
    }
    // Its password is brought by the dialog's own states.
    const auto password = std::ranges::find(dialogs, "popup-otp", &Entry::strName);
    flows.push_back({"popup with a password", password->open, password->states, password->kind});
    return flows;
}

}  // namespace looks
