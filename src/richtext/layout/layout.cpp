#include "richtext/layout/layout.h"

#include <algorithm>

#include "richtext/document/scratch_memory.h"
#include "richtext/layout/intrinsic_widths.h"
#include "richtext/layout/line_builder.h"
#include "richtext/layout/table_rows.h"

namespace mvp::richtext {
namespace {

constexpr std::int32_t kMaxWidth = 100'000;

class DocumentLayout {
public:
    DocumentLayout(const StyledDocument& document, TextMeasurer& measurer, std::int32_t nWidth);
    LayoutBoxes Run();

private:
    struct OpenTable {
        std::uint32_t nTable = 0;
        std::uint32_t nBlock = 0;
        std::size_t nFirstColumn = 0;  // of m_aColumnX
        std::size_t nFirstCell = 0;    // of m_aRowCells and m_aCellBlocks
    };

    void Visit(const Item& item);
    void BeginTable(std::uint32_t nTable);
    void EndTable();
    void PlaceColumns(const OpenTable& table, Fixed nX, Fixed nWidth);
    void BeginCell(std::uint32_t nCell);
    void EndCell(std::uint32_t nCell);
    void PlaceRows(const OpenTable& table);
    void PlaceContent(BlockBox& block, const RowCell& cell, const Row& row) const;
    void AddUpPositions();

