// How a challenge or an unlock code is grouped for reading aloud.
//
// A code may be a secret, so the result is built in the caller's kind of text, which knows how to
// overwrite itself: anything that takes characters by +=.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace mvp {

inline constexpr std::size_t kCodeGroup = 4;
inline constexpr char kCodeGroupSeparator = '-';

// A dash after every fourth character but the last one, however long the code is.
template <class Text>
Text GroupByFour(std::string_view code) {
    Text text;
    for (std::size_t i = 0; i < code.size(); ++i) {
        if (i > 0 && i % kCodeGroup == 0) {
            text += kCodeGroupSeparator;
        }
        text += code[i];
    }
    return text;
}

// Always four groups and three dashes: what is beyond the sixteenth character is dropped, and what
// is missing leaves groups short or empty.
template <class Text>
Text GroupInFourGroups(std::string_view code) {
    constexpr std::size_t kGroups = 4;
    Text text;
    for (std::size_t group = 0; group < kGroups; ++group) {
        if (group > 0) {
            text += kCodeGroupSeparator;
        }
        for (const char ch : code.substr(std::min(group * kCodeGroup, code.size()), kCodeGroup)) {
            text += ch;
        }
    }
    return text;
}

}  // namespace mvp
