// All that is known of a setting: for programs that list the settings, and for tests that hold each
// of them in each of its states.
#pragma once

#include <array>
#include <cstdint>

namespace mvp::settings {

// The registry's types that a setting is taken from.
constexpr std::uint32_t kTakesNumber = 1;
constexpr std::uint32_t kTakesText = 2;
constexpr std::uint32_t kTakesExpandText = 4;
constexpr std::uint32_t kTakesAny = ~0U;

// What a number outside the limits stands for.
enum class Beyond : std::uint8_t {
    Default,
    Nearest,  // the limit that is nearer
    Kept,     // itself
};

struct SettingRow {
    const char* pszId;
    const char* pszKey;  // below the local-machine hive
    const char* pszName;
    bool bNumber;
    std::uint32_t nTypes;
    std::uint32_t nSize;  // the most bytes a value may have
    std::uint32_t nDefault;
    const char* pszDefault;  // of a text; null: none
    std::uint32_t nLeast;
    std::uint32_t nGreatest;
    Beyond beyond;
    bool bTerminated;         // a text of nSize bytes needs its terminator
    bool bShortTaken;         // a number of fewer than 4 bytes is taken as far as it goes
    std::uint32_t nShortest;  // a text of fewer bytes stands for none
    const char* pszAbsent;    // what holds without a text, in words
    const char* pszWindows;   // that it changes, empty: none
};

}  // namespace mvp::settings
