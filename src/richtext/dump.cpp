#include "richtext/dump.h"

#include <algorithm>
#include <cstdio>

#include "richtext/markup/markup_reader.h"
#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

// In quotation marks, with what is not plain ASCII as \xHH.
std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted.append(1, '\\').append(1, c);
        } else if (Byte(c) < 0x20 || Byte(c) > 0x7E) {
            char hex[8];
            std::snprintf(hex, sizeof(hex), "\\x%02X", static_cast<unsigned>(Byte(c)));
            quoted.append(hex);
        } else {
            quoted.append(1, c);
        }
    }
    return quoted + "\"";
}

std::string Number(std::int64_t n) {
    return std::to_string(n);
}

std::string ColourText(Colour colour) {
    if (colour == kNoColour) {
        return "none";
    }
    char text[16];
    std::snprintf(text, sizeof(text), "0x%06X", static_cast<unsigned>(colour));
    return text;
}

std::string LengthText(const std::optional<Length>& length) {
    static constexpr const char* kUnits[] = {"",   "px", "%",  "ex", "em",
                                             "in", "cm", "mm", "pt", "pc"};
    return length.has_value()
               ? Number(length->nValue) + kUnits[static_cast<std::size_t>(length->unit)]
               : "auto";
}

std::string EdgesText(const Edges& edges) {
    return Number(edges[0]) + "," + Number(edges[1]) + "," + Number(edges[2]) + "," +
           Number(edges[3]);
}

template <class Box>
std::string RectText(const Box& box) {
    return Number(box.nX) + "," + Number(box.nY) + " " + Number(box.nWidth) + "x" +
           Number(box.nHeight);
}

constexpr const char* kAligns[] = {"left", "center", "right", "justify"};
constexpr const char* kVerticalAligns[] = {"baseline", "middle", "top", "bottom"};
constexpr const char* kTransforms[] = {"none", "uppercase", "lowercase", "capitalize"};
constexpr const char* kBorderStyles[] = {"none", "solid", "dotted", "dashed", "double"};
constexpr const char* kImageStyles[] = {"normal", "disabled", "blend", "hidden"};

template <class Enum, std::size_t N>
const char* NameFrom(const char* const (&names)[N], Enum value) {
    return names[static_cast<std::size_t>(value)];
}

std::string FontText(const Font& font) {
    return Quoted(font.strFace) + " " + Number(font.nSize) + " weight " + Number(font.nWeight) +
           (font.bItalic ? " italic" : "");
}

std::string BoxText(const BoxStyle& box) {
    return " box margin " + EdgesText(box.margin) + " border " + EdgesText(box.border) + " " +
           NameFrom(kBorderStyles, box.nBorderStyle) + " " +
           (box.bOwnColour != 0 ? ColourText(box.borderColour) : "text") + " padding " +
           EdgesText(box.padding);
}

std::string StyleText(const StyleTable& styles, std::uint32_t nStyle) {
    const ComputedStyle& style = styles[nStyle];
    std::string text =
        "font " + FontText(styles.FontOf(nStyle)) + " colour " + ColourText(style.colour);
    if (style.background != kNoColour) {
        text += " background " + ColourText(style.background);
    }
    if ((style.nDecoration & kUnderline) != 0) {
        text += " underline";
    }
    if ((style.nDecoration & kLineThrough) != 0) {
        text += " line-through";
    }
    if ((style.nDecoration & kOverline) != 0) {
        text += " overline";
    }
    if (style.align != TextAlign::Left) {
        text += std::string(" align ") + NameFrom(kAligns, style.align);
    }
    if (style.verticalAlign != VerticalAlign::Baseline) {
        text += std::string(" valign ") + NameFrom(kVerticalAligns, style.verticalAlign);
    }
    if (style.transform != TextTransform::None) {
        text += std::string(" transform ") + NameFrom(kTransforms, style.transform);
    }
    if (style.nBox != 0) {
        text += BoxText(styles.BoxOf(nStyle));
    }
    if (style.nHover != kNone) {
        text += " hover " + Number(style.nHover);
    }
    return text;
}

