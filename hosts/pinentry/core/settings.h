// What a client has set for its next windows, and the options of its connection.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "pinentry/core/errors.h"
#include "pinentry/core/user_interface.h"

namespace pinentry {

// The longest time-out that the system's timers take, in whole seconds.
constexpr std::uint64_t kMaxTimeout = 2'147'483;

// UTF-8, as the client sent it; "_" stands before the access key of a label.
struct RequestTexts {
    std::string strTitle;
    std::string strDescription;
    std::string strPrompt;
    std::string strError;
    std::string strOk;
    std::string strNotOk;
    std::string strCancel;
    std::string strRepeat;
    std::string strRepeatError;
    std::string strRepeatOk;
    std::string strQualityTip;
};

struct RequestSettings {
    RequestTexts texts;
    std::uint32_t nTimeout = 0;
    bool bRepeat = false;
    bool bQuality = false;

    // What counts for one window only.
    void ForgetWindow();
};

// They outlive RESET.
struct ConnectionOptions {
    std::string strDefaultOk;
    std::string strDefaultCancel;
    std::string strDefaultPrompt;
    std::string strConstraintsHint;
    std::string strConstraintsLongHint;
    std::string strConstraintsErrorTitle;
    std::string strDisplay;
    std::string strTtyName;
    std::string strTtyType;
    std::string strLanguage;
    std::string strMask;  // one character
    std::uint64_t nParent = 0;
    bool bConstraints = false;

    // Takes "name=value", "name value", "name" or any with "--" before it. No value: done.
    std::optional<ErrorCode> Set(std::string_view option);

private:
    std::optional<ErrorCode> SetValue(std::string_view name, std::string_view value);
};

// What the windows show. False when a character has no place in the code page.
bool MakePinQuestion(const RequestSettings& settings, const ConnectionOptions& options,
                     const CodePage& codePage, PinQuestion& question);
Confirmation MakeConfirmation(const RequestSettings& settings, const ConnectionOptions& options,
                              bool bOneButton);

// Decimal digits alone, no more than `nMax`.
std::optional<std::uint64_t> Number(std::string_view text, std::uint64_t nMax);

}  // namespace pinentry
