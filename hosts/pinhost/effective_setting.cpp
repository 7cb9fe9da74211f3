#include "pinhost/effective_setting.h"

#include <algorithm>
#include <cstring>

namespace pinhost {
namespace {

using mvp::settings::Beyond;
using mvp::settings::SettingRow;

constexpr std::uint32_t kText = 1;
constexpr std::uint32_t kExpandText = 2;
constexpr std::uint32_t kNumber = 4;

bool Takes(const SettingRow& row, std::uint32_t nType) {
    const std::uint32_t taken = nType == kText         ? mvp::settings::kTakesText
                                : nType == kExpandText ? mvp::settings::kTakesExpandText
                                : nType == kNumber     ? mvp::settings::kTakesNumber
                                                       : 0;
    return row.nTypes == mvp::settings::kTakesAny || (row.nTypes & taken) != 0;
}

// Why the value cannot be read; empty: it can.
std::string WhyUnread(const SettingRow& row, const FoundValue& found) {
    const bool any = row.nTypes == mvp::settings::kTakesAny;
    if (!Takes(row, found.nType)) {
        return std::string("the type is not ") +
               (row.bNumber                                           ? "REG_DWORD"
                : (row.nTypes & mvp::settings::kTakesExpandText) != 0 ? "REG_SZ or REG_EXPAND_SZ"
                                                                      : "REG_SZ");
    }
    const bool isShort = found.bytes.size() < sizeof(std::uint32_t);
    if (row.bNumber && !any && found.bytes.size() != sizeof(std::uint32_t) &&
        !(isShort && row.bShortTaken)) {
        return "it has " + std::to_string(found.bytes.size()) + " bytes, not 4";
    }
    const bool filled =
        found.bytes.size() == row.nSize && found.bytes.find('\0') == std::string::npos;
    if (found.bytes.size() > row.nSize || (row.bTerminated && filled)) {
        return "it is longer than " + std::to_string(row.nSize) + " bytes";
    }
    return "";
}

std::string LimitsOf(const SettingRow& row) {
    return std::to_string(row.nLeast) + " to " + std::to_string(row.nGreatest);
}

EffectiveSetting JudgeNumber(const SettingRow& row, const FoundValue& found) {
    EffectiveSetting effective{.bFromRegistry = true};
    std::memcpy(&effective.nValue, found.bytes.data(),
                std::min(found.bytes.size(), sizeof effective.nValue));
    const std::uint32_t value = effective.nValue;
    if (found.nType != kNumber || found.bytes.size() != sizeof value) {
        effective.strIgnored = "it is no REG_DWORD: its first bytes count";
    }
    if (value >= row.nLeast && value <= row.nGreatest) {
        return effective;
    }
    const std::string beyond = std::to_string(value) + " is beyond " + LimitsOf(row);
    if (row.beyond == Beyond::Default) {
        return {.nValue = row.nDefault, .strIgnored = beyond};
    }
    if (row.beyond == Beyond::Nearest) {
        effective.nValue = std::clamp(value, row.nLeast, row.nGreatest);
        effective.strIgnored = beyond + ": the nearest counts";
    }
    return effective;
}

}  // namespace

EffectiveSetting Judge(const SettingRow& row, const FoundValue* pFound) {
    EffectiveSetting absent{.nValue = row.nDefault,
                            .strText = row.pszDefault != nullptr ? row.pszDefault : ""};
    if (pFound == nullptr) {
        return absent;
    }
    absent.strIgnored = WhyUnread(row, *pFound);
    if (!absent.strIgnored.empty()) {
        return absent;
    }
    if (row.bNumber) {
        return JudgeNumber(row, *pFound);
    }
    const std::string text = pFound->bytes.substr(0, pFound->bytes.find('\0'));
    if (text.size() < row.nShortest) {
        absent.strIgnored = "it has fewer than " + std::to_string(row.nShortest) + " characters";
        return absent;
    }
    return {.bFromRegistry = true, .strText = text};
}

}  // namespace pinhost
