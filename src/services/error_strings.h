// Which string of the resource module tells a result code of a card operation.
#pragma once

#include <cstdint>
#include <optional>

namespace mvp {

// The string's number, or nothing for a code that has no text.
std::optional<unsigned> ErrorStringNumber(std::int32_t nCode) noexcept;

}  // namespace mvp