    const StyledDocument& m_document;
    LayoutBoxes m_boxes;
    DocumentMeasures m_measures;
    ScratchMemory<2048> m_scratch;
    LineBuilder m_lines;
    std::pmr::vector<Flow> m_aFlows;  // the line builder points at the last one
    std::vector<OpenTable> m_aTables;
    // Of the open tables: an inner one's stand behind those of the table around it, and go with it.
    std::vector<Fixed> m_aColumnX;  // absolute; one more than there are columns
    std::vector<RowCell> m_aRowCells;
    std::vector<std::uint32_t> m_aCellBlocks;  // of these cells
    // Of the table at hand; kept for their storage.
    std::vector<Fixed> m_aWidths;
    std::vector<Row> m_aRows;
    std::vector<std::int64_t> m_aRowTop;
};

DocumentLayout::DocumentLayout(const StyledDocument& document, TextMeasurer& measurer,
                               std::int32_t nWidth)
    : m_document(document),
      m_lines(document, measurer, m_boxes, m_scratch.Resource()),
      m_aFlows(m_scratch.Resource()) {
    if (!document.aTables.empty()) {
        m_measures = MeasureDocument(document, measurer);
    }
    m_boxes.aBlocks.reserve(document.aTables.size() + document.aCells.size());
    m_boxes.aFragments.reserve(document.aItems.size() + document.strText.size() / 64);
    m_boxes.aLines.reserve(document.strText.size() / 48 + 4);
    Flow& flow = m_aFlows.emplace_back();
    flow.nWidth = ToFixed(std::clamp(nWidth, 0, kMaxWidth));
    m_lines.SetFlow(flow);
}

LayoutBoxes DocumentLayout::Run() {
    for (const Item& item : m_document.aItems) {
        Visit(item);
    }
    m_lines.EndParagraph();
    m_boxes.nHeight = HeldCoordinate(m_aFlows.front().nY);
    AddUpPositions();
    Shrink(m_boxes.aLines);
    Shrink(m_boxes.aFragments);
    return std::move(m_boxes);
}

void DocumentLayout::Visit(const Item& item) {
    switch (item.kind) {
        case ItemKind::Text:
            m_lines.AddText(item);
            break;
        case ItemKind::Break:
            m_lines.AddBreak(item);
            break;
        case ItemKind::Paragraph:
            m_lines.EndParagraph();
            break;
        case ItemKind::Tab:
            m_lines.AddTab(item);
            break;
        case ItemKind::Rule:
            m_lines.AddRule(item);
            break;
        case ItemKind::Image:
            m_lines.AddImage(item);
            break;
        case ItemKind::BoxOpen:
            m_lines.OpenBox(item);
            break;
        case ItemKind::BoxClose:
            m_lines.CloseBox(item);
            break;
        case ItemKind::TableOpen:
            BeginTable(item.nOffset);
            break;
        case ItemKind::TableClose:
            EndTable();
            break;
        case ItemKind::RowOpen:
            break;
        case ItemKind::CellOpen:
            BeginCell(item.nOffset);
            break;
        case ItemKind::CellClose:
            EndCell(item.nOffset);
            break;
    }
}

// --- tables -----------------------------------------------------------------------------------

void DocumentLayout::BeginTable(std::uint32_t nTable) {
    m_lines.EndParagraph();
    Flow& flow = m_aFlows.back();
    const TableAttributes& wanted = m_document.aTables[nTable];
    const TableMeasure& measure = m_measures.aTables[nTable];
    const Fixed available =
        std::max<Fixed>(0, flow.nWidth - ToFixed(wanted.margin[kLeft] + wanted.margin[kRight]));
    Fixed width = std::min(measure.nMaxWidth, std::max(available, measure.nMinWidth));
    if (const std::int64_t given = GivenWidth(wanted, m_document); given >= 0) {
        width = std::max(measure.nMinWidth, ToFixed(given));
    } else if (wanted.width.has_value()) {
        const std::int64_t percent = std::min(wanted.width->nValue, 1000);
        width = std::max(measure.nMinWidth, available * percent / 100);
    }
    Fixed x = flow.nX + ToFixed(wanted.margin[kLeft]);
    if (const Fixed room = available - width; room > 0 && wanted.align != BlockAlign::Left) {
        x += wanted.align == BlockAlign::Center ? room / 2 : room;
    }
    OpenTable& table = m_aTables.emplace_back();
    table.nTable = nTable;
    table.nBlock = static_cast<std::uint32_t>(m_boxes.aBlocks.size());
    table.nFirstColumn = m_aColumnX.size();
    table.nFirstCell = m_aRowCells.size();
    BlockBox& block = m_boxes.aBlocks.emplace_back();
    block.nX = HeldCoordinate(RoundPixels(x));
    block.nWidth = HeldCoordinate(RoundPixels(x + width) - block.nX);
    block.nY = HeldCoordinate(flow.nY + wanted.margin[kTop]);
    block.nDecoration = wanted.nDecoration;
    block.nIndex = nTable;
    block.nParent = flow.nBlock;
    PlaceColumns(table, x, width);
}

// Spacing stands in front of each column and behind the last.
void DocumentLayout::PlaceColumns(const OpenTable& table, Fixed nX, Fixed nWidth) {
    const TableAttributes& wanted = m_document.aTables[table.nTable];
    const TableMeasure& measure = m_measures.aTables[table.nTable];
    const auto columns =
        std::span(m_measures.aColumns).subspan(measure.nFirstColumn, measure.nColumns);
    m_aWidths.resize(columns.size());
    ShareWidth(columns, nWidth - ToFixed(TableInsets(wanted, measure.nColumns)), m_aWidths);
    Fixed at = nX + ToFixed(wanted.border[kLeft] + wanted.nCellSpacing);
    for (const Fixed column : m_aWidths) {
        m_aColumnX.push_back(at);
        at += column + ToFixed(wanted.nCellSpacing);
    }
    m_aColumnX.push_back(at);
}

void DocumentLayout::BeginCell(std::uint32_t nCell) {
    const OpenTable& table = m_aTables.back();
    const TableAttributes& wantedTable = m_document.aTables[table.nTable];
    const CellAttributes& wanted = m_document.aCells[nCell];
    const GridCell& grid = m_measures.aCells[nCell];
    const Fixed* const columnX = m_aColumnX.data() + table.nFirstColumn;
    const Fixed x = columnX[grid.nColumn];
    const Fixed end = columnX[grid.nColumn + grid.nColSpan] - ToFixed(wantedTable.nCellSpacing);
    m_aCellBlocks.push_back(static_cast<std::uint32_t>(m_boxes.aBlocks.size()));
    m_aRowCells.emplace_back();
    BlockBox& block = m_boxes.aBlocks.emplace_back();
    block.bCell = true;
    block.nX = HeldCoordinate(RoundPixels(x));
    block.nWidth = HeldCoordinate(RoundPixels(end) - block.nX);
    block.nDecoration = wanted.nDecoration;
    block.nIndex = nCell;
    block.nParent = table.nBlock;

    Flow flow;
    flow.nX = x + ToFixed(wanted.border[kLeft] + wanted.padding[kLeft]);
    flow.nWidth = std::max<Fixed>(0, end - x - ToFixed(CellInsets(wanted)));
    flow.nBlock = m_aCellBlocks.back();
    flow.nStyle = wanted.nStyle;
    flow.nOuterBoxes = m_lines.OpenBoxes();
    m_lines.SetFlow(m_aFlows.emplace_back(flow));
}

void DocumentLayout::EndCell(std::uint32_t nCell) {
    m_lines.EndParagraph();
    const Flow flow = m_aFlows.back();
    m_aFlows.pop_back();
    m_lines.SetFlow(m_aFlows.back());
    const CellAttributes& wanted = m_document.aCells[nCell];
    const GridCell& grid = m_measures.aCells[nCell];
    const std::int64_t top = wanted.border[kTop] + wanted.padding[kTop];
    RowCell& cell = m_aRowCells.back();
    cell.nRow = static_cast<std::uint32_t>(grid.nRow);
    cell.nSpan = static_cast<std::uint32_t>(grid.nRowSpan);
    cell.nHeight = std::max<std::int64_t>(flow.nY, wanted.nHeight) + top + wanted.border[kBottom] +
                   wanted.padding[kBottom];
    cell.bFixed = wanted.nHeight != 0;
    if (wanted.verticalAlign == VerticalAlign::Baseline && flow.nFirstBaseline >= 0) {
        cell.nBaseline = top + flow.nFirstBaseline;
    }
    // Until the rows are known: how high the content itself is.
    m_boxes.aBlocks[m_aCellBlocks.back()].nContentY = HeldCoordinate(flow.nY);
}

// The cell's place in its row is known; its content stands in it as its alignment says.
void DocumentLayout::PlaceContent(BlockBox& block, const RowCell& cell, const Row& row) const {
    const CellAttributes& wanted = m_document.aCells[block.nIndex];
    const std::int64_t top = wanted.border[kTop] + wanted.padding[kTop];
    const std::int64_t room =
        block.nHeight - top - wanted.border[kBottom] - wanted.padding[kBottom] - block.nContentY;
    std::int64_t offset = 0;
    switch (wanted.verticalAlign) {
        case VerticalAlign::Middle:
            offset = room / 2;
            break;
        case VerticalAlign::Bottom:
            offset = room;
            break;
        case VerticalAlign::Baseline:
            offset = cell.nBaseline >= 0 ? row.nAscent - cell.nBaseline : 0;
            break;
        case VerticalAlign::Top:
            break;
    }
    block.nContentY = HeldCoordinate(block.nY + top + offset);
}

void DocumentLayout::PlaceRows(const OpenTable& table) {
    const TableAttributes& wanted = m_document.aTables[table.nTable];
    const std::int64_t spacing = wanted.nCellSpacing;
    const std::int64_t edges = wanted.border[kTop] + wanted.border[kBottom] + 2 * spacing;
    m_aRows.assign(m_measures.aTables[table.nTable].nRows, {});
    MeasureRows(std::span(m_aRowCells).subspan(table.nFirstCell), spacing, wanted.nHeight - edges,
                m_aRows);
    m_aRowTop.resize(m_aRows.size() + 1);
    m_aRowTop[0] = wanted.border[kTop] + spacing;
    for (std::size_t i = 0; i < m_aRows.size(); ++i) {
        m_aRowTop[i + 1] = m_aRowTop[i] + m_aRows[i].nHeight + spacing;
    }
    for (std::size_t i = table.nFirstCell; i < m_aRowCells.size(); ++i) {
        const RowCell& cell = m_aRowCells[i];
        BlockBox& block = m_boxes.aBlocks[m_aCellBlocks[i]];
        block.nY = HeldCoordinate(m_aRowTop[cell.nRow]);
        block.nHeight =
            HeldCoordinate(m_aRowTop[cell.nRow + cell.nSpan] - spacing - m_aRowTop[cell.nRow]);
        PlaceContent(block, cell, m_aRows[cell.nRow]);
    }
    const std::int64_t height =
        (m_aRows.empty() ? wanted.border[kTop] : m_aRowTop.back()) + wanted.border[kBottom];
    m_boxes.aBlocks[table.nBlock].nHeight =
        HeldCoordinate(std::max<std::int64_t>(height, wanted.nHeight));
}

void DocumentLayout::EndTable() {
    const OpenTable table = m_aTables.back();
    m_aTables.pop_back();
    const TableAttributes& wanted = m_document.aTables[table.nTable];
    PlaceRows(table);
    m_aColumnX.resize(table.nFirstColumn);
    m_aRowCells.resize(table.nFirstCell);
    m_aCellBlocks.resize(table.nFirstCell);
    const std::int64_t height = m_boxes.aBlocks[table.nBlock].nHeight;
    m_aFlows.back().nY += wanted.margin[kTop] + height + wanted.margin[kBottom];
}

// Blocks stand behind the blocks around them, so one walk makes every position absolute.
void DocumentLayout::AddUpPositions() {
    std::int64_t right = 0;
    const auto contentTop = [&](std::uint32_t nBlock) -> std::int64_t {
        return nBlock == kNone ? 0 : m_boxes.aBlocks[nBlock].nContentY;
    };
    for (BlockBox& block : m_boxes.aBlocks) {
        const std::int64_t top =
            block.bCell ? m_boxes.aBlocks[block.nParent].nY : contentTop(block.nParent);
        block.nY = HeldCoordinate(block.nY + top);
        block.nContentY = HeldCoordinate(block.nContentY + top);
        right = std::max<std::int64_t>(right, std::int64_t{block.nX} + block.nWidth);
    }
    for (LineBox& line : m_boxes.aLines) {
        const std::int64_t top = contentTop(line.nBlock);
        line.nY = HeldCoordinate(line.nY + top);
        right = std::max<std::int64_t>(right, std::int64_t{line.nX} + line.nWidth);
        for (std::uint32_t i = 0; i < line.nFragments && top != 0; ++i) {
            Fragment& fragment = m_boxes.aFragments[line.nFirstFragment + i];
            fragment.nY = HeldCoordinate(fragment.nY + top);
        }
    }
    m_boxes.nWidth = HeldCoordinate(right);
}

}  // namespace

LayoutBoxes LayoutDocument(const StyledDocument& document, TextMeasurer& measurer,
                           std::int32_t nWidth) {
    return DocumentLayout(document, measurer, nWidth).Run();
}

}  // namespace mvp::richtext
