// Where a text may be broken. A line breaks
// - at a space, which hangs at the end and takes no room;
// - behind a hyphen (or a run of break characters that ends in one) inside a word;
// - behind another break character (.,!:;)}]?) only inside a word that is too long for a line of
//   its own. So "12:30" or "readers." stay together wherever they fit, and a cell is at least as
//   wide as its longest word.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {

constexpr std::string_view kBreakCharacters = " -.,!:;)}]?";

enum class BreakClass : std::uint8_t { Letter, Space, Hyphen, Other };

constexpr std::array<BreakClass, 256> kBreakClasses = [] {
    std::array<BreakClass, 256> classes = {};
    for (const char c : kBreakCharacters) {
        classes[Byte(c)] = BreakClass::Other;
    }
    classes[Byte(' ')] = BreakClass::Space;
    classes[Byte('-')] = BreakClass::Hyphen;
    return classes;
}();

constexpr BreakClass ClassOf(char c) {
    return kBreakClasses[Byte(c)];
}

// A word may lie in several runs; this is what one run has to know of the ones before.
struct WordState {
    bool bLetter = false;  // the word has a character that is no break character
    bool bHyphen = false;  // it ended in a hyphen that may be broken behind
};

// The end of the piece of a word that begins at p, which is no space: the next space, or behind the
// hyphen it may be broken behind (bBreak), or pEnd.
inline const char* EndOfPiece(const char* p, const char* pEnd, WordState& state, bool& bBreak) {
    bBreak = false;
    bool letter = state.bLetter;
    BreakClass last = BreakClass::Letter;
    while (p != pEnd) {
        last = ClassOf(*p);
        if (last == BreakClass::Letter) {
            letter = true;
        } else if (last == BreakClass::Space) {
            break;
        } else if (last == BreakClass::Hyphen && letter && p + 1 != pEnd &&
                   ClassOf(p[1]) == BreakClass::Letter) {
            bBreak = true;
            ++p;
            break;
        }
        ++p;
    }
    state.bLetter = letter;
    state.bHyphen = !bBreak && letter && last == BreakClass::Hyphen;
    return p;
}

}  // namespace mvp::richtext
