#include "pinhost/card_side.h"

#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "pinhost/command.h"
#include "pinhost/system_crypto.h"
#include "platform/barrier.h"

namespace pinhost {
namespace {

constexpr std::uint32_t kMaxCounter = 255;  // what the card's file holds

CardSide& SideOf(void* pContext) {
    return *static_cast<CardSide*>(pContext);
}

// False when it does not fit.
bool CopyOut(std::span<const char> text, char* pszBuffer) {
    if (text.size() >= PINHOST_CODE_CAPACITY) {
        return false;
    }
    std::memcpy(pszBuffer, text.data(), text.size());
    pszBuffer[text.size()] = '\0';
    return true;
}

}  // namespace

// Whatever goes wrong is kept for the host; the library hears of a failure.
template <class Operation>
std::int32_t CardSide::Run(Operation&& operation) noexcept {
    return mvp::Guarded(
        kCardFailed,
        [&] {
            try {
                return m_nFailure != kCardOk ? m_nFailure : operation();
            } catch (const std::exception& error) {
                m_strFault = error.what();
                return kCardFailed;
            }
        },
        [] {});
}

template <class Operation>
std::int32_t CardSide::Change(Operation&& operation) noexcept {
    m_nLastResult = Run([&] {
        const std::int32_t result = operation();
        m_save();
        return result;
    });
    return m_nLastResult;
}

CardSide::CardSide(SoftwareCard& card, std::function<void()> save, std::string strReader,
                   std::int32_t nFailure)
    : m_card(card),
      m_save(std::move(save)),
      m_strReader(std::move(strReader)),
      m_nFailure(nFailure),
      m_functions{
          this,
          m_strReader.c_str(),
          [](void* pContext, const char* pszUnlockCode, const char* pszNewPin) {
              CardSide& side = SideOf(pContext);
              return side.Change([&] { return side.Unlock(pszUnlockCode, pszNewPin); });
          },
          [](void* pContext, char* pszChallenge) {
              const CardSide& side = SideOf(pContext);
              return side.m_bChallenge && CopyOut(side.m_card.strChallenge, pszChallenge)
                         ? kCardOk
                         : kCardFailed;
          },
          [](void* pContext, const char* pszNewPin, const PINPolicies* pPolicies) {
              CardSide& side = SideOf(pContext);
              return side.Change([&] { return side.Initialize(pszNewPin, *pPolicies); });
          },
          [](void* pContext, char* pszCode) {
              CardSide& side = SideOf(pContext);
              return side.Run(
                  [&] { return CopyOut(side.m_card.unlockCode, pszCode) ? kCardOk : kCardFailed; });
          },
          [](void* pContext) {
              CardSide& side = SideOf(pContext);
              side.Change([&] {
                  side.m_card.bUnlockCodeSeen = true;
                  return kCardOk;
              });
          },
      } {}

void CardSide::Finish() const {
    if (!m_strFault.empty()) {
        throw EnvironmentError(m_strFault);
    }
}

std::int32_t CardSide::Unlock(const char* pszUnlockCode, const char* pszNewPin) {
    const std::string_view code = pszUnlockCode;
    const Verdict verdict =
        m_bChallenge ? m_card.VerifyResponse(code, HmacSha256) : m_card.VerifyUnlockCode(code);
    if (verdict != Verdict::Accepted) {
        return verdict == Verdict::Blocked ? kCardUnlockCodeBlocked : kCardWrongUnlockCode;
    }
    return m_card.Unlock(std::string_view(pszNewPin)) ? kCardOk : kCardPinRefused;
}

std::int32_t CardSide::Initialize(const char* pszNewPin, const PINPolicies& policies) {
    const auto isCounter = [](std::uint32_t dwValue) {
        return dwValue >= 1 && dwValue <= kMaxCounter;
    };
    if (policies.MinimumPINLength > policies.MaximumPINLength || !isCounter(policies.MaxPINTries) ||
        !isCounter(policies.MaxPINUnlock)) {
        return kCardFailed;
    }
    if (!m_card.SetPin(std::string_view(pszNewPin))) {
        return kCardPinRefused;
    }
    m_card.nTriesLeft = m_card.nMaxTries = policies.MaxPINTries;
    m_card.nUnlocksLeft = m_card.nMaxUnlocks = policies.MaxPINUnlock;
    m_card.policy.dwMinPinLength = policies.MinimumPINLength;
    m_card.policy.dwMaxPinLength = policies.MaximumPINLength;
    m_card.policy.bPreventWeakPin = policies.WeakPINAllowed != 1;
    m_card.policy.bForceChangePin = policies.ForceChangePIN == 1;
    return kCardOk;
}

}  // namespace pinhost