std::string DecorationText(const StyledDocument& document, std::uint32_t nDecoration) {
    const Decoration* const found = document.DecorationAt(nDecoration);
    if (found == nullptr) {
        return "";
    }
    const Decoration& decoration = *found;
    std::string text;
    if (decoration.effect != BackgroundEffect::Transparent) {
        text += " effect " + Number(static_cast<int>(decoration.effect)) + " " +
                ColourText(decoration.start) + " " + ColourText(decoration.middle) + " " +
                ColourText(decoration.end);
    }
    if (decoration.background.nLength != 0) {
        text += " background " + Quoted(document.StringOf(decoration.background));
    }
    if (decoration.borderStyle != BorderStyle::None) {
        text += " border " + EdgesText(decoration.border) + " " +
                NameFrom(kBorderStyles, decoration.borderStyle) + " " +
                ColourText(decoration.borderColour);
    }
    if (decoration.bBevel) {
        text += std::string(decoration.bSunken ? " sunken " : " raised ") +
                ColourText(decoration.borderLight) + " " + ColourText(decoration.borderDark);
    }
    return text;
}

std::string ImageText(const StyledDocument& document, const ImageAttributes& image) {
    static constexpr const char* kKinds[] = {"bmp", "icon", "ilst"};
    std::string text = std::string("image ") + kKinds[static_cast<std::size_t>(image.kind)] + " " +
                       Number(image.nWidth) + "x" + Number(image.nHeight);
    const auto add = [&](const char* pszName, TextRef ref) {
        if (ref.nLength != 0) {
            text += std::string(" ") + pszName + " " + Quoted(document.StringOf(ref));
        }
    };
    add("idres", image.idres);
    add("module", image.module);
    add("handle", image.handle);
    add("file", image.file);
    if (image.nIndex != 0) {
        text += " index " + Number(image.nIndex);
    }
    if (image.nSpeed != 0) {
        text += " speed " + Number(image.nSpeed);
    }
    if (image.mask != kNoColour) {
        text += " mask " + ColourText(image.mask);
    }
    if (image.style != ImageStyle::Normal || image.hotStyle != ImageStyle::Normal) {
        text += std::string(" style ") + NameFrom(kImageStyles, image.style) + " hot " +
                NameFrom(kImageStyles, image.hotStyle);
    }
    return text;
}

std::string TableText(const StyledDocument& document, const TableAttributes& table) {
    std::string text = "table width " + LengthText(table.width) + " height " +
                       Number(table.nHeight) + " padding " + Number(table.nCellPadding) +
                       " spacing " + Number(table.nCellSpacing);
    if (table.align != BlockAlign::Left) {
        text += std::string(" align ") + NameFrom(kAligns, table.align);
    }
    if (table.margin != Edges{}) {
        text += " margin " + EdgesText(table.margin);
    }
    return text + DecorationText(document, table.nDecoration);
}

std::string CellText(const StyledDocument& document, const CellAttributes& cell) {
    std::string text = "cell";
    if (cell.nColSpan != 1 || cell.nRowSpan != 1) {
        text += " span " + Number(cell.nColSpan) + "x" + Number(cell.nRowSpan);
    }
    text += " width " + LengthText(cell.width) + " height " + Number(cell.nHeight) + " padding " +
            EdgesText(cell.padding) + " valign " + NameFrom(kVerticalAligns, cell.verticalAlign);
    return text + DecorationText(document, cell.nDecoration);
}

std::string RuleText(const RuleAttributes& rule) {
    std::string text = "rule width " + LengthText(rule.width);
    if (rule.colour.has_value()) {
        text += " colour " + ColourText(*rule.colour);
    }
    if (rule.align.has_value()) {
        text += std::string(" align ") + NameFrom(kAligns, *rule.align);
    }
    return text;
}

std::string ItemText(const StyledDocument& document, const Item& item) {
    switch (item.kind) {
        case ItemKind::Text:
            return "text " + Quoted(document.TextOf(item));
        case ItemKind::Break:
            return "break";
        case ItemKind::Paragraph:
            return "paragraph";
        case ItemKind::Tab:
            return "tab";
        case ItemKind::Rule:
            return RuleText(document.aRules[item.nOffset]);
        case ItemKind::Image:
            return ImageText(document, document.aImages[item.nOffset]);
        case ItemKind::BoxOpen:
            return "box open";
        case ItemKind::BoxClose:
            return "box close";
        case ItemKind::TableOpen:
            return TableText(document, document.aTables[item.nOffset]);
        case ItemKind::TableClose:
            return "end table";
        case ItemKind::RowOpen:
            return "row";
        case ItemKind::CellOpen:
            return CellText(document, document.aCells[item.nOffset]);
        case ItemKind::CellClose:
            break;
    }
    return "end cell";
}

