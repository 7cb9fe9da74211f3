// The software card of a file: what is done to it is written at once.
#pragma once

#include <filesystem>

#include "pinhost/card.h"
#include "pinhost/software_card.h"

namespace pinhost {

class FileCard final : public ICard {
public:
    // A new card when there is no file, without a PIN if it is to be blank. Throws CardFileError.
    FileCard(std::filesystem::path file, bool bBlank);

    // What a card in software can do beyond others. Who changes it saves it.
    SoftwareCard& Software() noexcept { return m_card; }
    void Save() const;

    // Without the current PIN.
    Verdict SetPin(std::span<const char> newPin);

    // From now on Unlock and Reset take the response to the card's challenge.
    void UseChallenge(std::span<const unsigned char, kChallengeBytes> random, KeyedFunction keyed);
    bool UsesChallenge() const noexcept { return m_keyed != nullptr; }

    CardPolicy Policy() const override { return m_card.policy; }
    bool IsInitialized() const override { return m_card.IsInitialized(); }
    std::optional<std::uint32_t> TriesLeft() override { return m_card.nTriesLeft; }
    std::optional<std::uint32_t> UnlocksLeft() const override { return m_card.nUnlocksLeft; }
    bool WasRemoved() override { return false; }
    Verdict Verify(std::span<const char> pin) override;
    Verdict Change(std::span<const char> oldPin, std::span<const char> newPin) override;
    Verdict Unlock(std::span<const char> code, std::span<const char> newPin) override;
    Verdict Initialize(std::span<const char> newPin, const FirstPinRules& rules) override;
    Verdict Reset(std::span<const char> proof, bool bByPin) override;
    FileCard* InFile() noexcept override { return this; }

private:
    Verdict VerifyCode(std::span<const char> code);
    Verdict Saved(Verdict verdict) const;

    std::filesystem::path m_file;
    SoftwareCard m_card;
    KeyedFunction m_keyed = nullptr;
};

}  // namespace pinhost
