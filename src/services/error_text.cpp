#include "services/error_text.h"

#include <array>
#include <cstring>

#include "services/error_strings.h"
#include "services/log.h"
#include "services/resource_module.h"

namespace mvp {
namespace {

constexpr int kCapacity = 4096;
// The result stays what it was when a code has no text, so the string is loaded beside it first.
std::array<char, kCapacity> g_szErrorText{};
std::array<char, kCapacity> g_szErrorScratch{};

}  // namespace

const char* ErrorText(std::int32_t nCode) noexcept {
    // The name that the function has for a host; log readers search for it.
    const LogScope scope("GetErrorString");
    if (const auto number = ErrorStringNumber(nCode)) {
        LoadResourceText(*number, g_szErrorScratch.data(), kCapacity);
        std::memcpy(g_szErrorText.data(), g_szErrorScratch.data(),
                    std::strlen(g_szErrorScratch.data()) + 1);
    }
    return g_szErrorText.data();
}

}  // namespace mvp