std::string FragmentText(const StyledDocument& document, const Fragment& fragment) {
    switch (fragment.kind) {
        case FragmentKind::Text:
            return "text " + Quoted(std::string_view(document.strText)
                                        .substr(fragment.nOffset, fragment.nLength));
        case FragmentKind::Tab:
            return "tab";
        case FragmentKind::Image:
            return "image " + Number(fragment.nOffset);
        case FragmentKind::Rule:
            return "rule";
        case FragmentKind::Box:
            break;
    }
    return std::string("box") + ((fragment.nOffset & kBoxLeftEdge) != 0 ? " left" : "") +
           ((fragment.nOffset & kBoxRightEdge) != 0 ? " right" : "");
}

}  // namespace

std::string DumpMarkup(std::string_view text) {
    std::string dump;
    MarkupReader reader(text);
    for (MarkupEvent event = reader.Next(); event.kind != MarkupEvent::Kind::End;
         event = reader.Next()) {
        if (event.kind == MarkupEvent::Kind::Text) {
            dump += "text " + Quoted(event.text) + "\n";
            continue;
        }
        const bool open = event.kind == MarkupEvent::Kind::Open;
        dump += std::string(open ? "open " : "close ") + std::string(InfoOf(event.tag).name);
        for (int i = 0; open && i < kAttributeCount; ++i) {
            const auto attribute = static_cast<AttributeId>(i);
            if (reader.Attributes().Has(attribute)) {
                dump.append(1, ' ').append(NameOf(attribute)).append(1, '=');
                dump += Quoted(reader.Attributes().Get(attribute));
            }
        }
        dump += event.bCharacter ? " (character)\n" : "\n";
    }
    return dump;
}

std::string DumpStyles(const StyledDocument& document) {
    std::string dump;
    // Bounded, so that the dump of deeply nested tables stays linear.
    constexpr std::size_t kMostIndent = 40;
    std::size_t indent = 0;
    for (const Item& item : document.aItems) {
        if (item.kind == ItemKind::CellClose || item.kind == ItemKind::TableClose) {
            indent -= 2;
        }
        dump.append(std::min(indent, kMostIndent), ' ');
        dump += ItemText(document, item) + " style " + Number(item.nStyle);
        dump += item.nLink != kNone ? " link " + Number(item.nLink) + "\n" : "\n";
        if (item.kind == ItemKind::CellOpen || item.kind == ItemKind::TableOpen) {
            indent += 2;
        }
    }
    for (std::uint32_t i = 0; i < document.styles.Size(); ++i) {
        dump += "style " + Number(i) + ": " + StyleText(document.styles, i) + "\n";
    }
    for (std::size_t i = 0; i < document.aLinks.size(); ++i) {
        const Link& link = document.aLinks[i];
        dump += "link " + Number(static_cast<std::int64_t>(i)) + ":";
        dump += link.bMsg ? " msg " + Quoted(document.StringOf(link.msg)) : "";
        dump += link.bHref ? " href " + Quoted(document.StringOf(link.href)) : "";
        dump += "\n";
    }
    return dump;
}

std::string DumpLayout(const StyledDocument& document, const LayoutBoxes& boxes) {
    std::string dump = "size " + Number(boxes.nWidth) + "x" + Number(boxes.nHeight) + "\n";
    for (const BlockBox& block : boxes.aBlocks) {
        dump += std::string(block.bCell ? "cell " : "table ") + Number(block.nIndex) + " " +
                RectText(block);
        if (block.bCell) {
            dump += " content " + Number(block.nContentY);
        }
        dump += DecorationText(document, block.nDecoration) + "\n";
    }
    for (const LineBox& line : boxes.aLines) {
        dump += "line " + RectText(line) + " baseline " + Number(line.nBaseline);
        if (line.nBlock != kNone) {
            dump += " cell " + Number(boxes.aBlocks[line.nBlock].nIndex);
        }
        dump += "\n";
        for (std::uint32_t i = 0; i < line.nFragments; ++i) {
            const Fragment& fragment = boxes.aFragments[line.nFirstFragment + i];
            dump += "  " + RectText(fragment) + " " + FragmentText(document, fragment) + " style " +
                    Number(fragment.nStyle);
            dump += fragment.nLink != kNone ? " link " + Number(fragment.nLink) : "";
            dump += fragment.nExtra != 0 ? " extra " + Number(fragment.nExtra) : "";
            dump += "\n";
        }
    }
    return dump;
}

}  // namespace mvp::richtext
