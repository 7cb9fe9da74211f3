// Computed styles: everything layout and paint need to know about a run of text, by number. The
// table also keeps the fonts and the boxes (margin, border, padding) that styles refer to.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "richtext/style/intern_table.h"
#include "richtext/style/style_delta.h"
#include "richtext/style/text_measurer.h"

namespace mvp::richtext {

constexpr std::uint32_t kNone = 0xFFFFFFFF;  // no style, no link, no box, no container

// Bounds on what markup can ask for, in pixels.
constexpr std::int32_t kMaxFontSize = 1000;
constexpr std::int32_t kMaxEdge = 1000;
constexpr std::int32_t kMaxExtent = 32767;  // images, rules, table and cell sizes
// Fonts are a scarce resource of the system; a document that asks for more gets its base font.
constexpr std::uint32_t kMaxFonts = 256;

struct ComputedStyle {
    std::uint32_t nFont = 0;
    Colour colour = 0;
    Colour background = kNoColour;
    std::uint32_t nBox = 0;        // 0: no margin, border or padding
    std::uint32_t nHover = kNone;  // in a link: the style while the mouse is over it
    std::uint8_t nDecoration = 0;  // kUnderline, kLineThrough, kOverline
    TextAlign align = TextAlign::Left;
    VerticalAlign verticalAlign = VerticalAlign::Baseline;
    TextTransform transform = TextTransform::None;
    // Set inside an alignment tag: 1 + TextAlign, which tables and rules follow too.
    std::uint32_t nBlockAlign = 0;
};

// Pixels; in the order top, right, bottom, left.
using Edges = std::array<std::int32_t, 4>;
using Edge = std::size_t;
inline constexpr Edge kTop = 0;
inline constexpr Edge kRight = 1;
inline constexpr Edge kBottom = 2;
inline constexpr Edge kLeft = 3;

struct BoxStyle {
    Edges margin = {};
    Edges border = {};
    Edges padding = {};
    Colour borderColour = kNoColour;
    std::uint32_t bOwnColour = 0;    // else the border has the text's
    std::uint32_t nBorderStyle = 0;  // a BorderStyle

    std::int32_t EdgeWidth(Edge edge) const { return margin[edge] + border[edge] + padding[edge]; }
};

struct Font {
    std::string strFace;
    std::int32_t nSize = 0;
    std::int32_t nWeight = 400;
    bool bItalic = false;
    FontHandle handle = 0;
    FontMetrics metrics;
    std::int32_t nSpaceWidth = 0;

    std::int32_t Height() const { return metrics.nAscent + metrics.nDescent; }
};

class StyleTable {
public:
    // The style everything starts from; becomes style 0 and font 0. The measurer must stay until
    // the last style is made.
    void Begin(TextMeasurer& measurer, const FontDescription& font, Colour colour);

    // The style of a child of parent on which delta works.
    ComputedStyle Derive(const ComputedStyle& parent, const StyleDelta& delta);
    std::uint32_t Intern(const ComputedStyle& style) { return m_styles.Intern(style); }

    LengthContext ContextOf(std::uint32_t nStyle) const;

    const ComputedStyle& operator[](std::uint32_t nStyle) const { return m_styles[nStyle]; }
    const Font& FontOf(std::uint32_t nStyle) const { return m_aFonts[m_styles[nStyle].nFont]; }
    const Font& FontAt(std::uint32_t nFont) const { return m_aFonts[nFont]; }
    const BoxStyle& BoxOf(std::uint32_t nStyle) const {
        static constexpr BoxStyle kNoBox;
        const std::uint32_t box = m_styles[nStyle].nBox;
        return box == 0 ? kNoBox : m_boxes[box - 1];
    }
    std::uint32_t Size() const { return m_styles.Size(); }
    std::uint32_t FontCount() const { return static_cast<std::uint32_t>(m_aFonts.size()); }

    void Seal();

private:
    std::uint32_t InternFont(const Font& font);
    std::uint32_t FontFor(const Font& parent, const StyleDelta& delta);
    std::uint32_t BoxFor(const StyleDelta& delta, const LengthContext& context);
    LengthContext ContextOf(const Font& font) const;

    TextMeasurer* m_pMeasurer = nullptr;
    std::int32_t m_nDpi = 96;
    std::vector<Font> m_aFonts;
    InternTable<BoxStyle> m_boxes;
    InternTable<ComputedStyle> m_styles;
};

}  // namespace mvp::richtext
