// What the registry says of a notice: whether it is shown, for how long, and with which text. The
// text is rich text that anybody with access to the registry has written: it may look as it likes,
// but it may not open anything.
//
//     NoticeSettings settings = {.enable = 1, .message = bytes};
//     const NoticeParameters notice = ReadNotice(nType, settings, MatchesHref);
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "settings/settings.h"

namespace mvp {

constexpr int kNoReaderNotice = 0;
constexpr int kCardAlertNotice = 1;
constexpr int kPasswordNotice = 2;

// What a text that could open things matches, in the notation of mvcext.
constexpr const char* kHrefPattern = R"(.*<.*href\s*=.*>.*)";

// Whether a text matches kHrefPattern.
using HrefMatcher = bool (*)(const char* pszText);

constexpr std::size_t kNoticeMessageMax = settings::kNoReaderMessage.nCapacity;  // bytes
static_assert(settings::kCardPresenceMessage.nCapacity == kNoticeMessageMax);

// The text that a registry value shows: up to its zero, if it has one, with a line feed for each
// "\n" of two characters. Nothing when it is refused: when that text, not only the value, matches
// the pattern, or when the reader of the markup finds a tag in it that names a target, a file, a
// module, a handle or a background picture. Bytes beyond kNoticeMessageMax do not count. Throws
// std::bad_alloc.
std::optional<std::string> NoticeText(std::string_view value, HrefMatcher pMatchesHref);

// What the registry holds for a notice, nothing where a value cannot be read. Values that a type
// does not have are not looked at.
struct NoticeSettings {
    std::uint32_t enable = 0;                           // "Enable", or what its absence means
    std::optional<std::uint32_t> duration = {};         // "Duration", seconds
    std::optional<std::string_view> message = {};       // "Message", as read
    std::optional<std::uint32_t> passwordTimeout = {};  // "OTPWindowTimeout", seconds
};

struct NoticeParameters {
    enum class Text : std::uint8_t {
        Unchanged,  // the registry says nothing
        Message,    // strMessage
        Default     // the type's own: the message was refused
    };

    bool bShown = false;
    std::uint32_t nStay = 0;  // milliseconds; what exceeds 32 bits stops there
    Text text = Text::Unchanged;
    std::string strMessage;
};

// Throws std::bad_alloc.
NoticeParameters ReadNotice(int nType, const NoticeSettings& settings, HrefMatcher pMatchesHref);

}  // namespace mvp
