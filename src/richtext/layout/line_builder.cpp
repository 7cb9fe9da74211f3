#include "richtext/layout/line_builder.h"

#include <algorithm>
#include <span>
#include <utility>

#include "richtext/layout/intrinsic_widths.h"

namespace mvp::richtext {
namespace {

constexpr std::int32_t kRuleHeight = 2;

}  // namespace

void CLineBuilder::SetFlow(Flow& flow) {
    m_pFlow = &flow;
    m_nAvailable = FloorPixels(flow.nWidth);
    ResetLine();
}

void CLineBuilder::ResetLine() {
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

void CLineBuilder::AddText(const Item& item) {
    const Font& font = m_document.styles.FontOf(item.nStyle);
    const char* const pText = m_document.strText.data();
    const char* p = pText + item.nOffset;
    const char* const pEnd = p + item.nLength;
    while (p != pEnd) {
        if (*p == ' ') {
            EndWord();
            m_bSpace = true;
            m_space = {static_cast<std::uint32_t>(p - pText),
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
        bool bBreak = false;
        const char* const pPiece = p;
        p = EndOfPiece(p, pEnd, m_wordState, bBreak);
        const auto nLength = static_cast<std::uint32_t>(p - pPiece);
        AddPiece(item, PieceKind::Text, static_cast<std::uint32_t>(pPiece - pText), nLength,
                 m_measurer.TextWidth(font.handle, {pPiece, nLength}));
        if (bBreak) {
            EndWord();
        }
    }
}

void CLineBuilder::AddPiece(const Item& item, PieceKind kind, std::uint32_t nOffset,
                            std::uint32_t nLength, std::int64_t nWidth) {
    const std::int32_t nHeld = HeldCoordinate(std::max<std::int64_t>(0, nWidth));
    m_aWord.push_back({nOffset, nLength, item.nStyle, item.nLink, nHeld, kind});
    m_nWordWidth += nHeld;
}

void CLineBuilder::EndWord() {
    m_wordState = {};
    if (m_aWord.empty()) {
        return;
    }
    const std::int64_t nSpace = m_bSpace && m_bContent ? m_space.nWidth : 0;
    if (m_bContent && m_nX + nSpace + m_nWordWidth > m_nAvailable) {
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

void CLineBuilder::PlaceWord() {
    if (m_bSpace && m_bContent) {
        PlaceSpace();
    }
    for (const Piece& piece : m_aWord) {
        Place(piece);
    }
}

void CLineBuilder::PlaceSpace() {
    Place(m_space);
}

// A word that no line holds is broken behind its break characters, if it has any; what has none
// runs over the edge.
void CLineBuilder::PlaceLongWord() {
    m_bSpace = false;
    m_aUnit.clear();
    bool bAfterBreak = false;  // the last character of the word so far is a break character
    for (const Piece& piece : m_aWord) {
        if (piece.kind != PieceKind::Text) {
            m_aUnit.push_back(piece);
            continue;
        }
        const FontHandle font = m_document.styles.FontOf(piece.nStyle).handle;
        const std::string_view text =
            std::string_view(m_document.strText).substr(piece.nOffset, piece.nLength);
        std::size_t nFrom = 0;
        const auto addUpTo = [&](std::size_t nEnd) {
            Piece part = piece;
            part.nOffset += static_cast<std::uint32_t>(nFrom);
            part.nLength = static_cast<std::uint32_t>(nEnd - nFrom);
            part.nWidth = std::max(0, m_measurer.TextWidth(font, text.substr(nFrom, nEnd - nFrom)));
            m_aUnit.push_back(part);
            nFrom = nEnd;
        };
        for (std::size_t i = 0; i < text.size(); ++i) {
            const bool bLetter = ClassOf(text[i]) == BreakClass::Letter;
            if (bLetter && bAfterBreak) {
                if (i != 0) {
                    addUpTo(i);
                }
                PlaceUnit(m_aUnit);
            }
            bAfterBreak = !bLetter;
        }
        addUpTo(text.size());
    }
    PlaceUnit(m_aUnit);
}

void CLineBuilder::PlaceUnit(std::pmr::vector<Piece>& pieces) {
    std::int64_t nWidth = 0;
    for (const Piece& piece : pieces) {
        nWidth += piece.nWidth;
    }
    if (m_bContent && m_nX + nWidth > m_nAvailable) {
        FinishLine(false);
    }
    for (const Piece& piece : pieces) {
        Place(piece);
    }
    pieces.clear();
}

// --- placing ----------------------------------------------------------------------------------

Fragment& CLineBuilder::AddFragment(FragmentKind kind, std::int64_t nWidth, std::uint32_t nStyle,
                                    std::uint32_t nLink) {
    Fragment& fragment = m_boxes.aFragments.emplace_back();
    fragment.nX = HeldCoordinate(m_nX);
    fragment.nWidth = HeldCoordinate(nWidth);
    fragment.nStyle = nStyle;
    fragment.nLink = nLink;
    fragment.kind = kind;
    return fragment;
}

void CLineBuilder::StartLine(std::uint32_t nStyle) {
    m_bContent = true;
    m_align = m_document.styles[nStyle].align;
    ContinueBoxes();
}

void CLineBuilder::Place(const Piece& piece) {
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

void CLineBuilder::Touch(std::uint32_t nStyle) {
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

void CLineBuilder::TouchObject(VerticalAlign align, std::int64_t nHeight) {
    std::int64_t& nGroup = align == VerticalAlign::Top      ? m_nTopHeight
                           : align == VerticalAlign::Middle ? m_nMiddleHeight
                           : align == VerticalAlign::Bottom ? m_nBottomHeight
                                                            : m_nAscent;
    nGroup = std::max(nGroup, nHeight);
}

void CLineBuilder::AddTab(const Item& item) {
    EndWord();
    const std::int64_t nTab = TabDistance(m_document.styles.FontOf(item.nStyle));
    const std::int64_t nStop = (m_nX / nTab + 1) * nTab;
    m_bSpace = false;
    if (m_bContent && nStop > m_nAvailable) {
        FinishLine(false);  // like a space, a tab at the edge is the line's end
        return;
    }
    if (!m_bContent) {
        StartLine(item.nStyle);
    }
    AddFragment(FragmentKind::Tab, nStop - m_nX, item.nStyle, item.nLink);
    Touch(item.nStyle);
    m_nX = nStop;
}

void CLineBuilder::AddImage(const Item& item) {
    EndWord();
    AddPiece(item, PieceKind::Image, item.nOffset, 0, m_document.aImages[item.nOffset].nWidth);
    EndWord();
}

void CLineBuilder::AddBreak(const Item& item) {
    EndWord();
    m_align = m_bContent ? m_align : m_document.styles[item.nStyle].align;
    Touch(item.nStyle);
    FinishLine(true);
}

void CLineBuilder::EndParagraph() {
    EndWord();
    if (m_bContent) {
        FinishLine(true);
    } else {
        ResetLine();
    }
}

void CLineBuilder::AddRule(const Item& item) {
    EndParagraph();
    const CStyleTable& styles = m_document.styles;
    const RuleAttributes& rule = m_document.aRules[item.nOffset];
    std::int64_t nWidth = m_nAvailable;
    if (rule.width.has_value()) {
        nWidth = ResolveLength(*rule.width, HeldCoordinate(m_nAvailable), LengthUse::Size,
                               styles.ContextOf(item.nStyle));
    }
    m_bContent = true;
    // A rule stands in the middle unless its class or an alignment tag says otherwise.
    const std::uint32_t nAlign = styles[item.nStyle].nBlockAlign;
    m_align =
        rule.align.value_or(nAlign != 0 ? static_cast<TextAlign>(nAlign - 1) : TextAlign::Center);
    nWidth = std::clamp<std::int64_t>(nWidth, 0, std::max<std::int64_t>(m_nAvailable, kMaxExtent));
    AddFragment(FragmentKind::Rule, nWidth, item.nStyle, item.nLink).nOffset = item.nOffset;
    Touch(item.nStyle);
    m_nX = nWidth;
    FinishLine(true);
}

// --- inline boxes -----------------------------------------------------------------------------

void CLineBuilder::OpenBox(const Item& item) {
    AddPiece(item, PieceKind::BoxOpen, 0, 0, m_document.styles.BoxOf(item.nStyle).EdgeWidth(kLeft));
}

void CLineBuilder::CloseBox(const Item& item) {
    AddPiece(item, PieceKind::BoxClose, 0, 0,
             m_document.styles.BoxOf(item.nStyle).EdgeWidth(kRight));
}

void CLineBuilder::PlaceBoxOpen(const Piece& piece) {
    const BoxStyle& box = m_document.styles.BoxOf(piece.nStyle);
    m_nX += box.margin[kLeft];
    Fragment& fragment = AddFragment(FragmentKind::Box, 0, piece.nStyle, piece.nLink);
    fragment.nOffset = kBoxLeftEdge;
    m_aOpenBoxes.push_back(
        {piece.nStyle, static_cast<std::uint32_t>(m_boxes.aFragments.size() - 1)});
    m_nX += piece.nWidth - box.margin[kLeft];
}

void CLineBuilder::PlaceBoxClose(const Piece& piece) {
    if (m_aOpenBoxes.size() == m_pFlow->nOuterBoxes) {
        return;
    }
    const OpenInlineBox open = m_aOpenBoxes.back();
    m_aOpenBoxes.pop_back();
    m_nX += piece.nWidth;
    Fragment& fragment = m_boxes.aFragments[open.nFragment];
    const std::int64_t nRight = m_nX - m_document.styles.BoxOf(piece.nStyle).margin[kRight];
    fragment.nWidth = HeldCoordinate(nRight - fragment.nX);
    fragment.nOffset |= kBoxRightEdge;
    fragment.nLength = static_cast<std::uint32_t>(m_boxes.aFragments.size());
}

// On a new line the boxes that are open go on.
void CLineBuilder::ContinueBoxes() {
    for (std::size_t i = m_pFlow->nOuterBoxes; i < m_aOpenBoxes.size(); ++i) {
        m_aOpenBoxes[i].nFragment = static_cast<std::uint32_t>(m_boxes.aFragments.size());
        AddFragment(FragmentKind::Box, 0, m_aOpenBoxes[i].nStyle, kNone);
    }
}

void CLineBuilder::SuspendBoxes() {
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

std::int64_t CLineBuilder::SpacesOf(const Fragment& fragment) const {
    if (fragment.kind != FragmentKind::Text) {
        return 0;
    }
    const char* const pText = m_document.strText.data() + fragment.nOffset;
    return std::count(pText, pText + fragment.nLength, ' ');
}

// Spreads the room that is left over the line's spaces; what stands before its last tab keeps its
// place.
void CLineBuilder::Justify(std::int64_t nExtra) {
    const auto fragments = std::span(m_boxes.aFragments).subspan(m_nFirstFragment);
    std::size_t nFirst = fragments.size();
    std::int64_t nSpaces = 0;
    while (nFirst != 0 && fragments[nFirst - 1].kind != FragmentKind::Tab) {
        nSpaces += SpacesOf(fragments[--nFirst]);
    }
    if (nSpaces == 0) {
        return;
    }
    // aShift[i]: how far fragment i moves; the last one: how far the line's end does.
    std::vector<std::int64_t> aShift(fragments.size() + 1, 0);
    std::int64_t nSeen = 0;
    for (std::size_t i = nFirst; i < fragments.size(); ++i) {
        nSeen += SpacesOf(fragments[i]);
        aShift[i + 1] = nExtra * nSeen / nSpaces;
        const std::int64_t nOwn = aShift[i + 1] - aShift[i];
        fragments[i].nX = HeldCoordinate(fragments[i].nX + aShift[i]);
        fragments[i].nExtra = HeldCoordinate(nOwn);
        fragments[i].nWidth = HeldCoordinate(fragments[i].nWidth + nOwn);
    }
    for (std::size_t i = 0; i < fragments.size(); ++i) {
        if (fragments[i].kind == FragmentKind::Box) {
            const std::int64_t nEnd = aShift[fragments[i].nLength - m_nFirstFragment];
            fragments[i].nWidth = HeldCoordinate(fragments[i].nWidth + nEnd - aShift[i]);
        }
    }
    m_nX += nExtra;
}

// nTop: of the line, below the flow's top.
void CLineBuilder::SetVertical(Fragment& fragment, std::int64_t nTop, std::int64_t nAscent,
                               std::int64_t nHeight) const {
    const CStyleTable& styles = m_document.styles;
    const Font& font = styles.FontOf(fragment.nStyle);
    std::int64_t nOwnAscent = font.metrics.nAscent;
    std::int64_t nOwnHeight = font.Height();
    if (fragment.kind == FragmentKind::Image) {
        nOwnHeight = m_document.aImages[fragment.nOffset].nHeight;
        nOwnAscent = nOwnHeight;
    }
    std::int64_t nY = nTop + nAscent - nOwnAscent;
    switch (styles[fragment.nStyle].verticalAlign) {
        case VerticalAlign::Top:
            nY = nTop;
            break;
        case VerticalAlign::Middle:
            nY = nTop + (nHeight - nOwnHeight) / 2;
            break;
        case VerticalAlign::Bottom:
            nY = nTop + nHeight - nOwnHeight;
            break;
        case VerticalAlign::Baseline:
            break;
    }
    if (fragment.kind == FragmentKind::Box) {
        const BoxStyle& box = styles.BoxOf(fragment.nStyle);
        nY -= box.border[kTop] + box.padding[kTop];
        nOwnHeight +=
            box.border[kTop] + box.padding[kTop] + box.border[kBottom] + box.padding[kBottom];
    } else if (fragment.kind == FragmentKind::Rule) {
        nY = nTop + (nHeight - kRuleHeight) / 2;
        nOwnHeight = kRuleHeight;
    }
    fragment.nY = HeldCoordinate(nY);
    fragment.nHeight = HeldCoordinate(nOwnHeight);
}

void CLineBuilder::FinishLine(bool bLast) {
    SuspendBoxes();
    Flow& flow = *m_pFlow;
    std::int64_t nOffset = 0;
    if (const std::int64_t nRoom = m_nAvailable - m_nX; nRoom > 0) {
        if (m_align == TextAlign::Justify && !bLast) {
            Justify(nRoom);
        } else if (m_align == TextAlign::Center) {
            nOffset = nRoom / 2;
        } else if (m_align == TextAlign::Right) {
            nOffset = nRoom;
        }
    }
    // What is aligned to an edge and higher than the text makes room on the other side.
    m_nDescent = std::max(m_nDescent, m_nTopHeight - m_nAscent);
    m_nAscent = std::max(m_nAscent, m_nBottomHeight - m_nDescent);
    if (const std::int64_t nOver = m_nMiddleHeight - m_nAscent - m_nDescent; nOver > 0) {
        m_nAscent += nOver / 2;
        m_nDescent += nOver - nOver / 2;
    }
    const std::int64_t nHeight = m_nAscent + m_nDescent;
    const std::int64_t nX = RoundPixels(flow.nX) + nOffset;
    std::vector<Fragment>& fragments = m_boxes.aFragments;
    for (std::size_t i = m_nFirstFragment; i < fragments.size(); ++i) {
        fragments[i].nX = HeldCoordinate(fragments[i].nX + nX);
        SetVertical(fragments[i], flow.nY, m_nAscent, nHeight);
    }
    LineBox& line = m_boxes.aLines.emplace_back();
    line.nX = HeldCoordinate(nX);
    line.nY = HeldCoordinate(flow.nY);
    line.nWidth = HeldCoordinate(m_nX);
    line.nHeight = HeldCoordinate(nHeight);
    line.nBaseline = HeldCoordinate(m_nAscent);
    line.nFirstFragment = static_cast<std::uint32_t>(m_nFirstFragment);
    line.nFragments = static_cast<std::uint32_t>(fragments.size() - m_nFirstFragment);
    line.nBlock = flow.nBlock;
    if (flow.nFirstBaseline < 0) {
        flow.nFirstBaseline = flow.nY + m_nAscent;
    }
    flow.nY += nHeight;
    ResetLine();
}

}  // namespace mvp::richtext
