// The builder behind BuildDocument, split over document_builder.cpp (elements and text),
// document_objects.cpp (images, rules, strings) and document_tables.cpp.
#pragma once

#include <array>
#include <vector>

#include "richtext/document/document_builder.h"
#include "richtext/document/scratch_memory.h"
#include "richtext/style/element_styles.h"

namespace mvp::richtext {

class DocumentBuilder {
public:
    DocumentBuilder(std::string_view text, const StyleSheet& sheet, const BuildSettings& settings,
                    StyledDocument& document);
    void Run();

private:
    struct Element {
        TagId tag = TagId::Span;
        bool bScope = false;  // a table's or a cell's; closing tags do not reach past it
        bool bBox = false;    // has a BoxOpen item
        std::uint32_t nStyle = 0;
        std::uint32_t nLink = kNone;
        std::uint32_t nPrevious = kNone;  // the open element of the same tag before this one
        ElementStyles::Change change;
    };
    // What a table or a row says for those of its cells that do not say it themselves.
    struct CellDefaults {
        Edges padding = {};
        VerticalAlign verticalAlign = VerticalAlign::Middle;
        Colour background = kNoColour;

        bool operator==(const CellDefaults&) const = default;
    };
    struct TableState {
        std::uint32_t nTable = 0;
        CellDefaults defaults;         // the table's
        CellDefaults rowDefaults;      // the open row's
        std::size_t nElement = 0;      // its scope on the stack
        std::size_t nRowElement = 0;   // the open row's
        std::size_t nCellElement = 0;  // the open cell's
        std::size_t nOuterScope = 0;
        std::uint32_t nCell = kNone;  // the open one
        bool bInRow = false;
        std::uint32_t nPlainCell = kNone;  // one without attributes
        std::uint32_t nPlainOuter = 0;     // the style it was opened in
    };

    // Elements.
    void OpenTag(const MarkupEvent& event);
    void CloseTag(TagId tag);
    void OpenElement(TagId tag);
    void PushElement(const Element& element);
    void PopElement();
    void PopTo(std::size_t nSize);
    void CloseElement(std::size_t nElement);
    void ReopenElement(Element element);
    void EndLineAt(TagId tag);
    std::uint32_t AddLink();
    const Element& Top() const { return m_aElements.back(); }

    // Text.
    void AddText(std::string_view text);
    void AppendText(std::string_view text);
    void Transform(std::size_t nFrom, TextTransform transform);
    void AddItem(ItemKind kind, std::uint32_t nOffset = 0);
    void AddBreak(bool bCharacter);
    void AddTab(bool bCharacter);
    TextRef Store(std::string_view text);

    // Objects.
    void PushLeaf(TagId tag);
    void AddImage(TagId tag);
    void AddRule();
    void AddString();
    std::int32_t LengthOf(const TagAttributes& attributes, AttributeId attribute,
                          std::int32_t nDefault) const;

    // Tables.
    bool InTable() const { return !m_aTables.empty(); }
    bool BetweenCells() const { return InTable() && m_aTables.back().nCell == kNone; }
    void OpenTable();
    void OpenRow(const TagAttributes& attributes);
    void OpenCell(const TagAttributes& attributes);
    void CloseCell();
    void CloseRow();
    void CloseTable();
    void EnsureCell();
    void PushScope(const Element& scope);
    std::uint32_t BlockStyle(const StyleDelta& delta, std::optional<TextAlign> align);
    TableAttributes ReadTable(const TagAttributes& attributes, const StyleDelta& delta);
    CellDefaults DefaultsOf(const StyleDelta& delta, CellDefaults defaults) const;
    CellAttributes ReadCell(const TagAttributes& attributes, const StyleDelta& delta,
                            const TableState& state);
    Edges BorderOf(const TagAttributes& attributes, const StyleDelta& delta,
                   std::int32_t nDefault) const;
    Edges EdgesOf(const std::optional<EdgeLengths>& lengths, Edges otherwise) const;
    // nStyle: of the text inside. pCell: what holds for the cell; null for a table.
    std::uint32_t AddDecoration(const TagAttributes& attributes, const StyleDelta& delta,
                                const Edges& border, std::uint32_t nStyle,
                                const CellDefaults* pCell);
    void ReadFilling(const TagAttributes& attributes, const StyleDelta& delta,
                     Decoration& decoration);

    MarkupReader m_reader;
    const StyleSheet& m_sheet;
    const BuildSettings& m_settings;
    StyledDocument& m_document;
    ScratchMemory<6144> m_scratch;
    ElementStyles m_elementStyles;
    std::pmr::vector<Element> m_aElements;
    std::array<std::uint32_t, kTagCount> m_aLast;  // innermost open element of each tag
    std::size_t m_nScope = 0;                      // the innermost scope on the stack
    std::vector<TableState> m_aTables;
    std::uint32_t m_nBoxes = 0;
    std::size_t m_nResourceBytes = 0;
    bool m_bCollapse = true;   // a space here would follow a space, or begin a line
    bool m_bWordStart = true;  // for capitalize
};

// A size from markup, held within what layout reckons with.
std::int32_t HeldExtent(std::int32_t nSize);

}  // namespace mvp::richtext
