#include "richtext/paint/painter.h"

#include <algorithm>

#include "richtext/layout/layout_queries.h"
#include "richtext/paint/border_painter.h"
#include "richtext/paint/effect_painter.h"

namespace mvp::richtext {
namespace {

// How far something of a line may reach beyond it: the border and padding of inline boxes.
constexpr int kMaxOverhang = 2 * kMaxEdge;

const ComputedStyle& StyleOf(const StyledDocument& document, const Fragment& fragment,
                             const PaintLook& look) {
    const ComputedStyle& style = document.styles[fragment.nStyle];
    const bool hover = fragment.nLink != kNone && fragment.nLink == look.nHoverLink;
    return hover && style.nHover != kNone ? document.styles[style.nHover] : style;
}

// Which image of an animated list stands there now.
std::int32_t FrameAt(std::int32_t nFirst, std::int32_t nSpeed, std::int32_t nCount,
                     std::uint32_t nClock) {
    if (nSpeed <= 0 || nCount <= 0 || nFirst < 0) {
        return nFirst;
    }
    const std::uint32_t passed = nClock / static_cast<std::uint32_t>(nSpeed);
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(nFirst) + passed) %
                                     static_cast<std::uint32_t>(nCount));
}

// The thickness of the lines under, over and through a text.
int LineWidth(const Font& font) {
    return std::max(1, (font.nSize + 8) / 16);
}

}  // namespace

ImageDescription DescriptionOf(const StyledDocument& document, const ImageAttributes& image) {
    return {image.kind,
            document.StringOf(image.idres),
            document.StringOf(image.module),
            document.StringOf(image.handle),
            document.StringOf(image.file),
            image.nIndex};
}

Painter::Painter(HDC hDC, const RECT& dirty, GdiMeasurer& measurer, PictureStore& pictures)
    : m_hDC(hDC), m_dirty(dirty), m_measurer(measurer), m_pictures(pictures) {}

template <class Box>
RECT Painter::RectOf(const Box& box) const {
    const std::int64_t left = std::int64_t{m_origin.x} + box.nX;
    const std::int64_t top = std::int64_t{m_origin.y} + box.nY;
    return {HeldCoordinate(left), HeldCoordinate(top), HeldCoordinate(left + box.nWidth),
            HeldCoordinate(top + box.nHeight)};
}

bool Painter::Touches(const RECT& area) const {
    return area.left < m_dirty.right && area.right > m_dirty.left && area.top < m_dirty.bottom &&
           area.bottom > m_dirty.top;
}

void Painter::Paint(const StyledDocument& document, const LayoutBoxes& boxes,
                    const PaintLook& look) {
    const Drawn drawn = {document, boxes, look};
    const int saved = SaveDC(m_hDC);
    m_hFont = nullptr;
    m_colour = kNoColour;
    IntersectClipRect(m_hDC, m_dirty.left, m_dirty.top, m_dirty.right, m_dirty.bottom);
    SetBkMode(m_hDC, TRANSPARENT);
    SetTextAlign(m_hDC, TA_LEFT | TA_BASELINE);
    for (const BlockBox& block : boxes.aBlocks) {
        if (block.nDecoration != 0 && Touches(RectOf(block))) {
            DrawBlock(drawn, block);
        }
    }
    for (const LineBox& line : boxes.aLines) {
        RECT reach = RectOf(line);
        reach.top -= kMaxOverhang;
        reach.bottom += kMaxOverhang;
        if (reach.top < m_dirty.bottom && reach.bottom > m_dirty.top) {
            DrawLine(drawn, line);
        }
    }
    if (look.nFocusLink != kNone) {
        DrawFocus(drawn);
    }
    RestoreDC(m_hDC, saved);
}

void Painter::DrawBlock(const Drawn& drawn, const BlockBox& block) {
    const Decoration& decoration = *drawn.document.DecorationAt(block.nDecoration);
    const RECT area = RectOf(block);
    DrawEffect(m_hDC, decoration, area, m_dirty);
    if (decoration.background.nLength != 0) {
        PictureRequest request;
        request.image.file = drawn.document.StringOf(decoration.background);
        m_pictures.DrawTiled(m_hDC, request, area, m_dirty);
    }
    Border border{decoration.border, decoration.borderStyle, decoration.borderColour,
                  decoration.borderColour};
    if (decoration.bBevel) {
        border.topLeft = decoration.bSunken ? decoration.borderDark : decoration.borderLight;
        border.bottomRight = decoration.bSunken ? decoration.borderLight : decoration.borderDark;
    }
    DrawBorder(m_hDC, border, area, m_dirty);
}

