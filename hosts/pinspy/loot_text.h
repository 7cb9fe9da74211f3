// What a door gave, as a text that goes through a pipe.
#pragma once

#include <string>
#include <string_view>

#include "pinspy/doors.h"

namespace mvp::spy {

// Ends each answer.
inline constexpr char kEnd = '\x04';

// ">", each piece behind a blank in two letters from A to P for each byte, and the end mark.
inline std::string ToText(const Loot& loot) {
    std::string text = ">";
    for (const std::string& bytes : loot) {
        text.push_back(' ');
        for (const char ch : bytes) {
            const auto byte = static_cast<unsigned char>(ch);
            text.push_back(static_cast<char>('A' + byte / 16));
            text.push_back(static_cast<char>('A' + byte % 16));
        }
    }
    return text + ' ' + kEnd;
}

inline Loot FromText(std::string_view text) {
    Loot loot;
    text.remove_prefix(text.find('>') + 1);
    for (std::size_t i = 0; i + 1 < text.size() && text[i] != kEnd;) {
        if (text[i] == ' ') {
            ++i;
            if (text[i] != kEnd) {
                loot.emplace_back();
            }
        } else {
            loot.back().push_back(static_cast<char>((text[i] - 'A') * 16 + (text[i + 1] - 'A')));
            i += 2;
        }
    }
    return loot;
}

}  // namespace mvp::spy
