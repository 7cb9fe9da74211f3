// Where the cells of one table stand: rows, columns, and the slots that spans cover. Columns that
// no cell begins in are left out at the end, so a span of 100 over two cells covers two columns.
#pragma once

#include <cstdint>
#include <vector>

namespace mvp::richtext {

// A table has at most so many columns; further cells of a row go on in a row of their own.
constexpr std::int32_t kMaxColumns = 500;

struct GridCell {
    std::int32_t nRow = 0;
    std::int32_t nColumn = 0;
    std::int32_t nRowSpan = 1;
    std::int32_t nColSpan = 1;
};

class TableGrid {
public:
    // Begins a new table; the storage of the one before is used again.
    void Clear();
    void BeginRow();
    // Places the next cell of the row; cells are numbered from 0 in the order of their placing.
    void Place(std::int32_t nColSpan, std::int32_t nRowSpan);

    // No more cells: cuts the spans to the table.
    void Finish();

    const std::vector<GridCell>& Cells() const { return m_aCells; }
    std::int32_t Rows() const { return m_nRow + 1; }
    std::int32_t Columns() const { return m_nColumns; }

private:
    // Slots that a cell of an earlier row covers.
    struct Covered {
        std::int32_t nColumn;
        std::int32_t nEnd;
        std::int32_t nRowEnd;
        std::uint32_t nCell;
    };
    void EndRow();
    void CutSpans();

    std::vector<GridCell> m_aCells;
    std::vector<Covered> m_aCovered;  // by column
    std::vector<Covered> m_aNew;      // of the row at hand
    std::vector<std::int32_t> m_aPlace;
    std::size_t m_nNextCovered = 0;
    std::int32_t m_nRow = -1;
    std::int32_t m_nColumn = 0;
    std::int32_t m_nColumns = 0;
};

}  // namespace mvp::richtext
