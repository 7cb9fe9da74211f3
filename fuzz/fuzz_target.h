// The entry of a fuzz target, which defines Fuzz, and what it checks with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

void Fuzz(std::string_view data);

// NOLINTNEXTLINE(misc-definitions-in-headers): each target is a program of one file
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz({reinterpret_cast<const char*>(pData), nSize});
    return 0;
}

// A condition that ends a fuzz run when it does not hold, in every build.
#define FUZZ_CHECK(condition)                                                    \
    do {                                                                         \
        if (!(condition)) {                                                      \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                        \
        }                                                                        \
    } while (false)

// The plain text filter .*<.*href\s*=.*>.* (letter case matters, the dot matches everything), by
// hand: what a host may use to tell texts that can open things from those that cannot.
inline bool MatchesHrefFilter(std::string_view text) {
    const std::size_t lastClose = text.rfind('>');
    for (std::size_t at = text.find("href", text.find('<')); at != std::string_view::npos;
         at = text.find("href", at + 1)) {
        const std::size_t equals = text.find_first_not_of(" \t\n\v\f\r", at + 4);
        if (equals != std::string_view::npos && text[equals] == '=' &&
            lastClose != std::string_view::npos && lastClose > equals) {
            return true;
        }
    }
    return false;
}
