// Small things that the card dialogs do with texts.
#pragma once

#include <string_view>

#include <dlgfw/string.h>

namespace mvp {

inline std::string_view View(const CString& text) noexcept {
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

// The help desk's telephone number of the configuration; empty when there is none, and when it has
// a single character.
CString HelpDeskNumber();

}  // namespace mvp
