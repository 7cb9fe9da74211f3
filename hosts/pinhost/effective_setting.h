// What a setting amounts to: the value that the library goes by, where it comes from, and why one
// that is there is not followed. The rules are those of the setting's row; what a value points to,
// a file or a text with tags, is the library's to judge and its log's to tell.
#pragma once

#include <cstdint>
#include <string>

#include "settings/setting_row.h"

namespace pinhost {

// A value as it stands in the registry.
struct FoundValue {
    std::uint32_t nType = 0;  // as the system numbers them: REG_SZ 1, REG_EXPAND_SZ 2, REG_DWORD 4
    std::string bytes;
};

struct EffectiveSetting {
    bool bFromRegistry = false;
    std::uint32_t nValue = 0;  // of a number
    std::string strText = {};  // of a text, without its terminator; empty without one
    std::string strIgnored =
        {};  // why what is there is not followed, or not as it is; empty: it is
};

// `pFound` is null where there is no value.
EffectiveSetting Judge(const mvp::settings::SettingRow& row, const FoundValue* pFound);

}  // namespace pinhost
