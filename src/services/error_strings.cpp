#include "services/error_strings.h"

#include <array>
#include <cstddef>

#include "resources/resource_numbers.h"

namespace mvp {

namespace {

constexpr unsigned kNone = 0;

// By code. The numbers of 11, 12 and 14 are out of sequence, and 13 never had a text.
constexpr std::array<unsigned, 15> kStringByCode = {
    kNone,
    IDS_ERROR_GENERAL,
    IDS_ERROR_CARD_ABSENT,
    IDS_ERROR_READER_ABSENT,
    IDS_ERROR_WRONG_PIN,
    IDS_ERROR_WRONG_UNLOCK_CODE,
    IDS_ERROR_PIN_BLOCKED,
    IDS_ERROR_UNLOCK_CODE_BLOCKED,
    IDS_ERROR_PIN_REFUSED,
    IDS_ERROR_CARD_UNKNOWN,
    IDS_ERROR_CARD_NOT_INITIALIZED,
    IDS_ERROR_CANCELLED,
    IDS_ERROR_CARD_IN_USE,
    kNone,
    IDS_ERROR_CARD_COMMUNICATION,
};

}  // namespace

std::optional<unsigned> ErrorStringNumber(std::int32_t nCode) noexcept {
    if (nCode < 0 || static_cast<std::size_t>(nCode) >= kStringByCode.size()) {
        return std::nullopt;
    }
    const unsigned number = kStringByCode.at(static_cast<std::size_t>(nCode));
    if (number == kNone) {
        return std::nullopt;
    }
    return number;
}

}  // namespace mvp
