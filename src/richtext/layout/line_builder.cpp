#include "richtext/layout/line_builder.h"

#include <algorithm>
#include <span>
#include <utility>

#include "richtext/layout/intrinsic_widths.h"

namespace mvp::richtext {
namespace {

constexpr std::int32_t kRuleHeight = 2;

}  // namespace

void LineBuilder::SetFlow(Flow& flow) {
    m_pFlow = &flow;
    m_nAvailable = FloorPixels(flow.nWidth);
    ResetLine();
}

void LineBuilder::ResetLine() {
    m_nFirstFragment = m_boxes.aFragments.size();
    m_nX = 0;
    m_bContent = false;
    m_bSpace = false;
    m_align = TextAlign::Left;
    m_nTopHeight = 0;
    m_nMiddleHeight = 0;
    m_nBottomHeight = 0;
    const Font& font = m_document.styles.FontOf(m_pFlow->nStyle);
    m_nAscent = font.metrics.nAscent;
    m_nDescent = font.metrics.nDescent;
    m_nTouched = kNone;
}

// --- words ------------------------------------------------------------------------------------

void LineBuilder::AddText(const Item& item) {
    const Font& font = m_document.styles.FontOf(item.nStyle);
    const char* const text = m_document.strText.data();
    const char* p = text + item.nOffset;
    const char* const end = p + item.nLength;
    while (p != end) {
        if (*p == ' ') {
            EndWord();
            m_bSpace = true;
            m_space = {static_cast<std::uint32_t>(p - text),
                       1,
                       item.nStyle,
                       item.nLink,
                       font.nSpaceWidth,
                       PieceKind::Text};
            ++p;
            continue;
        }
        if (m_wordState.bHyphen && ClassOf(*p) == BreakClass::Letter) {
            EndWord();
        }
        bool breaks = false;
        const char* const piece = p;
        p = EndOfPiece(p, end, m_wordState, breaks);
        const auto length = static_cast<std::uint32_t>(p - piece);
        AddPiece(item, PieceKind::Text, static_cast<std::uint32_t>(piece - text), length,
                 m_measurer.TextWidth(font.handle, {piece, length}));
        if (breaks) {
            EndWord();
        }
    }
}

void LineBuilder::AddPiece(const Item& item, PieceKind kind, std::uint32_t nOffset,
                           std::uint32_t nLength, std::int64_t nWidth) {
    const std::int32_t held = HeldCoordinate(std::max<std::int64_t>(0, nWidth));
    m_aWord.push_back({nOffset, nLength, item.nStyle, item.nLink, held, kind});
    m_nWordWidth += held;
}

void LineBuilder::EndWord() {
    m_wordState = {};
    if (m_aWord.empty()) {
        return;
    }
    const std::int64_t space = m_bSpace && m_bContent ? m_space.nWidth : 0;
    if (m_bContent && m_nX + space + m_nWordWidth > m_nAvailable) {
        FinishLine(false);
    }
    if (m_nWordWidth > m_nAvailable && !m_bContent) {
        PlaceLongWord();
    } else {
        PlaceWord();
    }
    m_aWord.clear();
    m_nWordWidth = 0;
    m_bSpace = false;
}

void LineBuilder::PlaceWord() {
    if (m_bSpace && m_bContent) {
        PlaceSpace();
    }
    for (const Piece& piece : m_aWord) {
        Place(piece);
    }
}

void LineBuilder::PlaceSpace() {
    Place(m_space);
}

// A word that no line holds is broken behind its break characters, if it has any; what has none
// runs over the edge.
void LineBuilder::PlaceLongWord() {
    m_bSpace = false;
    m_aUnit.clear();
    bool afterBreak = false;  // the last character of the word so far is a break character
    for (const Piece& piece : m_aWord) {
        if (piece.kind != PieceKind::Text) {
            m_aUnit.push_back(piece);
            continue;
        }
        const FontHandle font = m_document.styles.FontOf(piece.nStyle).handle;
        const std::string_view text =
            std::string_view(m_document.strText).substr(piece.nOffset, piece.nLength);
        std::size_t from = 0;
        const auto addUpTo = [&](std::size_t nEnd) {
            Piece part = piece;
            part.nOffset += static_cast<std::uint32_t>(from);
            part.nLength = static_cast<std::uint32_t>(nEnd - from);
            part.nWidth = std::max(0, m_measurer.TextWidth(font, text.substr(from, nEnd - from)));
            m_aUnit.push_back(part);
            from = nEnd;
        };
        for (std::size_t i = 0; i < text.size(); ++i) {
            const bool letter = ClassOf(text[i]) == BreakClass::Letter;
            if (letter && afterBreak) {
                if (i != 0) {
                    addUpTo(i);
                }
                PlaceUnit(m_aUnit);
            }
            afterBreak = !letter;
        }
        addUpTo(text.size());
    }
    PlaceUnit(m_aUnit);
}

void LineBuilder::PlaceUnit(std::pmr::vector<Piece>& pieces) {
    std::int64_t width = 0;
    for (const Piece& piece : pieces) {
        width += piece.nWidth;
    }
    if (m_bContent && m_nX + width > m_nAvailable) {
        FinishLine(false);
    }
    for (const Piece& piece : pieces) {
        Place(piece);
    }
    pieces.clear();
}

// --- placing ----------------------------------------------------------------------------------

Fragment& LineBuilder::AddFragment(FragmentKind kind, std::int64_t nWidth, std::uint32_t nStyle,
                                   std::uint32_t nLink) {
    Fragment& fragment = m_boxes.aFragments.emplace_back();
    fragment.nX = HeldCoordinate(m_nX);
    fragment.nWidth = HeldCoordinate(nWidth);
    fragment.nStyle = nStyle;
    fragment.nLink = nLink;
    fragment.kind = kind;
    return fragment;
}

void LineBuilder::StartLine(std::uint32_t nStyle) {
    m_bContent = true;
    m_align = m_document.styles[nStyle].align;
    ContinueBoxes();
}

void LineBuilder::Place(const Piece& piece) {
    if (!m_bContent) {
        StartLine(piece.nStyle);
    }
    switch (piece.kind) {
        case PieceKind::BoxOpen:
            PlaceBoxOpen(piece);
            return;
        case PieceKind::BoxClose:
            PlaceBoxClose(piece);
            return;
        case PieceKind::Image: {
            const ImageAttributes& image = m_document.aImages[piece.nOffset];
            AddFragment(FragmentKind::Image, piece.nWidth, piece.nStyle, piece.nLink).nOffset =
                piece.nOffset;
            TouchObject(m_document.styles[piece.nStyle].verticalAlign, image.nHeight);
            break;
        }
        case PieceKind::Text: {
            std::vector<Fragment>& fragments = m_boxes.aFragments;
            if (fragments.size() > m_nFirstFragment) {
                Fragment& last = fragments.back();
                if (last.kind == FragmentKind::Text && last.nStyle == piece.nStyle &&
                    last.nLink == piece.nLink && last.nOffset + last.nLength == piece.nOffset) {
                    last.nLength += piece.nLength;
                    last.nWidth = HeldCoordinate(std::int64_t{last.nWidth} + piece.nWidth);
                    break;
                }
            }
            Fragment& fragment =
                AddFragment(FragmentKind::Text, piece.nWidth, piece.nStyle, piece.nLink);
            fragment.nOffset = piece.nOffset;
            fragment.nLength = piece.nLength;
            Touch(piece.nStyle);
            break;
        }
    }
    m_nX += piece.nWidth;
}

void LineBuilder::Touch(std::uint32_t nStyle) {
    if (nStyle == m_nTouched) {
        return;
    }
    m_nTouched = nStyle;
    const Font& font = m_document.styles.FontOf(nStyle);
    const VerticalAlign align = m_document.styles[nStyle].verticalAlign;
    if (align == VerticalAlign::Baseline) {
        m_nAscent = std::max<std::int64_t>(m_nAscent, font.metrics.nAscent);
        m_nDescent = std::max<std::int64_t>(m_nDescent, font.metrics.nDescent);
    } else {
        TouchObject(align, font.Height());
    }
}

void LineBuilder::TouchObject(VerticalAlign align, std::int64_t nHeight) {
    std::int64_t& group = align == VerticalAlign::Top      ? m_nTopHeight
                          : align == VerticalAlign::Middle ? m_nMiddleHeight
                          : align == VerticalAlign::Bottom ? m_nBottomHeight
                                                           : m_nAscent;
    group = std::max(group, nHeight);
}

void LineBuilder::AddTab(const Item& item) {
    EndWord();
    const std::int64_t tab = TabDistance(m_document.styles.FontOf(item.nStyle));
    const std::int64_t stop = (m_nX / tab + 1) * tab;
    m_bSpace = false;
    if (m_bContent && stop > m_nAvailable) {
        FinishLine(false);  // like a space, a tab at the edge is the line's end
        return;
    }
    if (!m_bContent) {
        StartLine(item.nStyle);
    }
    AddFragment(FragmentKind::Tab, stop - m_nX, item.nStyle, item.nLink);
    Touch(item.nStyle);
    m_nX = stop;
}

void LineBuilder::AddImage(const Item& item) {
    EndWord();
    AddPiece(item, PieceKind::Image, item.nOffset, 0, m_document.aImages[item.nOffset].nWidth);
    EndWord();
}

void LineBuilder::AddBreak(const Item& item) {
    EndWord();
    m_align = m_bContent ? m_align : m_document.styles[item.nStyle].align;
    Touch(item.nStyle);
    FinishLine(true);
}

void LineBuilder::EndParagraph() {
    EndWord();
    if (m_bContent) {
        FinishLine(true);
    } else {
        ResetLine();
    }
}

void LineBuilder::AddRule(const Item& item) {
    EndParagraph();
    const StyleTable& styles = m_document.styles;
    const RuleAttributes& rule = m_document.aRules[item.nOffset];
    std::int64_t width = m_nAvailable;
    if (rule.width.has_value()) {
        width = ResolveLength(*rule.width, HeldCoordinate(m_nAvailable), LengthUse::Size,
                              styles.ContextOf(item.nStyle));
    }
    m_bContent = true;
    // A rule stands in the middle unless its class or an alignment tag says otherwise.
    const std::uint32_t align = styles[item.nStyle].nBlockAlign;
    m_align =
        rule.align.value_or(align != 0 ? static_cast<TextAlign>(align - 1) : TextAlign::Center);
    width = std::clamp<std::int64_t>(width, 0, std::max<std::int64_t>(m_nAvailable, kMaxExtent));
    AddFragment(FragmentKind::Rule, width, item.nStyle, item.nLink).nOffset = item.nOffset;
    Touch(item.nStyle);
    m_nX = width;
    FinishLine(true);
}

// --- inline boxes -----------------------------------------------------------------------------

void LineBuilder::OpenBox(const Item& item) {
    AddPiece(item, PieceKind::BoxOpen, 0, 0, m_document.styles.BoxOf(item.nStyle).EdgeWidth(kLeft));
}

void LineBuilder::CloseBox(const Item& item) {
    AddPiece(item, PieceKind::BoxClose, 0, 0,
             m_document.styles.BoxOf(item.nStyle).EdgeWidth(kRight));
}

void LineBuilder::PlaceBoxOpen(const Piece& piece) {
    const BoxStyle& box = m_document.styles.BoxOf(piece.nStyle);
    m_nX += box.margin[kLeft];
    Fragment& fragment = AddFragment(FragmentKind::Box, 0, piece.nStyle, piece.nLink);
    fragment.nOffset = kBoxLeftEdge;
    m_aOpenBoxes.push_back(
        {piece.nStyle, static_cast<std::uint32_t>(m_boxes.aFragments.size() - 1)});
    m_nX += piece.nWidth - box.margin[kLeft];
}

void LineBuilder::PlaceBoxClose(const Piece& piece) {
    if (m_aOpenBoxes.size() == m_pFlow->nOuterBoxes) {
        return;
    }
    const OpenInlineBox open = m_aOpenBoxes.back();
    m_aOpenBoxes.pop_back();
    m_nX += piece.nWidth;
    Fragment& fragment = m_boxes.aFragments[open.nFragment];
    const std::int64_t right = m_nX - m_document.styles.BoxOf(piece.nStyle).margin[kRight];
    fragment.nWidth = HeldCoordinate(right - fragment.nX);
    fragment.nOffset |= kBoxRightEdge;
    fragment.nLength = static_cast<std::uint32_t>(m_boxes.aFragments.size());
}

// On a new line the boxes that are open go on.
void LineBuilder::ContinueBoxes() {
    for (std::size_t i = m_pFlow->nOuterBoxes; i < m_aOpenBoxes.size(); ++i) {
        m_aOpenBoxes[i].nFragment = static_cast<std::uint32_t>(m_boxes.aFragments.size());
        AddFragment(FragmentKind::Box, 0, m_aOpenBoxes[i].nStyle, kNone);
    }
}

void LineBuilder::SuspendBoxes() {
    for (std::size_t i = m_pFlow->nOuterBoxes; i < m_aOpenBoxes.size(); ++i) {
        if (m_aOpenBoxes[i].nFragment != kNone) {
            Fragment& fragment = m_boxes.aFragments[m_aOpenBoxes[i].nFragment];
            fragment.nWidth = HeldCoordinate(m_nX - fragment.nX);
            fragment.nLength = static_cast<std::uint32_t>(m_boxes.aFragments.size());
            m_aOpenBoxes[i].nFragment = kNone;
        }
    }
}

// --- lines ------------------------------------------------------------------------------------

std::int64_t LineBuilder::SpacesOf(const Fragment& fragment) const {
    if (fragment.kind != FragmentKind::Text) {
        return 0;
    }
    const char* const text = m_document.strText.data() + fragment.nOffset;
    return std::count(text, text + fragment.nLength, ' ');
}

// Spreads the room that is left over the line's spaces; what stands before its last tab keeps its
// place.
void LineBuilder::Justify(std::int64_t nExtra) {
    const auto fragments = std::span(m_boxes.aFragments).subspan(m_nFirstFragment);
    std::size_t first = fragments.size();
    std::int64_t spaces = 0;
    while (first != 0 && fragments[first - 1].kind != FragmentKind::Tab) {
        spaces += SpacesOf(fragments[--first]);
    }
    if (spaces == 0) {
        return;
    }
    // shift[i]: how far fragment i moves; the last one: how far the line's end does.
    std::vector<std::int64_t> shift(fragments.size() + 1, 0);
    std::int64_t seen = 0;
    for (std::size_t i = first; i < fragments.size(); ++i) {
        seen += SpacesOf(fragments[i]);
        shift[i + 1] = nExtra * seen / spaces;
        const std::int64_t own = shift[i + 1] - shift[i];
        fragments[i].nX = HeldCoordinate(fragments[i].nX + shift[i]);
        fragments[i].nExtra = HeldCoordinate(own);
        fragments[i].nWidth = HeldCoordinate(fragments[i].nWidth + own);
    }
    for (std::size_t i = 0; i < fragments.size(); ++i) {
        if (fragments[i].kind == FragmentKind::Box) {
            const std::int64_t end = shift[fragments[i].nLength - m_nFirstFragment];
            fragments[i].nWidth = HeldCoordinate(fragments[i].nWidth + end - shift[i]);
        }
    }
    m_nX += nExtra;
}

// nTop: of the line, below the flow's top.
void LineBuilder::SetVertical(Fragment& fragment, std::int64_t nTop, std::int64_t nAscent,
                              std::int64_t nHeight) const {
    const StyleTable& styles = m_document.styles;
    const Font& font = styles.FontOf(fragment.nStyle);
    std::int64_t ownAscent = font.metrics.nAscent;
    std::int64_t ownHeight = font.Height();
    if (fragment.kind == FragmentKind::Image) {
        ownHeight = m_document.aImages[fragment.nOffset].nHeight;
        ownAscent = ownHeight;
    }
    std::int64_t y = nTop + nAscent - ownAscent;
    switch (styles[fragment.nStyle].verticalAlign) {
        case VerticalAlign::Top:
            y = nTop;
            break;
        case VerticalAlign::Middle:
            y = nTop + (nHeight - ownHeight) / 2;
            break;
        case VerticalAlign::Bottom:
            y = nTop + nHeight - ownHeight;
            break;
        case VerticalAlign::Baseline:
            break;
    }
    if (fragment.kind == FragmentKind::Box) {
        const BoxStyle& box = styles.BoxOf(fragment.nStyle);
        y -= box.border[kTop] + box.padding[kTop];
        ownHeight +=
            box.border[kTop] + box.padding[kTop] + box.border[kBottom] + box.padding[kBottom];
    } else if (fragment.kind == FragmentKind::Rule) {
        y = nTop + (nHeight - kRuleHeight) / 2;
        ownHeight = kRuleHeight;
    }
    fragment.nY = HeldCoordinate(y);
    fragment.nHeight = HeldCoordinate(ownHeight);
}

void LineBuilder::FinishLine(bool bLast) {
    SuspendBoxes();
    Flow& flow = *m_pFlow;
    std::int64_t offset = 0;
    if (const std::int64_t room = m_nAvailable - m_nX; room > 0) {
        if (m_align == TextAlign::Justify && !bLast) {
            Justify(room);
        } else if (m_align == TextAlign::Center) {
            offset = room / 2;
        } else if (m_align == TextAlign::Right) {
            offset = room;
        }
    }
    // What is aligned to an edge and higher than the text makes room on the other side.
    m_nDescent = std::max(m_nDescent, m_nTopHeight - m_nAscent);
    m_nAscent = std::max(m_nAscent, m_nBottomHeight - m_nDescent);
    if (const std::int64_t over = m_nMiddleHeight - m_nAscent - m_nDescent; over > 0) {
        m_nAscent += over / 2;
        m_nDescent += over - over / 2;
    }
    const std::int64_t height = m_nAscent + m_nDescent;
    const std::int64_t x = RoundPixels(flow.nX) + offset;
    std::vector<Fragment>& fragments = m_boxes.aFragments;
    for (std::size_t i = m_nFirstFragment; i < fragments.size(); ++i) {
        fragments[i].nX = HeldCoordinate(fragments[i].nX + x);
        SetVertical(fragments[i], flow.nY, m_nAscent, height);
    }
    LineBox& line = m_boxes.aLines.emplace_back();
    line.nX = HeldCoordinate(x);
    line.nY = HeldCoordinate(flow.nY);
    line.nWidth = HeldCoordinate(m_nX);
    line.nHeight = HeldCoordinate(height);
    line.nBaseline = HeldCoordinate(m_nAscent);
    line.nFirstFragment = static_cast<std::uint32_t>(m_nFirstFragment);
    line.nFragments = static_cast<std::uint32_t>(fragments.size() - m_nFirstFragment);
    line.nBlock = flow.nBlock;
    if (flow.nFirstBaseline < 0) {
        flow.nFirstBaseline = flow.nY + m_nAscent;
    }
    flow.nY += height;
    ResetLine();
}

}  // namespace mvp::richtext
