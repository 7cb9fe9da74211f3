// Fills lines from items: collects words, breaks greedily, aligns, and writes line boxes and
// fragments. One builder serves a whole layout; a flow says where its lines go at the moment.
#pragma once

#include <cstdint>
#include <memory_resource>
#include <vector>

#include "richtext/layout/layout_boxes.h"
#include "richtext/layout/table_columns.h"
#include "richtext/layout/word_scanner.h"
#include "richtext/style/text_measurer.h"

namespace mvp::richtext {

// A column of lines: the whole text, or the content of a cell.
struct Flow {
    Fixed nX = 0;  // absolute
    Fixed nWidth = 0;
    std::int64_t nY = 0;  // where the next line begins, below the top of the content
    std::uint32_t nBlock = kNone;
    std::uint32_t nStyle = 0;          // every line is at least as high as its font
    std::int64_t nFirstBaseline = -1;  // of the first line
    std::size_t nOuterBoxes = 0;       // open inline boxes that belong to flows around this one
};

class LineBuilder {
public:
    // All four must outlive the object.
    LineBuilder(const StyledDocument& document, TextMeasurer& measurer, LayoutBoxes& boxes,
                std::pmr::memory_resource* pMemory)
        : m_document(document),
          m_measurer(measurer),
          m_boxes(boxes),
          m_aWord(pMemory),
          m_aUnit(pMemory),
          m_aOpenBoxes(pMemory) {}

    // The lines that follow go to this flow. The one before must be at the end of a paragraph.
    void SetFlow(Flow& flow);

    void AddText(const Item& item);
    void AddTab(const Item& item);
    void AddImage(const Item& item);
    void AddBreak(const Item& item);
    void AddRule(const Item& item);
    void OpenBox(const Item& item);
    void CloseBox(const Item& item);
    // Ends the line if it holds anything.
    void EndParagraph();

    std::size_t OpenBoxes() const { return m_aOpenBoxes.size(); }

private:
    enum class PieceKind : std::uint8_t { Text, Image, BoxOpen, BoxClose };
    struct Piece {
        std::uint32_t nOffset;
        std::uint32_t nLength;
        std::uint32_t nStyle;
        std::uint32_t nLink;
        std::int32_t nWidth;
        PieceKind kind;
    };
    struct OpenInlineBox {
        std::uint32_t nStyle;
        std::uint32_t nFragment;  // on the line at hand, or kNone
    };

    void AddPiece(const Item& item, PieceKind kind, std::uint32_t nOffset, std::uint32_t nLength,
                  std::int64_t nWidth);
    void EndWord();
    void PlaceWord();
    void PlaceLongWord();
    void PlaceUnit(std::pmr::vector<Piece>& pieces);
    void Place(const Piece& piece);
    void PlaceSpace();
    void PlaceBoxOpen(const Piece& piece);
    void PlaceBoxClose(const Piece& piece);
    void StartLine(std::uint32_t nStyle);
    void FinishLine(bool bLast);
    void ContinueBoxes();
    void SuspendBoxes();
    std::int64_t SpacesOf(const Fragment& fragment) const;
    void Justify(std::int64_t nExtra);
    void Touch(std::uint32_t nStyle);
    void TouchObject(VerticalAlign align, std::int64_t nHeight);
    void SetVertical(Fragment& fragment, std::int64_t nTop, std::int64_t nAscent,
                     std::int64_t nHeight) const;
    Fragment& AddFragment(FragmentKind kind, std::int64_t nWidth, std::uint32_t nStyle,
                          std::uint32_t nLink);
    void ResetLine();

    const StyledDocument& m_document;
    TextMeasurer& m_measurer;
    LayoutBoxes& m_boxes;
    Flow* m_pFlow = nullptr;
    std::int64_t m_nAvailable = 0;

    // The word at hand, not yet on a line.
    std::pmr::vector<Piece> m_aWord;
    std::pmr::vector<Piece> m_aUnit;  // of a long word; kept for its storage
    std::int64_t m_nWordWidth = 0;
    WordState m_wordState;

    // The space in front of it, which is placed only if the word stays on the line.
    bool m_bSpace = false;
    Piece m_space = {};

    // The line at hand.
    std::size_t m_nFirstFragment = 0;
    std::int64_t m_nX = 0;
    bool m_bContent = false;
    TextAlign m_align = TextAlign::Left;
    std::uint32_t m_nTouched = kNone;  // the style last accounted for below
    std::int64_t m_nAscent = 0;
    std::int64_t m_nDescent = 0;
    std::int64_t m_nTopHeight = 0;  // of what is aligned to the line's top, middle and bottom
    std::int64_t m_nMiddleHeight = 0;
    std::int64_t m_nBottomHeight = 0;

    std::pmr::vector<OpenInlineBox> m_aOpenBoxes;
};

}  // namespace mvp::richtext
