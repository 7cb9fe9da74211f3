// The software card behind the flows of the card dialogs: what the library's callbacks do to it.
//
//     CardSide side(card, options);
//     const bool confirmed = flows.UnlockCard(&side.Functions(), &rules) == MVPINGUI_OK;
//     side.Finish();
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "pinhost/flows/flows.h"
#include "pinhost/software_card.h"

namespace pinhost {

// Codes of the library's error texts.
constexpr std::int32_t kCardOk = 0;
constexpr std::int32_t kCardFailed = 1;
constexpr std::int32_t kCardWrongUnlockCode = 5;
constexpr std::int32_t kCardUnlockCodeBlocked = 7;
constexpr std::int32_t kCardPinRefused = 8;

class CardSide {
public:
    // What the card does is written by `save` at once. With `nFailure` it does nothing but return
    // that code. `strReader` is ANSI.
    CardSide(SoftwareCard& card, std::function<void()> save, std::string strReader,
             std::int32_t nFailure);
    CardSide(const CardSide&) = delete;
    CardSide& operator=(const CardSide&) = delete;
    ~CardSide() = default;

    const PinHostCard& Functions() const { return m_functions; }

    // Whether the unlock code is the response to a challenge; a fixed one at first.
    void UseChallenge(bool bChallenge) { m_bChallenge = bChallenge; }

    // Throws EnvironmentError when the card could not be asked, or not be written.
    void Finish() const;

    // What the card answered last when it was to be changed; kCardOk before that.
    std::int32_t LastResult() const { return m_nLastResult; }

private:
    template <class Operation>
    std::int32_t Run(Operation&& operation) noexcept;
    template <class Operation>
    std::int32_t Change(Operation&& operation) noexcept;
    std::int32_t Unlock(const char* pszUnlockCode, const char* pszNewPin);
    std::int32_t Initialize(const char* pszNewPin, const PINPolicies& policies);

    SoftwareCard& m_card;
    std::function<void()> m_save;
    std::string m_strReader;
    std::int32_t m_nFailure;
    bool m_bChallenge = false;
    std::int32_t m_nLastResult = kCardOk;
    std::string m_strFault;
    PinHostCard m_functions;
};

}  // namespace pinhost
