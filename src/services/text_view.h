// The framework's texts for code that knows only the language's.
#pragma once

#include <string_view>

#include <dlgfw/string.h>

namespace mvp {

// Valid while the text is there and does not change.
inline std::string_view View(const CString& text) noexcept {
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

}  // namespace mvp
