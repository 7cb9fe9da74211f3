// The plain text filter .*<.*href\s*=.*>.* (letter case matters, the dot matches everything), by
// hand: what a host may use to tell texts that can open things from those that cannot.
#pragma once

#include <string_view>

namespace mvp::richtext {

inline bool MatchesHrefFilter(std::string_view text) {
    const std::size_t nOpen = text.find('<');
    const std::size_t nLastClose = text.rfind('>');
    if (nOpen == std::string_view::npos || nLastClose == std::string_view::npos) {
        return false;
    }
    for (std::size_t nAt = text.find("href", nOpen + 1); nAt != std::string_view::npos;
         nAt = text.find("href", nAt + 1)) {
        const std::size_t nEquals = text.find_first_not_of(" \t\n\v\f\r", nAt + 4);
        if (nEquals != std::string_view::npos && text[nEquals] == '=' && nLastClose > nEquals) {
            return true;
        }
    }
    return false;
}

}  // namespace mvp::richtext
