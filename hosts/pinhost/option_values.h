// Checks of options' values that say in words what is wrong with one.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <CLI/Validators.hpp>

namespace pinhost {

inline CLI::Validator WholeNumber(std::int64_t nLeast, std::int64_t nMost) {
    return {[=](const std::string& strValue) {
                std::int64_t value = 0;
                const char* end = strValue.data() + strValue.size();
                const auto [read, error] = std::from_chars(strValue.data(), end, value);
                if (error == std::errc() && read == end && value >= nLeast && value <= nMost) {
                    return std::string();
                }
                return "\"" + strValue + "\" is not a whole number from " + std::to_string(nLeast) +
                       " to " + std::to_string(nMost);
            },
            ""};
}

template <class Integer>
CLI::Validator AnyWholeNumber() {
    return WholeNumber(std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max());
}

inline CLI::Validator OneOf(const std::vector<std::string>& words) {
    std::string all;
    for (const std::string& word : words) {
        all.append(all.empty() ? "" : ", ").append(word);
    }
    return {[=](const std::string& strValue) {
                return std::find(words.begin(), words.end(), strValue) != words.end()
                           ? std::string()
                           : "\"" + strValue + "\" is none of " + all;
            },
            ""};
}

}  // namespace pinhost