void Painter::DrawLine(const Drawn& drawn, const LineBox& line) {
    for (std::uint32_t i = 0; i < line.nFragments; ++i) {
        const Fragment& fragment = drawn.boxes.aFragments[line.nFirstFragment + i];
        // Slanted letters reach over the sides, but never by more than their height.
        RECT reach = RectOf(fragment);
        reach.left -= fragment.nHeight;
        reach.right += fragment.nHeight;
        if (Touches(reach)) {
            DrawFragment(drawn, fragment);
        }
    }
}

void Painter::DrawFragment(const Drawn& drawn, const Fragment& fragment) {
    const ComputedStyle& style = StyleOf(drawn.document, fragment, drawn.look);
    const RECT area = RectOf(fragment);
    switch (fragment.kind) {
        case FragmentKind::Text:
        case FragmentKind::Tab:
            FillArea(m_hDC, area, m_dirty, style.background);
            if (fragment.kind == FragmentKind::Text && style.colour != kNoColour) {
                DrawTextOf(drawn, fragment, style);
            }
            DrawDecorations(drawn.document.styles.FontOf(fragment.nStyle), style, area);
            break;
        case FragmentKind::Image:
            DrawImage(drawn, fragment);
            break;
        case FragmentKind::Rule:
            DrawRule(drawn.document.aRules[fragment.nOffset], area);
            break;
        case FragmentKind::Box:
            DrawInlineBox(drawn, fragment, style);
            break;
    }
}

void Painter::SelectFont(const Font& font) {
    const HFONT fontHandle = m_measurer.FontOf(font.handle);
    if (fontHandle != nullptr && fontHandle != m_hFont) {
        SelectObject(m_hDC, fontHandle);
        m_hFont = fontHandle;
    }
}

void Painter::SetColour(Colour colour) {
    if (colour != m_colour) {
        SetTextColor(m_hDC, colour & 0xFFFFFF);
        m_colour = colour;
    }
}

void Painter::DrawTextOf(const Drawn& drawn, const Fragment& fragment, const ComputedStyle& style) {
    const std::string_view text =
        std::string_view(drawn.document.strText).substr(fragment.nOffset, fragment.nLength);
    const Font& font = drawn.document.styles.FontOf(fragment.nStyle);
    SelectFont(font);
    SetColour(style.colour);
    const int x = m_origin.x + fragment.nX;
    const int baseline = m_origin.y + fragment.nY + font.metrics.nAscent;
    if (fragment.nExtra > 0) {
        DrawSpread(font, x, baseline, text, fragment.nExtra);
    } else {
        DrawRun(x, baseline, text);
    }
}

// A long text goes piece by piece, and only until it leaves what is to be painted.
void Painter::DrawRun(int nX, int nY, std::string_view text) {
    while (text.size() > kMaxTextCall && nX < m_dirty.right) {
        const std::string_view part = text.substr(0, kMaxTextCall);
        SIZE size{};
        GetTextExtentPoint32A(m_hDC, part.data(), static_cast<int>(part.size()), &size);
        if (nX + size.cx > m_dirty.left) {
            ExtTextOutA(m_hDC, nX, nY, 0, nullptr, part.data(), static_cast<UINT>(part.size()),
                        nullptr);
        }
        nX += size.cx;
        text.remove_prefix(part.size());
    }
    if (nX < m_dirty.right) {
        ExtTextOutA(m_hDC, nX, nY, 0, nullptr, text.data(), static_cast<UINT>(text.size()),
                    nullptr);
    }
}

