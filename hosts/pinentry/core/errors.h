// What a request is refused with: numbers of the key manager's error system, from the source that
// stands for the program that asks for PINs.
#pragma once

#include <cstdint>

namespace pinentry {

enum class ErrorCode : std::uint32_t {
    General = 1,
    InvalidValue = 55,
    Timeout = 62,
    TooLarge = 67,
    NoPinentry = 86,
    Canceled = 99,
    NotConfirmed = 114,
    LocaleProblem = 166,
    UnknownOption = 174,
    LineTooLong = 263,
    UnexpectedCommand = 274,
    UnknownCommand = 275,
    Syntax = 276,
    InquiryCanceled = 277,
    Parameter = 280,
};

// The number as it stands in a line: code and source.
constexpr std::uint32_t LineNumber(ErrorCode code) {
    constexpr std::uint32_t kSourcePinentry = 5;
    return (kSourcePinentry << 24) | static_cast<std::uint32_t>(code);
}

// What it is called; for people.
const char* NameOf(ErrorCode code);

}  // namespace pinentry
