#include "richtext/layout/intrinsic_widths.h"

#include <algorithm>

namespace mvp::richtext {
namespace {

class IntrinsicWidths {
public:
    IntrinsicWidths(const StyledDocument& document, TextMeasurer& measurer)
        : m_document(document), m_measurer(measurer) {
        m_measures.aCells.resize(document.aCells.size());
        m_measures.aTables.resize(document.aTables.size());
        m_aContents.resize(1);
    }

    DocumentMeasures Run() {
        for (const Item& item : m_document.aItems) {
            Visit(item);
        }
        return std::move(m_measures);
    }

private:
    // The widths of what is between a cell's open and close items.
    struct Content {
        std::int64_t nMin = 0;
        std::int64_t nMax = 0;
        std::int64_t nLine = 0;
        std::int64_t nWord = 0;
        std::int64_t nSpace = 0;  // in front of the word
        bool bLine = false;
        bool bWord = false;
        WordState state;
    };
    struct OpenTable {
        std::size_t nFirstCell = 0;  // of m_aClosed and m_aWidths
        std::uint32_t nRows = 0;     // begun so far
    };
    struct ClosedCell {
        std::uint32_t nCell;
        std::uint32_t nRow;  // how many rows were begun before it
    };

    void Visit(const Item& item);
    void AddText(const Item& item);
    void AddBlock(std::int64_t nMin, std::int64_t nMax);
    void EndWord();
    void EndLine();
    void CloseCell(std::uint32_t nCell);
    void PlaceCells(const OpenTable& table);
    void CloseTable(std::uint32_t nTable);
    Content& Top() { return m_aContents.back(); }

