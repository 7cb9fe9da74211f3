// One call of GetChangePINInfoFromUser, and what came of it.
#pragma once

#include <windows.h>

#include <algorithm>
#include <array>
#include <string>

#include "mvpingui/mvpingui.h"

namespace mvp::test {

struct ChangePinRequest {
    PwdRuleArgs rules{};
    bool bNullRules = false;
    int bShowLastTry = 0;
    HWND hHost = nullptr;
    bool bAskCurrentPin = true;

    static constexpr char kMark = '\x7F';
    static constexpr uint32_t kUntouchedLength = 0xCAFE;
    std::array<char, 256> newPin = Marked();
    std::array<char, 256> oldPin = Marked();
    uint32_t cbNewPin = kUntouchedLength;
    uint32_t cbOldPin = kUntouchedLength;

    bool bNullNewPin = false;
    bool bNullNewLength = false;
    bool bNullOldPin = false;
    bool bNullOldLength = false;

    uint32_t Call() {
        return GetChangePINInfoFromUser(
            bNullRules ? nullptr : &rules, bShowLastTry, bNullNewPin ? nullptr : newPin.data(),
            bNullNewLength ? nullptr : &cbNewPin, bNullOldPin ? nullptr : oldPin.data(),
            bNullOldLength ? nullptr : &cbOldPin, "Reader A", hHost, bAskCurrentPin);
    }
    bool IsUntouched() const {
        return newPin == Marked() && oldPin == Marked() && cbNewPin == kUntouchedLength &&
               cbOldPin == kUntouchedLength;
    }
    std::string NewPin() const { return TextOf(newPin, cbNewPin); }
    std::string OldPin() const { return TextOf(oldPin, cbOldPin); }

private:
    static constexpr std::array<char, 256> Marked() {
        std::array<char, 256> buffer{};
        buffer.fill(kMark);
        return buffer;
    }
    // The PIN when it ends with a zero and nothing was written behind; else what tells why not.
    static std::string TextOf(const std::array<char, 256>& buffer, uint32_t length) {
        if (length >= buffer.size() || buffer.at(length) != '\0')
            return "no terminator at " + std::to_string(length);
        if (std::any_of(buffer.begin() + length + 1, buffer.end(),
                        [](char c) { return c != kMark; }))
            return "written behind " + std::to_string(length);
        return {buffer.data(), length};
    }
};

}  // namespace mvp::test
