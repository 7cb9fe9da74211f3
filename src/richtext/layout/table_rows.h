// The heights of a table's rows: each holds its cells; what a cell over several rows needs beyond
// them, and what the table is to be higher, is shared out.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace mvp::richtext {

struct Row {
    std::int64_t nHeight = 0;
    std::int64_t nAscent = 0;  // of its cells that stand on the baseline, from the row's top
    std::int64_t nDescent = 0;
    bool bFixed = false;  // a cell gives it a height
};

struct RowCell {
    std::uint32_t nRow = 0;
    std::uint32_t nSpan = 1;
    std::int64_t nHeight = 0;     // border box
    std::int64_t nBaseline = -1;  // below its top, of a cell that stands on the row's baseline
    bool bFixed = false;
};

// nTableHeight: what the rows and the spacing between them are to fill at least.
void MeasureRows(std::span<const RowCell> cells, std::int64_t nSpacing, std::int64_t nTableHeight,
                 std::span<Row> rows);

}  // namespace mvp::richtext
