// What the enter-PIN dialog decides.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mvp {

// Whether a PIN of `cbPin` bytes can be confirmed; both bounds are inclusive, in bytes.
constexpr bool IsPinLengthAllowed(std::size_t cbPin, std::uint32_t dwMinLength,
                                  std::uint32_t dwMaxLength) {
    return dwMinLength <= cbPin && cbPin <= dwMaxLength;
}

// From so many bits per pixel on a screen gets the high-resolution pictures.
constexpr int kHighColorBitsPerPixel = 8;

// Why the file that a setting names gives no picture, in a few words for the log. `bText`: the
// setting is a text; `bFileThere`: there is a file of that name.
const char* WhyNoPicture(std::string_view path, bool bText, bool bFileThere);

}  // namespace mvp
