#include "pinhost/card_side.h"

#include <cstring>
#include <string_view>
#include <utility>

#include "pinhost/apdu_channel.h"
#include "pinhost/file_card.h"
#include "platform/barrier.h"

namespace pinhost {
namespace {

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

std::int32_t CopyChallenge(ICard& card, char* pszChallenge) {
    FileCard* file = card.InFile();
    return file != nullptr && file->UsesChallenge() &&
                   CopyOut(file->Software().strChallenge, pszChallenge)
               ? kCardOk
               : kCardFailed;
}

// A card that shows none is to the library one without.
std::int32_t CopyUnlockCode(ICard& card, char* pszCode) {
    FileCard* file = card.InFile();
    return CopyOut(file != nullptr ? file->Software().unlockCode : Secret(), pszCode) ? kCardOk
                                                                                      : kCardFailed;
}

std::int32_t NeverDisplayCode(ICard& card) {
    if (FileCard* file = card.InFile()) {
        file->Software().bUnlockCodeSeen = true;
        file->Save();
    }
    return kCardOk;
}

}  // namespace

// Whatever goes wrong is kept for the host; the library hears of a failure.
template <class Operation>
std::int32_t CardSide::Run(Operation&& operation) noexcept {
    return mvp::Guarded(
        kCardFailed,
        [&] {
            m_fault = nullptr;
            try {
                return m_nFailure != kCardOk ? m_nFailure : operation();
            } catch (const CardGone&) {
                return Keep(std::current_exception(), kCardAbsent);
            } catch (const CardError&) {
                return Keep(std::current_exception(), kCardCommunication);
            } catch (const std::exception&) {
                return Keep(std::current_exception(), kCardFailed);
            }
        },
        [] {});
}

std::int32_t CardSide::Keep(std::exception_ptr fault, std::int32_t nResult) noexcept {
    m_fault = std::move(fault);
    return nResult;
}

template <class Operation>
std::int32_t CardSide::Change(Operation&& operation) noexcept {
    m_nLastResult = Run(std::forward<Operation>(operation));
    return m_nLastResult;
}

CardSide::CardSide(ICard& card, std::string strReader, std::int32_t nFailure)
    : m_card(card),
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
              return CopyChallenge(SideOf(pContext).m_card, pszChallenge);
          },
          [](void* pContext, const char* pszNewPin, const PINPolicies* pPolicies) {
              CardSide& side = SideOf(pContext);
              return side.Change([&] { return side.Initialize(pszNewPin, *pPolicies); });
          },
          [](void* pContext, char* pszCode) {
              CardSide& side = SideOf(pContext);
              return side.Run([&] { return CopyUnlockCode(side.m_card, pszCode); });
          },
          [](void* pContext) {
              CardSide& side = SideOf(pContext);
              side.Change([&] { return NeverDisplayCode(side.m_card); });
          },
      } {}

void CardSide::Finish() const {
    if (m_fault) {
        std::rethrow_exception(m_fault);
    }
}

std::int32_t CardSide::Unlock(const char* pszUnlockCode, const char* pszNewPin) {
    switch (m_card.Unlock(std::string_view(pszUnlockCode), std::string_view(pszNewPin))) {
        case Verdict::Accepted:
            return kCardOk;
        case Verdict::Wrong:
            return kCardWrongUnlockCode;
        case Verdict::Blocked:
            return kCardUnlockCodeBlocked;
        case Verdict::Refused:
            break;
    }
    return kCardPinRefused;
}

std::int32_t CardSide::Initialize(const char* pszNewPin, const PINPolicies& policies) {
    const FirstPinRules rules{policies.MinimumPINLength,    policies.MaximumPINLength,
                              policies.MaxPINTries,         policies.MaxPINUnlock,
                              policies.WeakPINAllowed != 1, policies.ForceChangePIN == 1};
    m_firstPinVerdict = m_card.Initialize(std::string_view(pszNewPin), rules);
    switch (m_firstPinVerdict) {
        case Verdict::Accepted:
            return kCardOk;
        case Verdict::Wrong:
            // What was wrong is the transport PIN, which the user has not typed.
            return kCardFailed;
        case Verdict::Blocked:
            return kCardPinBlocked;
        case Verdict::Refused:
            break;
    }
    return kCardPinRefused;
}

}  // namespace pinhost
