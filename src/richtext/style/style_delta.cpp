#include "richtext/style/style_delta.h"

#include <cstddef>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

// Keeps the old value where there is no new one.
template <class T>
void Take(std::optional<T>& target, std::optional<T> value) {
    if (value.has_value()) {
        target = value;
    }
}

// The first family of a list, without quotation marks.
std::optional<std::string_view> FirstFamily(std::string_view value) {
    std::string_view family = Trim(NextToken(value, ","));
    const auto quoted = [](char c) { return c == '"' || c == '\''; };
    if (!family.empty() && quoted(family.front())) {
        family.remove_prefix(1);
    }
    if (!family.empty() && quoted(family.back())) {
        family.remove_suffix(1);
    }
    family = Trim(family);
    return family.empty() ? std::nullopt : std::optional(family);
}

// One to four lengths, spread over the edges as style sheets do: all; top and bottom, sides; top,
// sides, bottom; top, right, bottom, left. One that cannot be read voids the list.
std::optional<EdgeLengths> ReadEdges(std::string_view value,
                                     std::optional<Length> (*read)(std::string_view)) {
    EdgeLengths edges;
    std::size_t count = 0;
    for (std::string_view word = NextToken(value, " \t\r\n"); !word.empty();
         word = NextToken(value, " \t\r\n")) {
        const std::optional<Length> length = read(word);
        if (count == edges.size() || !length.has_value()) {
            return std::nullopt;
        }
        edges[count++] = *length;
    }
    if (count == 0) {
        return std::nullopt;
    }
    if (count < 2) {
        edges[1] = edges[0];
    }
    if (count < 3) {
        edges[2] = edges[0];
    }
    if (count < 4) {
        edges[3] = edges[1];
    }
    return edges;
}

using Reader = void (*)(std::string_view, const SystemColours&, StyleDelta&);
struct Property {
    std::string_view name;
    Reader read;
};

// "size" is font-size under the name the font tag gives it.
constexpr Property kProperties[] = {
    {"font-size", [](std::string_view v, const SystemColours&,
                     StyleDelta& d) { Take(d.fontSize, ReadLength(v)); }},
    {"size", [](std::string_view v, const SystemColours&,
                StyleDelta& d) { Take(d.fontSize, ReadLength(v)); }},
    {"font-family", [](std::string_view v, const SystemColours&,
                       StyleDelta& d) { Take(d.family, FirstFamily(v)); }},
    {"font-style", [](std::string_view v, const SystemColours&,
                      StyleDelta& d) { Take(d.bItalic, ReadFontStyle(v)); }},
    {"font-weight", [](std::string_view v, const SystemColours&,
                       StyleDelta& d) { Take(d.nWeight, ReadFontWeight(v)); }},
    {"text-align", [](std::string_view v, const SystemColours&,
                      StyleDelta& d) { Take(d.align, ReadTextAlign(v)); }},
    {"text-transform", [](std::string_view v, const SystemColours&,
                          StyleDelta& d) { Take(d.transform, ReadTextTransform(v)); }},
    {"text-decoration", [](std::string_view v, const SystemColours&,
                           StyleDelta& d) { Take(d.nDecoration, ReadTextDecoration(v)); }},
    {"vertical-align", [](std::string_view v, const SystemColours&,
                          StyleDelta& d) { Take(d.verticalAlign, ReadVerticalAlign(v)); }},
    {"color", [](std::string_view v, const SystemColours& s,
                 StyleDelta& d) { Take(d.colour, ReadPropertyColour(v, s)); }},
    {"background-color", [](std::string_view v, const SystemColours& s,
                            StyleDelta& d) { Take(d.background, ReadPropertyColour(v, s)); }},
    {"border-color", [](std::string_view v, const SystemColours& s,
                        StyleDelta& d) { Take(d.borderColour, ReadPropertyColour(v, s)); }},
    {"border-width", [](std::string_view v, const SystemColours&,
                        StyleDelta& d) { Take(d.borderWidth, ReadEdges(v, ReadBorderWidth)); }},
    {"border-style", [](std::string_view v, const SystemColours&,
                        StyleDelta& d) { Take(d.borderStyle, ReadBorderStyle(v)); }},
    {"margin", [](std::string_view v, const SystemColours&,
                  StyleDelta& d) { Take(d.margin, ReadEdges(v, ReadLength)); }},
    {"padding", [](std::string_view v, const SystemColours&, StyleDelta& d) {
         Take(d.padding, ReadEdges(v, ReadLength));
     }}};

StyleDelta Aligning(TextAlign align) {
    StyleDelta delta;
    delta.align = align;
    delta.bAlignsBlocks = true;
    return delta;
}

StyleDelta MakeEffect(TagKind kind) {
    StyleDelta delta;
    switch (kind) {
        case TagKind::Bold:
            delta.nWeight = 700;
            break;
        case TagKind::Italic:
            delta.bItalic = true;
            break;
        case TagKind::Underline:
            delta.nDecoration = kUnderline;
            break;
        case TagKind::Strikeout:
            delta.nDecoration = kLineThrough;
            break;
        case TagKind::Left:
            return Aligning(TextAlign::Left);
        case TagKind::Center:
            return Aligning(TextAlign::Center);
        case TagKind::Right:
            return Aligning(TextAlign::Right);
        case TagKind::Justify:
            return Aligning(TextAlign::Justify);
        case TagKind::Baseline:
            delta.verticalAlign = VerticalAlign::Baseline;
            break;
        case TagKind::Top:
            delta.verticalAlign = VerticalAlign::Top;
            break;
        case TagKind::Middle:
            delta.verticalAlign = VerticalAlign::Middle;
            break;
        case TagKind::Bottom:
            delta.verticalAlign = VerticalAlign::Bottom;
            break;
        default:
            break;
    }
    return delta;
}

}  // namespace

void ReadDeclarations(std::string_view block, const SystemColours& system, StyleDelta& delta) {
    for (std::string_view pair = NextToken(block, ";"); !pair.empty();
         pair = NextToken(block, ";")) {
        const std::size_t colon = pair.find(':');
        if (colon == std::string_view::npos) {
            continue;
        }
        const std::string_view name = Trim(pair.substr(0, colon));
        for (const Property& property : kProperties) {
            if (EqualsNoCase(property.name, name)) {
                property.read(Trim(pair.substr(colon + 1)), system, delta);
                break;
            }
        }
    }
}

void ReadFontAttributes(const TagAttributes& attributes, const SystemColours& system,
                        StyleDelta& delta) {
    const auto value = [&](AttributeId attribute) { return attributes.Get(attribute); };
    Take(delta.fontSize, ReadLength(value(AttributeId::Size)));
    Take(delta.colour, ReadPropertyColour(value(AttributeId::Color), system));
    Take(delta.background, ReadPropertyColour(value(AttributeId::Bkgnd), system));
    Take(delta.family, FirstFamily(value(AttributeId::Face)));
    if (attributes.Has(AttributeId::Style)) {
        Take(delta.bItalic, ReadFontStyle(value(AttributeId::Style)));
    }
    if (attributes.Has(AttributeId::Weight)) {
        Take(delta.nWeight, ReadFontWeight(value(AttributeId::Weight)));
    }
}

const StyleDelta& EffectOf(TagKind kind) {
    static const auto effects = [] {
        std::array<StyleDelta, static_cast<std::size_t>(TagKind::Link) + 1> made;
        for (std::size_t i = 0; i < made.size(); ++i) {
            made[i] = MakeEffect(static_cast<TagKind>(i));
        }
        return made;
    }();
    return effects[static_cast<std::size_t>(kind)];
}

}  // namespace mvp::richtext
