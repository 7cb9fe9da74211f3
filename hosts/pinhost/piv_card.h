// A real card: its PIV application (NIST SP 800-73), as far as PIN and unlock code go.
//
// The application's PIN has 6 to 8 digits, and its unlock code (the standard's PUK) 8 bytes,
// typed as 16 hexadecimal digits or as the text that they spell. It keeps no rules and no PIN-less
// state of its own: "initialized" means here that it has another PIN than the transport PIN that it
// was delivered with, which it cannot be asked for.
//
// What a command was given is overwritten in every copy made of it. After one that the card
// accepted it is reset, so that no other program finds it open.
#pragma once

#include <memory>

#include "pinhost/apdu_channel.h"
#include "pinhost/card.h"

namespace pinhost {

class PivCard final : public ICard {
public:
    // `transportPin` is what Initialize replaces and Reset puts back; both are refused when it is
    // empty.
    PivCard(std::unique_ptr<IApduChannel> channel, Secret transportPin);

    CardPolicy Policy() const override;
    bool IsInitialized() const override { return true; }
    // Nothing while another program has the card open: it answers with success then.
    std::optional<std::uint32_t> TriesLeft() override;
    // Nothing before a wrong code has told.
    std::optional<std::uint32_t> UnlocksLeft() const override { return m_unlocksLeft; }
    bool WasRemoved() override { return m_channel->IsGone(); }
    Verdict Verify(std::span<const char> pin) override;
    Verdict Change(std::span<const char> oldPin, std::span<const char> newPin) override;
    Verdict Unlock(std::span<const char> code, std::span<const char> newPin) override;
    Verdict Initialize(std::span<const char> newPin, const FirstPinRules& rules) override;
    Verdict Reset(std::span<const char> proof, bool bByPin) override;

private:
    struct Instruction;
    struct Answer;

    void Select();
    Answer Send(const Instruction& instruction, std::span<const unsigned char> data);
    Verdict Replace(const Instruction& instruction, const Apdu& proof, std::span<const char> newPin,
                    std::optional<std::uint32_t>& triesLeft);

    std::unique_ptr<IApduChannel> m_channel;
    Secret m_transportPin;
    std::optional<std::uint32_t> m_unlocksLeft;
};

}  // namespace pinhost
