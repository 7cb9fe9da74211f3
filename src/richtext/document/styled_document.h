// The second stage's result: the text to show, cut into items that each have one computed style.
// The items of a table stand between its open and close items, so that the whole document is one
// flat sequence; nothing in it is a tree of pointers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "richtext/style/style_table.h"

namespace mvp::richtext {

enum class ItemKind : std::uint8_t {
    Text,       // nOffset, nLength: bytes of strText, single spaces only
    Break,      // ends the line
    Paragraph,  // ends the line if it holds anything
    Tab,
    Rule,        // nOffset: of aRules
    Image,       // nOffset: of aImages
    BoxOpen,     // an inline element with margin, border or padding begins
    BoxClose,    // and ends; always nested
    TableOpen,   // nOffset: of aTables
    TableClose,  // nOffset: of aTables
    RowOpen,
    CellOpen,  // nOffset: of aCells
    CellClose  // nOffset: of aCells
};

struct Item {
    std::uint32_t nOffset = 0;
    std::uint32_t nLength = 0;
    std::uint32_t nStyle = 0;
    std::uint32_t nLink = kNone;
    ItemKind kind = ItemKind::Text;
};

// A piece of strText (items) or strStrings (everything else).
struct TextRef {
    std::uint32_t nOffset = 0;
    std::uint32_t nLength = 0;
};

struct Link {
    bool bHref = false;
    bool bMsg = false;
    TextRef href;
    TextRef msg;
};

// How an image is to be drawn: the values of its style and hotstyle attributes.
enum class ImageStyle : std::uint8_t { Normal, Disabled, Blend, Hidden };

struct ImageAttributes {
    ImageKind kind = ImageKind::Bitmap;
    TextRef idres;
    TextRef module;
    TextRef handle;
    TextRef file;
    std::int32_t nIndex = 0;  // the image of an image list; the frame of an icon
    std::int32_t nSpeed = 0;  // milliseconds per image of an animated list; 0: stands still
    Colour mask = kNoColour;  // the colour that is transparent
    ImageStyle style = ImageStyle::Normal;
    ImageStyle hotStyle = ImageStyle::Normal;  // while the mouse is over its link
    std::int32_t nWidth = 0;                   // pixels, as drawn
    std::int32_t nHeight = 0;
};

struct RuleAttributes {
    std::optional<Length> width;     // without: as wide as there is room
    std::optional<Colour> colour;    // without: a groove in the desktop's colours
    std::optional<TextAlign> align;  // without: as the alignment tag around it says
};

// The filling and the border of a table or a cell.
struct Decoration {
    BackgroundEffect effect = BackgroundEffect::Transparent;
    Colour start = kNoColour;
    Colour middle = kNoColour;
    Colour end = kNoColour;
    TextRef background;  // the background attribute: an image file
    Edges border = {};
    BorderStyle borderStyle = BorderStyle::None;
    bool bBevel = false;   // light on top and left, dark on bottom and right
    bool bSunken = false;  // the bevel the other way round
    Colour borderColour = kNoColour;
    Colour borderLight = kNoColour;
    Colour borderDark = kNoColour;
};

// Where a table stands in its container.
enum class BlockAlign : std::uint8_t { Left, Center, Right };

struct TableAttributes {
    std::uint32_t nStyle = 0;
    std::uint32_t nDecoration = 0;
    std::optional<Length> width;
    std::int32_t nHeight = 0;  // at least; the border box
    std::int32_t nCellPadding = 1;
    std::int32_t nCellSpacing = 2;
    Edges border = {};
    Edges margin = {};
    BlockAlign align = BlockAlign::Left;
};

struct CellAttributes {
    std::uint32_t nStyle = 0;
    std::uint32_t nDecoration = 0;
    std::int32_t nColSpan = 1;
    std::int32_t nRowSpan = 1;
    std::optional<Length> width;  // of the content
    std::int32_t nHeight = 0;     // of the content, at least
    Edges border = {};
    Edges padding = {};
    VerticalAlign verticalAlign = VerticalAlign::Middle;
};

struct StyledDocument {
    std::string strText;
    std::string strStrings;
    std::vector<Item> aItems;
    std::vector<Link> aLinks;
    std::vector<ImageAttributes> aImages;
    std::vector<RuleAttributes> aRules;
    std::vector<TableAttributes> aTables;
    std::vector<CellAttributes> aCells;
    std::vector<Decoration> aDecorations;
    StyleTable styles;

    std::string_view TextOf(const Item& item) const {
        return std::string_view(strText).substr(item.nOffset, item.nLength);
    }
    // By the number that tables, cells and blocks carry; null for 0, a block without decoration.
    const Decoration* DecorationAt(std::uint32_t nDecoration) const {
        return nDecoration == 0 ? nullptr : &aDecorations[nDecoration - 1];
    }
    std::string_view StringOf(TextRef ref) const {
        return std::string_view(strStrings).substr(ref.nOffset, ref.nLength);
    }
};

}  // namespace mvp::richtext
