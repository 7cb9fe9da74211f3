// A setting of the configuration, as the sources name it. Which ones there are is generated from
// settings.toml: settings.h, and settings_table.h with all that is known of each.
#pragma once

#include <cstdint>

namespace mvp {

struct SettingName {
    const char* pszKey;  // below the local-machine hive
    const char* pszName;
};

// A number of 32 bits.
struct NumberSetting : SettingName {
    std::uint32_t nCapacity;  // the most bytes a value may have
    std::uint32_t nDefault;   // what a missing value stands for
};

// A text of the system's code page.
struct TextSetting : SettingName {
    std::uint32_t nCapacity;  // the most bytes a value may have, its terminator included
    const char* pszDefault;   // null: a missing value stands for none
};

}  // namespace mvp
