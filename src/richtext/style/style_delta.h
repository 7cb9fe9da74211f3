// What a rule, a font tag or a tag's own effect changes about a style. Read once from text, then
// applied to any number of styles.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "richtext/markup/markup_reader.h"
#include "richtext/style/value_readers.h"

namespace mvp::richtext {

// In the order top, right, bottom, left.
using EdgeLengths = std::array<Length, 4>;

struct StyleDelta {
    std::optional<Length> fontSize;
    std::optional<std::string_view> family;  // points into the text it was read from
    std::optional<bool> bItalic;
    std::optional<std::int32_t> nWeight;
    std::optional<TextAlign> align;
    std::optional<VerticalAlign> verticalAlign;
    std::optional<TextTransform> transform;
    std::optional<std::uint8_t> nDecoration;
    std::optional<Colour> colour;
    std::optional<Colour> background;
    std::optional<Colour> borderColour;
    std::optional<BorderStyle> borderStyle;
    std::optional<EdgeLengths> borderWidth;
    std::optional<EdgeLengths> margin;
    std::optional<EdgeLengths> padding;
    bool bAlignsBlocks = false;  // an alignment tag: tables and rules follow it too

    bool HasBox() const {
        return borderColour.has_value() || borderStyle.has_value() || borderWidth.has_value() ||
               margin.has_value() || padding.has_value();
    }
};

// Reads "name: value; ..." over what delta holds already; what cannot be read changes nothing.
void ReadDeclarations(std::string_view block, const SystemColours& system, StyleDelta& delta);

// The attributes of a font tag.
void ReadFontAttributes(const TagAttributes& attributes, const SystemColours& system,
                        StyleDelta& delta);

// What tags of this kind do of themselves.
const StyleDelta& EffectOf(TagKind kind);

}  // namespace mvp::richtext
