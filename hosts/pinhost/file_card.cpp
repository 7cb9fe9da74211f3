#include "pinhost/file_card.h"

#include <system_error>
#include <utility>

#include "pinhost/card_file.h"

namespace pinhost {
namespace {

constexpr std::uint32_t kMaxCounter = 255;  // what the card's file holds

Verdict Stored(bool bStored) noexcept {
    return bStored ? Verdict::Accepted : Verdict::Refused;
}

}  // namespace

FileCard::FileCard(std::filesystem::path file, bool bBlank) : m_file(std::move(file)) {
    std::error_code error;
    const bool isNew = !std::filesystem::exists(m_file, error);
    m_card = ReadCard(m_file);
    if (isNew && bBlank) {
        m_card.Reset();
    }
}

void FileCard::Save() const {
    WriteCard(m_file, m_card);
}

void FileCard::UseChallenge(std::span<const unsigned char, kChallengeBytes> random,
                            KeyedFunction keyed) {
    m_keyed = keyed;
    m_card.Challenge(random);
    Save();
}

Verdict FileCard::SetPin(std::span<const char> newPin) {
    return Saved(Stored(m_card.SetPin(newPin)));
}

Verdict FileCard::Verify(std::span<const char> pin) {
    return Saved(m_card.Verify(pin));
}

Verdict FileCard::Change(std::span<const char> oldPin, std::span<const char> newPin) {
    const Verdict verdict = m_card.Verify(oldPin);
    return Saved(verdict == Verdict::Accepted ? Stored(m_card.SetPin(newPin)) : verdict);
}

Verdict FileCard::Unlock(std::span<const char> code, std::span<const char> newPin) {
    const Verdict verdict = VerifyCode(code);
    return Saved(verdict == Verdict::Accepted ? Stored(m_card.Unlock(newPin)) : verdict);
}

Verdict FileCard::Initialize(std::span<const char> newPin, const FirstPinRules& rules) {
    const auto isCounter = [](std::uint32_t nValue) {
        return nValue >= 1 && nValue <= kMaxCounter;
    };
    if (rules.dwMinPinLength > rules.dwMaxPinLength || !isCounter(rules.nMaxTries) ||
        !isCounter(rules.nMaxUnlocks)) {
        return Verdict::Refused;
    }
    if (!m_card.SetPin(newPin)) {
        return Verdict::Refused;
    }
    m_card.nTriesLeft = m_card.nMaxTries = rules.nMaxTries;
    m_card.nUnlocksLeft = m_card.nMaxUnlocks = rules.nMaxUnlocks;
    m_card.policy.dwMinPinLength = rules.dwMinPinLength;
    m_card.policy.dwMaxPinLength = rules.dwMaxPinLength;
    m_card.policy.bPreventWeakPin = rules.bPreventWeakPin;
    m_card.policy.bForceChangePin = rules.bForceChangePin;
    return Saved(Verdict::Accepted);
}

Verdict FileCard::Reset(std::span<const char> proof, bool bByPin) {
    const Verdict verdict = bByPin ? m_card.Verify(proof) : VerifyCode(proof);
    if (verdict == Verdict::Accepted) {
        m_card.Reset();
    }
    return Saved(verdict);
}

Verdict FileCard::VerifyCode(std::span<const char> code) {
    return UsesChallenge() ? m_card.VerifyResponse(code, m_keyed) : m_card.VerifyUnlockCode(code);
}

Verdict FileCard::Saved(Verdict verdict) const {
    Save();
    return verdict;
}

}  // namespace pinhost
