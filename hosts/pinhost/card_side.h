// The card behind the flows of the card dialogs: what the library's callbacks do to it.
//
//     CardSide side(card, strReader, kCardOk);
//     const bool confirmed = flows.UnlockCard(&side.Functions(), &rules) == MVPINGUI_OK;
//     side.Finish();
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "pinhost/card.h"
#include "pinhost/flows/flows.h"

namespace pinhost {

// Codes of the library's error texts.
constexpr std::int32_t kCardOk = 0;
constexpr std::int32_t kCardFailed = 1;
constexpr std::int32_t kCardAbsent = 2;
constexpr std::int32_t kCardWrongUnlockCode = 5;
constexpr std::int32_t kCardPinBlocked = 6;
constexpr std::int32_t kCardUnlockCodeBlocked = 7;
constexpr std::int32_t kCardPinRefused = 8;
constexpr std::int32_t kCardCommunication = 14;

class CardSide {
public:
    // With `nFailure` the card does nothing but return that code. `strReader` is ANSI.
    CardSide(ICard& card, std::string strReader, std::int32_t nFailure);
    CardSide(const CardSide&) = delete;
    CardSide& operator=(const CardSide&) = delete;
    ~CardSide() = default;

    const PinHostCard& Functions() const { return m_functions; }

    ICard& Card() const { return m_card; }

    // Throws what kept the card from being asked, or from being written, the last time.
    void Finish() const;

    // What the card made of the first PIN that it was given last.
    Verdict FirstPinVerdict() const { return m_firstPinVerdict; }

    // What the library was told last when the card was to be changed; kCardOk before that.
    std::int32_t LastResult() const { return m_nLastResult; }

private:
    template <class Operation>
    std::int32_t Run(Operation&& operation) noexcept;
    template <class Operation>
    std::int32_t Change(Operation&& operation) noexcept;
    std::int32_t Unlock(const char* pszUnlockCode, const char* pszNewPin);
    std::int32_t Initialize(const char* pszNewPin, const PINPolicies& policies);

    std::int32_t Keep(std::exception_ptr fault, std::int32_t nResult) noexcept;

    ICard& m_card;
    std::string m_strReader;
    std::int32_t m_nFailure;
    std::int32_t m_nLastResult = kCardOk;
    Verdict m_firstPinVerdict = Verdict::Refused;
    std::exception_ptr m_fault;
    PinHostCard m_functions;
};

}  // namespace pinhost