    const StyledDocument& m_document;
    TextMeasurer& m_measurer;
    DocumentMeasures m_measures;
    std::vector<Content> m_aContents;
    std::vector<OpenTable> m_aTables;
    // Of the open tables: an inner one's stand behind those of the table around it, and go with it.
    std::vector<ClosedCell> m_aClosed;
    std::vector<ColumnCell> m_aWidths;
    TableGrid m_grid;
};

void IntrinsicWidths::Visit(const Item& item) {
    // Text outside of tables has no part in this.
    if (m_aTables.empty() && item.kind != ItemKind::TableOpen) {
        return;
    }
    const StyleTable& styles = m_document.styles;
    switch (item.kind) {
        case ItemKind::Text:
            AddText(item);
            break;
        case ItemKind::Break:
        case ItemKind::Paragraph:
            EndLine();
            break;
        case ItemKind::Tab: {
            EndWord();
            const std::int64_t tab = TabDistance(styles.FontOf(item.nStyle));
            Top().nLine = (Top().nLine / tab + 1) * tab;
            Top().bLine = true;
            break;
        }
        case ItemKind::Image:
            EndWord();
            Top().nWord = m_document.aImages[item.nOffset].nWidth;
            Top().bWord = true;
            EndWord();
            break;
        case ItemKind::BoxOpen:
        case ItemKind::BoxClose:
            Top().nWord += styles.BoxOf(item.nStyle)
                               .EdgeWidth(item.kind == ItemKind::BoxOpen ? kLeft : kRight);
            Top().bWord = true;
            break;
        case ItemKind::Rule: {
            const auto& width = m_document.aRules[item.nOffset].width;
            const bool given = width.has_value() && width->unit != LengthUnit::Percent;
            const std::int32_t innerWidth =
                given ? ResolveLength(*width, 0, LengthUse::Size, styles.ContextOf(item.nStyle))
                      : 0;
            AddBlock(std::clamp(innerWidth, 0, kMaxExtent), std::clamp(innerWidth, 0, kMaxExtent));
            break;
        }
        case ItemKind::TableOpen:
            m_aTables.push_back({m_aClosed.size(), 0});
            break;
        case ItemKind::TableClose:
            CloseTable(item.nOffset);
            break;
        case ItemKind::RowOpen:
            ++m_aTables.back().nRows;
            break;
        case ItemKind::CellOpen:
            m_aContents.emplace_back();
            break;
        case ItemKind::CellClose:
            CloseCell(item.nOffset);
            break;
    }
}

void IntrinsicWidths::AddText(const Item& item) {
    const Font& font = m_document.styles.FontOf(item.nStyle);
    const std::string_view text = m_document.TextOf(item);
    const char* p = text.data();
    const char* const end = p + text.size();
    Content& content = Top();
    while (p != end) {
        if (*p == ' ') {
            EndWord();
            content.nSpace = font.nSpaceWidth;
            ++p;
            continue;
        }
        if (content.state.bHyphen && ClassOf(*p) == BreakClass::Letter) {
            EndWord();
        }
        bool breaks = false;
        const char* const piece = p;
        p = EndOfPiece(p, end, content.state, breaks);
        content.nWord += std::max(
            0, m_measurer.TextWidth(font.handle, {piece, static_cast<std::size_t>(p - piece)}));
        content.bWord = true;
        if (breaks) {
            EndWord();
        }
    }
}

void IntrinsicWidths::EndWord() {
    Content& content = Top();
    if (content.bWord) {
        content.nMin = std::max(content.nMin, content.nWord);
        content.nLine += content.nWord + (content.bLine ? content.nSpace : 0);
        content.bLine = true;
        content.nSpace = 0;
        content.nWord = 0;
        content.bWord = false;
    }
    content.state = {};
}

void IntrinsicWidths::EndLine() {
    EndWord();
    Content& content = Top();
    content.nMax = std::max(content.nMax, content.nLine);
    content.nLine = 0;
    content.nSpace = 0;
    content.bLine = false;
}

void IntrinsicWidths::AddBlock(std::int64_t nMin, std::int64_t nMax) {
    EndLine();
    Top().nMin = std::max(Top().nMin, nMin);
    Top().nMax = std::max(Top().nMax, nMax);
}

void IntrinsicWidths::CloseCell(std::uint32_t nCell) {
    EndLine();
    const Content content = Top();
    m_aContents.pop_back();
    const CellAttributes& wanted = m_document.aCells[nCell];
    const std::int64_t insets = CellInsets(wanted);
    const auto outer = [&](std::int64_t innerWidth) {
        return ToFixed(std::min(innerWidth + insets, kMaxCellWidth));
    };
    ColumnCell widths;
    widths.nMin = outer(content.nMin);
    widths.nMax = std::max(widths.nMin, outer(content.nMax));
    if (wanted.width.has_value() && wanted.width->unit == LengthUnit::Percent) {
        widths.nPercent = std::min(wanted.width->nValue, 100);
    } else if (wanted.width.has_value()) {
        const std::int32_t innerWidth = ResolveLength(*wanted.width, 0, LengthUse::Size,
                                                      m_document.styles.ContextOf(wanted.nStyle));
        widths.nMax = std::max(widths.nMin, outer(std::clamp(innerWidth, 0, kMaxExtent)));
        widths.bFixed = true;
    }
    m_aWidths.push_back(widths);
    m_aClosed.push_back({nCell, m_aTables.back().nRows});
}

// Finds the places of the table's cells.
void IntrinsicWidths::PlaceCells(const OpenTable& table) {
    m_grid.Clear();
    std::uint32_t row = 0;
    const auto beginRows = [&](std::uint32_t nUpTo) {
        for (; row < nUpTo; ++row) {
            m_grid.BeginRow();
        }
    };
    for (std::size_t i = table.nFirstCell; i < m_aClosed.size(); ++i) {
        beginRows(m_aClosed[i].nRow);
        const CellAttributes& wanted = m_document.aCells[m_aClosed[i].nCell];
        m_grid.Place(wanted.nColSpan, wanted.nRowSpan);
    }
    beginRows(table.nRows);
    m_grid.Finish();
    for (std::size_t i = table.nFirstCell; i < m_aClosed.size(); ++i) {
        const GridCell& cell = m_grid.Cells()[i - table.nFirstCell];
        m_measures.aCells[m_aClosed[i].nCell] = cell;
        m_aWidths[i].nColumn = static_cast<std::uint32_t>(cell.nColumn);
        m_aWidths[i].nSpan = static_cast<std::uint32_t>(cell.nColSpan);
    }
}

void IntrinsicWidths::CloseTable(std::uint32_t nTable) {
    const OpenTable table = m_aTables.back();
    m_aTables.pop_back();
    PlaceCells(table);
    TableMeasure& measure = m_measures.aTables[nTable];
    measure.nFirstColumn = static_cast<std::uint32_t>(m_measures.aColumns.size());
    measure.nColumns = static_cast<std::uint32_t>(m_grid.Columns());
    measure.nRows = static_cast<std::uint32_t>(m_grid.Rows());
    m_measures.aColumns.resize(m_measures.aColumns.size() + measure.nColumns);
    const auto columns = std::span(m_measures.aColumns).subspan(measure.nFirstColumn);
    const TableAttributes& wanted = m_document.aTables[nTable];
    MeasureColumns(std::span(m_aWidths).subspan(table.nFirstCell), ToFixed(wanted.nCellSpacing),
                   columns);
    m_aClosed.resize(table.nFirstCell);
    m_aWidths.resize(table.nFirstCell);
    const ColumnTotals totals = TotalOf(columns);
    const Fixed insets = ToFixed(TableInsets(wanted, measure.nColumns));
    measure.nMinWidth = totals.nMin + insets;
    measure.nMaxWidth = totals.nMax + insets;
    if (m_aTables.empty()) {
        return;
    }
    const std::int64_t margins = wanted.margin[kLeft] + wanted.margin[kRight];
    const auto pixels = [&](Fixed n) { return FloorPixels(n + kFixedOne - 1) + margins; };
    if (const std::int64_t given = GivenWidth(wanted, m_document); given >= 0) {
        const Fixed innerWidth = std::max(measure.nMinWidth, ToFixed(given));
        AddBlock(pixels(innerWidth), pixels(innerWidth));
    } else {
        AddBlock(pixels(measure.nMinWidth), pixels(measure.nMaxWidth));
    }
}

}  // namespace

std::int64_t TableInsets(const TableAttributes& table, std::uint32_t nColumns) {
    const std::int64_t spacings = nColumns != 0 ? std::int64_t{nColumns} + 1 : 0;
    return table.border[kLeft] + table.border[kRight] + table.nCellSpacing * spacings;
}

std::int32_t CellInsets(const CellAttributes& cell) {
    return cell.border[kLeft] + cell.border[kRight] + cell.padding[kLeft] + cell.padding[kRight];
}

std::int64_t GivenWidth(const TableAttributes& table, const StyledDocument& document) {
    if (!table.width.has_value() || table.width->unit == LengthUnit::Percent) {
        return -1;
    }
    return std::clamp(
        ResolveLength(*table.width, 0, LengthUse::Size, document.styles.ContextOf(table.nStyle)), 0,
        kMaxExtent);
}

std::int64_t TabDistance(const Font& font) {
    constexpr std::int64_t kSpacesPerTab = 8;
    return std::max<std::int64_t>(1, kSpacesPerTab * font.nSpaceWidth);
}

DocumentMeasures MeasureDocument(const StyledDocument& document, TextMeasurer& measurer) {
    return IntrinsicWidths(document, measurer).Run();
}

}  // namespace mvp::richtext
