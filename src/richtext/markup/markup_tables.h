// The fixed tables of the markup language: tags, attributes and entities.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace mvp::richtext {

// One per tag name, in the order of the table.
enum class TagId : std::uint8_t {
    B,
    I,
    Em,
    U,
    S,
    Strike,
    Font,
    Hr,
    Br,
    T,
    Left,
    Center,
    Right,
    Justify,
    Baseline,
    Top,
    VCenter,
    Middle,
    Bottom,
    Bmp,
    Icon,
    Ilst,
    String,
    Body,
    H1,
    H2,
    H3,
    H4,
    H5,
    H6,
    Code,
    Pre,
    Big,
    Small,
    Sub,
    Sup,
    Span,
    A,
    Table,
    Tr,
    Td
};
constexpr int kTagCount = static_cast<int>(TagId::Td) + 1;

// What a tag does. The numbers are part of the language.
enum class TagKind : std::uint8_t {
    Structure = 0,  // table, tr, td
    Bold = 1,
    Italic = 2,
    Underline = 3,
    Strikeout = 4,
    Font = 5,
    Rule = 6,
    Break = 7,
    Tab = 8,
    Left = 9,
    Center = 10,
    Right = 11,
    Justify = 12,
    Baseline = 13,
    Top = 14,
    Middle = 15,
    Bottom = 16,
    Bitmap = 17,
    Icon = 18,
    ImageList = 19,
    String = 20,
    StyleOnly = 21,
    Span = 22,
    Link = 23
};

struct TagInfo {
    std::string_view name;
    TagKind kind;
    std::string_view selector;  // of the style sheet's rule; empty when the tag has none
};

const TagInfo& InfoOf(TagId tag);
// Whatever the letter case.
std::optional<TagId> FindTag(std::string_view name);

enum class AttributeId : std::uint8_t {
    Size,
    Color,
    Face,
    Style,
    Weight,
    Bkgnd,
    Href,
    Msg,
    Class,
    Width,
    Index,
    IdRes,
    IdDll,
    Handle,
    File,
    SrcDll,
    Mask,
    HotStyle,
    Cx,
    Cy,
    Height,
    Speed,
    CellPadding,
    CellSpacing,
    Background,
    RowSpan,
    ColSpan,
    Border,
    BorderStyle,
    BorderColor,
    BorderColorLight,
    BorderColorDark,
    BgColor,
    BgMidColor,
    BgEndColor,
    BgEffect,
    Align,
    VAlign
};
constexpr int kAttributeCount = static_cast<int>(AttributeId::VAlign) + 1;

std::string_view NameOf(AttributeId attribute);
// Whatever the letter case, except for href: what opens things is known in lower case only.
std::optional<AttributeId> FindAttribute(std::string_view name);

struct EntityInfo {
    std::string_view name;         // with ampersand and semicolon
    std::string_view replacement;  // bytes of Windows-1252
};

// The entity that text begins with, or null. Names match with their letter case.
const EntityInfo* MatchEntity(std::string_view text);

}  // namespace mvp::richtext
