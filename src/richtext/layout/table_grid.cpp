#include "richtext/layout/table_grid.h"

#include <algorithm>

namespace mvp::richtext {

void TableGrid::Clear() {
    m_aCells.clear();
    m_aCovered.clear();
    m_aNew.clear();
    m_nNextCovered = 0;
    m_nRow = -1;
    m_nColumn = 0;
    m_nColumns = 0;
}

void TableGrid::EndRow() {
    const auto middle = static_cast<std::ptrdiff_t>(m_aCovered.size());
    m_aCovered.insert(m_aCovered.end(), m_aNew.begin(), m_aNew.end());
    std::inplace_merge(m_aCovered.begin(), m_aCovered.begin() + middle, m_aCovered.end(),
                       [](const Covered& a, const Covered& b) { return a.nColumn < b.nColumn; });
    m_aNew.clear();
}

void TableGrid::BeginRow() {
    if (!m_aNew.empty()) {
        EndRow();
    }
    ++m_nRow;
    std::erase_if(m_aCovered, [&](const Covered& covered) { return covered.nRowEnd <= m_nRow; });
    m_nColumn = 0;
    m_nNextCovered = 0;
}

// Ends the spans that would reach into the next row.
void TableGrid::CutSpans() {
    EndRow();
    for (const Covered& covered : m_aCovered) {
        m_aCells[covered.nCell].nRowSpan = m_nRow + 1 - m_aCells[covered.nCell].nRow;
    }
    m_aCovered.clear();
}

void TableGrid::Place(std::int32_t nColSpan, std::int32_t nRowSpan) {
    while (m_nNextCovered < m_aCovered.size() && m_aCovered[m_nNextCovered].nColumn <= m_nColumn) {
        m_nColumn = std::max(m_nColumn, m_aCovered[m_nNextCovered].nEnd);
        ++m_nNextCovered;
    }
    if (m_nColumn >= kMaxColumns) {
        CutSpans();
        BeginRow();
    }
    GridCell cell{m_nRow, m_nColumn, nRowSpan, std::min(nColSpan, kMaxColumns - m_nColumn)};
    m_nColumn += cell.nColSpan;
    if (nRowSpan > 1) {
        m_aNew.push_back({cell.nColumn, m_nColumn, m_nRow + nRowSpan,
                          static_cast<std::uint32_t>(m_aCells.size())});
    }
    m_aCells.push_back(cell);
}

void TableGrid::Finish() {
    std::int32_t widest = 0;
    for (const GridCell& cell : m_aCells) {
        widest = std::max(widest, cell.nColumn + 1);
    }
    // m_aPlace[c]: how many columns that hold a cell's beginning stand before column c.
    m_aPlace.assign(static_cast<std::size_t>(widest) + 1, 0);
    for (const GridCell& cell : m_aCells) {
        m_aPlace[static_cast<std::size_t>(cell.nColumn) + 1] = 1;
    }
    for (std::size_t i = 1; i < m_aPlace.size(); ++i) {
        m_aPlace[i] += m_aPlace[i - 1];
    }
    m_nColumns = m_aPlace.back();
    for (GridCell& cell : m_aCells) {
        const std::int32_t end = std::min(cell.nColumn + cell.nColSpan, widest);
        cell.nColumn = m_aPlace[static_cast<std::size_t>(cell.nColumn)];
        cell.nColSpan = m_aPlace[static_cast<std::size_t>(end)] - cell.nColumn;
        cell.nRowSpan = std::min(cell.nRowSpan, Rows() - cell.nRow);
    }
}

}  // namespace mvp::richtext