// Word by word, each where layout has put it: with the system's own justification letters may take
// other advances than without, and the line leaves its edge.
void Painter::DrawSpread(const Font& font, int nX, int nY, std::string_view text, int nExtra) {
    const std::int64_t spaces = std::count(text.begin(), text.end(), ' ');
    std::int64_t seen = 0;
    for (;;) {
        const std::string_view word = text.substr(0, text.find(' '));
        if (!word.empty()) {
            DrawRun(nX + static_cast<int>(nExtra * seen / spaces), nY, word);
            nX += m_measurer.TextWidth(font.handle, word);
        }
        if (word.size() == text.size()) {
            return;
        }
        nX += font.nSpaceWidth;
        ++seen;
        text.remove_prefix(word.size() + 1);
    }
}

// As lines of our own, so that they run on through tabs and the widened spaces of justified text.
void Painter::DrawDecorations(const Font& font, const ComputedStyle& style, const RECT& area) {
    const LONG baseline = area.top + font.metrics.nAscent;
    const LONG width = LineWidth(font);
    const auto draw = [&](std::uint8_t nFlag, LONG nTop) {
        if ((style.nDecoration & nFlag) != 0) {
            FillArea(m_hDC, {area.left, nTop, area.right, nTop + width}, m_dirty, style.colour);
        }
    };
    draw(kUnderline, baseline + std::max<LONG>(1, font.metrics.nDescent / 4));
    draw(kLineThrough, baseline - (font.metrics.nXHeight + width) / 2);
    draw(kOverline, area.top);
}

void Painter::DrawInlineBox(const Drawn& drawn, const Fragment& fragment,
                            const ComputedStyle& style) {
    const BoxStyle& box = drawn.document.styles.BoxOf(fragment.nStyle);
    const RECT area = RectOf(fragment);
    FillArea(m_hDC, area, m_dirty, style.background);
    const Colour colour = box.bOwnColour != 0 ? box.borderColour : style.colour;
    Border border{box.border, static_cast<BorderStyle>(box.nBorderStyle), colour, colour};
    if ((fragment.nOffset & kBoxLeftEdge) == 0) {
        border.width[kLeft] = 0;
    }
    if ((fragment.nOffset & kBoxRightEdge) == 0) {
        border.width[kRight] = 0;
    }
    DrawBorder(m_hDC, border, area, m_dirty);
}

void Painter::DrawImage(const Drawn& drawn, const Fragment& fragment) {
    const ImageAttributes& image = drawn.document.aImages[fragment.nOffset];
    const bool hot = fragment.nLink != kNone && fragment.nLink == drawn.look.nHoverLink;
    PictureRequest request;
    request.image = DescriptionOf(drawn.document, image);
    request.mask = image.mask;
    request.style = hot ? image.hotStyle : image.style;
    if (image.nSpeed > 0) {
        request.image.nIndex = FrameAt(image.nIndex, image.nSpeed,
                                       m_pictures.CountOf(request.image), drawn.look.nClock);
    }
    m_pictures.Draw(m_hDC, request, RectOf(fragment));
}

// A groove, as between the parts of a dialog, if it has no colour of its own.
void Painter::DrawRule(const RuleAttributes& rule, const RECT& area) {
    if (rule.colour.has_value()) {
        FillArea(m_hDC, area, m_dirty, *rule.colour);
        return;
    }
    const LONG middle = area.top + (area.bottom - area.top) / 2;
    FillArea(m_hDC, {area.left, area.top, area.right, middle}, m_dirty,
             GetSysColor(COLOR_BTNSHADOW));
    FillArea(m_hDC, {area.left, middle, area.right, area.bottom}, m_dirty,
             GetSysColor(COLOR_BTNHIGHLIGHT));
}

// One frame for each line the link stands on.
void Painter::DrawFocus(const Drawn& drawn) {
    SetTextColor(m_hDC, 0);
    SetBkColor(m_hDC, 0xFFFFFF);
    RECT frame{};
    const auto draw = [&] {
        if (!IsRectEmpty(&frame) && Touches(frame)) {
            DrawFocusRect(m_hDC, &frame);
        }
    };
    for (const LinkBox& box : LinkBoxes(drawn.boxes, drawn.look.nFocusLink)) {
        const RECT area = RectOf(box);
        if (area.top < frame.bottom && area.bottom > frame.top && area.left >= frame.left) {
            UnionRect(&frame, &frame, &area);
        } else {
            draw();
            frame = area;
        }
    }
    draw();
}

}  // namespace mvp::richtext
