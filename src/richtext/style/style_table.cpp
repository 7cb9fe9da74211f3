#include "richtext/style/style_table.h"

#include <algorithm>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

constexpr std::int32_t kMediumBorder = 3;
constexpr std::int32_t kNormalWeight = 400;
constexpr std::int32_t kMaxWeight = 1000;
constexpr std::size_t kMaxFaceLength = 63;

Edges Resolved(const EdgeLengths& lengths, const LengthContext& context) {
    Edges edges;
    std::transform(lengths.begin(), lengths.end(), edges.begin(), [&](Length length) {
        return std::clamp(ResolveLength(length, 0, LengthUse::Size, context), 0, kMaxEdge);
    });
    return edges;
}

template <class T>
void Set(T& target, const std::optional<T>& value) {
    target = value.value_or(target);
}

}  // namespace

void StyleTable::Begin(TextMeasurer& measurer, const FontDescription& font, Colour colour) {
    m_pMeasurer = &measurer;
    m_nDpi = std::clamp(measurer.DotsPerInch(), 1, 10000);
    m_aFonts.reserve(4);
    Font base;
    base.strFace = font.face.substr(0, kMaxFaceLength);
    base.nSize = std::clamp(font.nSize, 1, kMaxFontSize);
    base.nWeight = font.nWeight;
    base.bItalic = font.bItalic;
    ComputedStyle style;
    style.nFont = InternFont(base);
    style.colour = colour;
    m_styles.Intern(style);
}

std::uint32_t StyleTable::InternFont(const Font& font) {
    const auto found = std::find_if(m_aFonts.begin(), m_aFonts.end(), [&](const Font& known) {
        return known.nSize == font.nSize && known.nWeight == font.nWeight &&
               known.bItalic == font.bItalic && EqualsNoCase(known.strFace, font.strFace);
    });
    if (found != m_aFonts.end()) {
        return static_cast<std::uint32_t>(found - m_aFonts.begin());
    }
    if (m_aFonts.size() == kMaxFonts) {
        return 0;
    }
    Font made = font;
    made.handle =
        m_pMeasurer->OpenFont({made.strFace, font.nSize, font.nWeight, font.bItalic}, made.metrics);
    made.metrics.nAscent = std::clamp(made.metrics.nAscent, 0, 2 * kMaxFontSize);
    made.metrics.nDescent = std::clamp(made.metrics.nDescent, 0, 2 * kMaxFontSize);
    made.nSpaceWidth = std::max(0, m_pMeasurer->TextWidth(made.handle, " "));
    m_aFonts.push_back(made);
    return static_cast<std::uint32_t>(m_aFonts.size() - 1);
}

LengthContext StyleTable::ContextOf(const Font& font) const {
    return {font.metrics.nXHeight, font.nSize, m_nDpi};
}

LengthContext StyleTable::ContextOf(std::uint32_t nStyle) const {
    return ContextOf(FontOf(nStyle));
}

std::uint32_t StyleTable::FontFor(const Font& parent, const StyleDelta& delta) {
    Font font = parent;
    if (delta.fontSize.has_value()) {
        const std::int32_t size =
            ResolveLength(*delta.fontSize, parent.nSize, LengthUse::FontSize, ContextOf(parent));
        // A size without height would hide text; it counts as one that cannot be read.
        font.nSize = size > 0 ? std::min(size, kMaxFontSize) : parent.nSize;
    }
    if (delta.family.has_value()) {
        font.strFace = delta.family->substr(0, kMaxFaceLength);
    }
    Set(font.bItalic, delta.bItalic);
    if (delta.nWeight.has_value()) {
        // 0 leaves the choice to the system, which takes the normal weight.
        font.nWeight =
            *delta.nWeight == 0 ? kNormalWeight : std::clamp(*delta.nWeight, 1, kMaxWeight);
    }
    return InternFont(font);
}

std::uint32_t StyleTable::BoxFor(const StyleDelta& delta, const LengthContext& context) {
    BoxStyle box;
    const BorderStyle borderStyle = delta.borderStyle.value_or(BorderStyle::None);
    if (borderStyle != BorderStyle::None) {
        box.nBorderStyle = static_cast<std::uint32_t>(borderStyle);
        box.border.fill(kMediumBorder);
        if (delta.borderWidth.has_value()) {
            box.border = Resolved(*delta.borderWidth, context);
        }
    }
    if (delta.margin.has_value()) {
        box.margin = Resolved(*delta.margin, context);
    }
    if (delta.padding.has_value()) {
        box.padding = Resolved(*delta.padding, context);
    }
    Set(box.borderColour, delta.borderColour);
    box.bOwnColour = delta.borderColour.has_value() ? 1 : 0;
    return m_boxes.Intern(box) + 1;
}

ComputedStyle StyleTable::Derive(const ComputedStyle& parent, const StyleDelta& delta) {
    ComputedStyle style = parent;
    if (delta.fontSize.has_value() || delta.family.has_value() || delta.bItalic.has_value() ||
        delta.nWeight.has_value()) {
        style.nFont = FontFor(Font(m_aFonts[parent.nFont]), delta);
    }
    Set(style.colour, delta.colour);
    // What is transparent shows the background of the run around it.
    if (delta.background.value_or(kNoColour) != kNoColour) {
        style.background = *delta.background;
    }
    Set(style.align, delta.align);
    if (delta.bAlignsBlocks) {
        style.nBlockAlign = 1 + static_cast<std::uint32_t>(style.align);
    }
    Set(style.verticalAlign, delta.verticalAlign);
    Set(style.transform, delta.transform);
    // A decoration runs on through everything inside its element; "none" adds nothing.
    const unsigned own = delta.nDecoration.value_or(0);
    style.nDecoration = static_cast<std::uint8_t>((style.nDecoration | own) &
                                                  (kUnderline | kLineThrough | kOverline));
    style.nBox = delta.HasBox() ? BoxFor(delta, ContextOf(m_aFonts[style.nFont])) : 0;
    return style;
}

void StyleTable::Seal() {
    m_boxes.Seal();
    m_styles.Seal();
    Shrink(m_aFonts);
}

}  // namespace mvp::richtext
