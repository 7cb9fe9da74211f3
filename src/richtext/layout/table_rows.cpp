#include "richtext/layout/table_rows.h"

#include <algorithm>

namespace mvp::richtext {
namespace {

// More height for some rows, in proportion to the heights of those whose height is not given, or of
// all, or evenly.
void Share(std::span<Row> rows, std::int64_t nExcess) {
    std::int64_t free = 0;
    std::int64_t all = 0;
    for (const Row& row : rows) {
        all += row.nHeight;
        free += row.bFixed ? 0 : row.nHeight;
    }
    const auto weightOf = [&](const Row& row) -> std::int64_t {
        if (free != 0) {
            return row.bFixed ? 0 : row.nHeight;
        }
        return all != 0 ? row.nHeight : 1;
    };
    const std::int64_t weights = free != 0  ? free
                                 : all != 0 ? all
                                            : static_cast<std::int64_t>(rows.size());
    std::int64_t seen = 0;
    std::int64_t given = 0;
    for (Row& row : rows) {
        seen += weightOf(row);
        const std::int64_t upToHere = nExcess * seen / weights;
        row.nHeight += upToHere - given;
        given = upToHere;
    }
}

void Fill(std::span<Row> rows, std::int64_t nHeight) {
    std::int64_t sum = 0;
    for (const Row& row : rows) {
        sum += row.nHeight;
    }
    if (nHeight > sum && !rows.empty()) {
        Share(rows, nHeight - sum);
    }
}

}  // namespace

void MeasureRows(std::span<const RowCell> cells, std::int64_t nSpacing, std::int64_t nTableHeight,
                 std::span<Row> rows) {
    std::vector<RowCell> spanning;
    for (const RowCell& cell : cells) {
        Row& row = rows[cell.nRow];
        if (cell.nBaseline >= 0) {
            row.nAscent = std::max(row.nAscent, cell.nBaseline);
        }
        if (cell.nSpan == 1) {
            row.nHeight = std::max(row.nHeight, cell.nHeight);
            row.bFixed = row.bFixed || cell.bFixed;
            row.nDescent = cell.nBaseline >= 0
                               ? std::max(row.nDescent, cell.nHeight - cell.nBaseline)
                               : row.nDescent;
        } else {
            spanning.push_back(cell);
        }
    }
    for (Row& row : rows) {
        row.nHeight = std::max(row.nHeight, row.nDescent != 0 ? row.nAscent + row.nDescent : 0);
    }
    std::stable_sort(spanning.begin(), spanning.end(),
                     [](const RowCell& a, const RowCell& b) { return a.nSpan < b.nSpan; });
    for (const RowCell& cell : spanning) {
        Fill(rows.subspan(cell.nRow, cell.nSpan), cell.nHeight - nSpacing * (cell.nSpan - 1));
    }
    if (!rows.empty()) {
        Fill(rows, nTableHeight - nSpacing * (static_cast<std::int64_t>(rows.size()) - 1));
    }
}

}  // namespace mvp::richtext
