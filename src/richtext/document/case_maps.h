// Upper and lower case of the 256 characters of a code page. The host fills the maps with its
// system's tables; by default they are those of Windows-1252.
#pragma once

#include <array>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {

struct CaseMaps {
    std::array<char, 256> upper = {};
    std::array<char, 256> lower = {};
};

constexpr CaseMaps MakeWindows1252CaseMaps() {
    CaseMaps maps;
    for (unsigned i = 0; i < 256; ++i) {
        maps.upper[i] = static_cast<char>(i);
        maps.lower[i] = static_cast<char>(i);
    }
    const auto pair = [&](unsigned upper, unsigned lower) {
        maps.upper[lower] = static_cast<char>(upper);
        maps.lower[upper] = static_cast<char>(lower);
    };
    for (unsigned i = 'A'; i <= 'Z'; ++i) {
        pair(i, i + 0x20);
    }
    for (unsigned i = 0xC0; i <= 0xDE; ++i) {
        if (i != 0xD7) {  // the multiplication sign
            pair(i, i + 0x20);
        }
    }
    pair(0x8A, 0x9A);
    pair(0x8C, 0x9C);
    pair(0x8E, 0x9E);
    pair(0x9F, 0xFF);
    return maps;
}

inline constexpr CaseMaps kWindows1252CaseMaps = MakeWindows1252CaseMaps();

}  // namespace mvp::richtext
