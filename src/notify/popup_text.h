// The one-time password on its way from the host's routine to the popup: a block of the process's
// heap, which the popup owns once the message with it has come.
#pragma once

#include <windows.h>

#include <cstring>
#include <memory>
#include <string_view>

namespace mvp {

struct WipeAndFree {
    void operator()(char* pszText) const noexcept {
        HANDLE heap = GetProcessHeap();
        SecureZeroMemory(pszText, HeapSize(heap, 0, pszText));
        HeapFree(heap, 0, pszText);
    }
};
using PopupText = std::unique_ptr<char, WipeAndFree>;

// Takes over the text of a message. Null when the parameter is no block of the process's heap: the
// message may come from anyone.
inline PopupText TakePopupText(LPARAM lParam) noexcept {
    auto* text = reinterpret_cast<char*>(lParam);
    const bool owned = text != nullptr && HeapValidate(GetProcessHeap(), 0, text) != FALSE;
    return PopupText(owned ? text : nullptr);
}

// The text, which ends with its block at the latest.
inline std::string_view View(const PopupText& text) noexcept {
    return text != nullptr
               ? std::string_view(text.get(),
                                  strnlen(text.get(), HeapSize(GetProcessHeap(), 0, text.get())))
               : std::string_view();
}

}  // namespace mvp
