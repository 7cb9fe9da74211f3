#include "notify/notice_text.h"

#include <algorithm>
#include <limits>

#include "richtext/markup/markup_reader.h"

namespace mvp {
namespace {

std::string WithLineFeeds(std::string_view value) {
    std::string text;
    while (!value.empty()) {
        const std::size_t pair = std::min(value.find("\\n"), value.size());
        text.append(value.substr(0, pair));
        value.remove_prefix(pair);
        if (!value.empty()) {
            text.push_back('\n');
            value.remove_prefix(2);
        }
    }
    return text;
}

// Whatever the tag: what leads out of the text in one of them has no business in another.
bool NamesAnything(const richtext::TagAttributes& attributes) {
    using richtext::AttributeId;
    constexpr AttributeId kWaysOut[] = {AttributeId::Href,   AttributeId::File,
                                        AttributeId::IdDll,  AttributeId::SrcDll,
                                        AttributeId::Handle, AttributeId::Background};
    return std::any_of(std::begin(kWaysOut), std::end(kWaysOut),
                       [&](AttributeId attribute) { return attributes.Has(attribute); });
}

bool HasWayOut(std::string_view text) {
    using richtext::MarkupEvent;
    richtext::MarkupReader reader(text);
    for (MarkupEvent event = reader.Next(); event.kind != MarkupEvent::Kind::End;
         event = reader.Next()) {
        if (event.kind == MarkupEvent::Kind::Open && NamesAnything(reader.Attributes())) {
            return true;
        }
    }
    return false;
}

std::uint32_t Milliseconds(std::uint32_t nSeconds) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(
        std::uint64_t{nSeconds} * 1000, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace

std::optional<std::string> NoticeText(std::string_view value, HrefMatcher pMatchesHref) {
    value = value.substr(0, kNoticeMessageMax);
    // The text as it is shown is what counts: a line feed between href and its equals sign is as
    // good as none, while the two characters that it is written as keep the pattern from matching.
    // What matches before still matches then.
    std::string text = WithLineFeeds(value.substr(0, value.find('\0')));
    if (pMatchesHref(text.c_str()) || HasWayOut(text)) {
        return std::nullopt;
    }
    return text;
}

NoticeParameters ReadNotice(int nType, const NoticeSettings& settings, HrefMatcher pMatchesHref) {
    NoticeParameters notice;
    if (nType == kPasswordNotice) {
        notice.bShown = true;
        notice.nStay =
            Milliseconds(settings.passwordTimeout.value_or(settings::kOtpTimeout.nDefault));
        return notice;
    }
    notice.bShown = settings.enable != 0;
    if (!notice.bShown) {
        return notice;
    }
    if (settings.duration.has_value()) {
        notice.nStay = Milliseconds(std::max(*settings.duration, std::uint32_t{1}));
    }
    if (settings.message.has_value()) {
        std::optional<std::string> text = NoticeText(*settings.message, pMatchesHref);
        notice.text =
            text.has_value() ? NoticeParameters::Text::Message : NoticeParameters::Text::Default;
        notice.strMessage = std::move(text).value_or(std::string());
    }
    return notice;
}

}  // namespace mvp
