// What talking to a real card needs of the reader that it is in. Tests script one of their own.
#pragma once

#include <span>
#include <stdexcept>
#include <vector>

#include "pinhost/secret.h"

namespace pinhost {

// A card that cannot be asked, or answers what makes no sense. The text, in UTF-8, says what and
// holds nothing that was sent to the card.
class CardError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The card has left its reader.
class CardGone : public CardError {
public:
    CardGone() : CardError("the card was removed") {}
};

// A command for the card, or its answer; overwritten when it goes.
using Apdu = std::vector<unsigned char, WipingAllocator<unsigned char>>;

class IApduChannel {
public:
    IApduChannel() = default;
    IApduChannel(const IApduChannel&) = delete;
    IApduChannel& operator=(const IApduChannel&) = delete;
    virtual ~IApduChannel() = default;

    // No other program's commands come between until End. Throws CardError.
    virtual void Begin() = 0;

    // With `bReset` the card forgets what it was opened for.
    virtual void End(bool bReset) noexcept = 0;

    // The answer, its status word included. Throws CardError.
    virtual Apdu Transmit(std::span<const unsigned char> command) = 0;

    // Whether the card has left the reader since the channel was opened, or cannot be reached.
    virtual bool IsGone() = 0;
};

}  // namespace pinhost
