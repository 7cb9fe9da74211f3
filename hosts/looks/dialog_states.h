// What the table of dialogs is made of: how one is opened, and how it comes into its states.
#pragma once

#include <windows.h>

#include <functional>
#include <utility>
#include <vector>

#include <mvpingui/pwd_rule_args.h>

#include "common/thread_windows.h"
#include "pinhost/popup_room.h"
#include "settings/settings.h"

namespace looks {

inline constexpr PwdRuleArgs kRules = {0, 1, 1, 1, 4, 8, 0};

using Texts = std::vector<std::pair<int, const char*>>;  // the number of an edit, and its text

// Types the texts into the edits.
inline std::function<void(HWND)> Typed(Texts texts) {
    return [texts = std::move(texts)](HWND hWindow) {
        for (const auto& [id, text] : texts) {
            SetWindowTextA(mvp::FindControl(hWindow, id), text);
        }
    };
}

inline std::function<void(HWND)> Clicked(int nId) {
    return [nId](HWND hWindow) { SendMessageA(mvp::FindControl(hWindow, nId), BM_CLICK, 0, 0); };
}

// A character that no key has brought.
inline std::function<void(HWND)> SentTo(int nId) {
    return [nId](HWND hWindow) { SendMessageA(mvp::FindControl(hWindow, nId), WM_CHAR, '1', 0); };
}

// Opens it under a setting of the machine's.
template <typename Setting, typename Value>
std::function<void()> Under(const Setting& setting, Value value, std::function<void()> open) {
    return [=] {
        pinhost::OwnConfiguration configuration;
        configuration.Set(setting, value);
        open();
    };
}

inline std::function<void()> WithInjectedKeys(DWORD dwPolicy, std::function<void()> open) {
    return Under(mvp::settings::kInjectedKeys, dwPolicy, std::move(open));
}

}  // namespace looks
