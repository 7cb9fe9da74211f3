#include "richtext/markup/markup_tables.h"

#include <array>
#include <iterator>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

constexpr TagInfo kTags[] = {{"b", TagKind::Bold, "bold"},
                             {"i", TagKind::Italic, "italic"},
                             {"em", TagKind::Italic, "italic"},
                             {"u", TagKind::Underline, "underline"},
                             {"s", TagKind::Strikeout, "strikeout"},
                             {"strike", TagKind::Strikeout, "strikeout"},
                             {"font", TagKind::Font, "font"},
                             {"hr", TagKind::Rule, ""},
                             {"br", TagKind::Break, ""},
                             {"t", TagKind::Tab, ""},
                             {"left", TagKind::Left, "left"},
                             {"center", TagKind::Center, "center"},
                             {"right", TagKind::Right, "right"},
                             {"justify", TagKind::Justify, "justify"},
                             {"baseline", TagKind::Baseline, "baseline"},
                             {"top", TagKind::Top, "top"},
                             {"vcenter", TagKind::Middle, "vcenter"},
                             {"middle", TagKind::Middle, "vcenter"},
                             // The same selector as middle, on purpose.
                             {"bottom", TagKind::Bottom, "vcenter"},
                             {"bmp", TagKind::Bitmap, ""},
                             {"icon", TagKind::Icon, ""},
                             {"ilst", TagKind::ImageList, ""},
                             {"string", TagKind::String, ""},
                             {"body", TagKind::StyleOnly, "body"},
                             {"h1", TagKind::StyleOnly, "h1"},
                             {"h2", TagKind::StyleOnly, "h2"},
                             {"h3", TagKind::StyleOnly, "h3"},
                             {"h4", TagKind::StyleOnly, "h4"},
                             {"h5", TagKind::StyleOnly, "h5"},
                             {"h6", TagKind::StyleOnly, "h6"},
                             {"code", TagKind::StyleOnly, "code"},
                             {"pre", TagKind::StyleOnly, "pre"},
                             {"big", TagKind::StyleOnly, "big"},
                             {"small", TagKind::StyleOnly, "small"},
                             {"sub", TagKind::StyleOnly, "sub"},
                             {"sup", TagKind::StyleOnly, "sup"},
                             {"span", TagKind::Span, "span"},
                             {"a", TagKind::Link, "link"},
                             {"table", TagKind::Structure, "table"},
                             {"tr", TagKind::Structure, "tr"},
                             {"td", TagKind::Structure, "td"}};
static_assert(std::size(kTags) == kTagCount);

constexpr std::string_view kAttributes[] = {"size",
                                            "color",
                                            "face",
                                            "style",
                                            "weight",
                                            "bkgnd",
                                            "href",
                                            "msg",
                                            "class",
                                            "width",
                                            "index",
                                            "idres",
                                            "iddll",
                                            "handle",
                                            "file",
                                            "srcdll",
                                            "mask",
                                            "hotstyle",
                                            "cx",
                                            "cy",
                                            "height",
                                            "speed",
                                            "cellpadding",
                                            "cellspacing",
                                            "background",
                                            "rowspan",
                                            "colspan",
                                            "border",
                                            "borderstyle",
                                            "bordercolor",
                                            "bordercolorlight",
                                            "bordercolordark",
                                            "bgcolor",
                                            "bgmidcolor",
                                            "bgendcolor",
                                            "bgeffect",
                                            "align",
                                            "valign"};
static_assert(std::size(kAttributes) == kAttributeCount);

constexpr EntityInfo kEntities[] = {{"&amp;", "&"},
                                    {"&bull;", "\x95"},
                                    {"&copy;", "\xA9"},
                                    // Not the code page's euro sign: an old choice that texts in
                                    // the field rely on.
                                    {"&euro;", "\x88"},
                                    {"&gt;", ">"},
                                    {"&iquest;", "\xBF"},
                                    // Doubled, so that the scanner takes it for text.
                                    {"&lt;", "<<"},
                                    {"&nbsp;", " "},
                                    {"&para;", "\xB6"},
                                    {"&pound;", "\xA3"},
                                    {"&quot;", "\""},
                                    {"&reg;", "\xAE"},
                                    {"&trade;", "\x99"}};

// An open-addressing table over one of the name lists, made at compile time; a slot holds the
// name's place + 1.
constexpr std::size_t kSlots = 128;
constexpr std::size_t kLongestName = 16;  // bordercolorlight
using Slots = std::array<std::uint8_t, kSlots>;

constexpr std::size_t HashOf(std::string_view name) {
    std::uint32_t hash = 2166136261U;
    for (const char c : name) {
        hash = (hash ^ Byte(AsciiLower(c))) * 16777619U;
    }
    return (hash ^ hash >> 15) % kSlots;
}

template <class NameAt>
constexpr Slots MakeSlots(std::size_t nCount, NameAt nameAt) {
    Slots slots = {};
    for (std::size_t i = 0; i < nCount; ++i) {
        std::size_t slot = HashOf(nameAt(i));
        while (slots[slot] != 0) {
            slot = (slot + 1) % kSlots;
        }
        slots[slot] = static_cast<std::uint8_t>(i + 1);
    }
    return slots;
}

constexpr std::string_view TagNameAt(std::size_t i) {
    return kTags[i].name;
}
constexpr std::string_view AttributeNameAt(std::size_t i) {
    return kAttributes[i];
}
constexpr Slots kTagSlots = MakeSlots(kTagCount, TagNameAt);
constexpr Slots kAttributeSlots = MakeSlots(kAttributeCount, AttributeNameAt);

// The place of the name, or -1.
template <class NameAt>
int FindName(const Slots& slots, NameAt nameAt, std::string_view name) {
    if (name.size() > kLongestName) {
        return -1;
    }
    for (std::size_t slot = HashOf(name); slots[slot] != 0; slot = (slot + 1) % kSlots) {
        const std::size_t place = slots[slot] - 1U;
        if (EqualsNoCase(nameAt(place), name)) {
            return static_cast<int>(place);
        }
    }
    return -1;
}

}  // namespace

const TagInfo& InfoOf(TagId tag) {
    return kTags[static_cast<std::size_t>(tag)];
}

std::optional<TagId> FindTag(std::string_view name) {
    const int place = FindName(kTagSlots, TagNameAt, name);
    return place < 0 ? std::nullopt : std::optional(static_cast<TagId>(place));
}

std::string_view NameOf(AttributeId attribute) {
    return kAttributes[static_cast<std::size_t>(attribute)];
}

std::optional<AttributeId> FindAttribute(std::string_view name) {
    const int place = FindName(kAttributeSlots, AttributeNameAt, name);
    if (place < 0) {
        return std::nullopt;
    }
    const auto attribute = static_cast<AttributeId>(place);
    if (attribute == AttributeId::Href && name != NameOf(AttributeId::Href)) {
        return std::nullopt;
    }
    return attribute;
}

const EntityInfo* MatchEntity(std::string_view text) {
    for (const EntityInfo& entity : kEntities) {
        if (text.substr(0, entity.name.size()) == entity.name) {
            return &entity;
        }
    }
    return nullptr;
}

}  // namespace mvp::richtext
