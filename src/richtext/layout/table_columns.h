// The widths of a table's columns, after the rules browsers share: each column has a least width
// (its longest word) and a most width (its longest line), a width in pixels or a share in per cent;
// the room is given out between those.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace mvp::richtext {

// Widths inside a table are in 64ths of a pixel, so that what is shared out adds up.
using Fixed = std::int64_t;
constexpr Fixed kFixedOne = 64;

constexpr Fixed ToFixed(std::int64_t nPixels) {
    return nPixels * kFixedOne;
}
constexpr std::int64_t FloorPixels(Fixed n) {
    return n >= 0 ? n / kFixedOne : -((-n + kFixedOne - 1) / kFixedOne);
}
constexpr std::int64_t RoundPixels(Fixed n) {
    return FloorPixels(n + kFixedOne / 2);
}

// Wider cells count as this wide; it keeps the products below within 64 bits.
constexpr std::int64_t kMaxCellWidth = 1'000'000;

struct Column {
    Fixed nMin = 0;
    Fixed nMax = 0;
    std::int32_t nPercent = 0;  // 0: none
    bool bFixed = false;        // a cell gives it a width in pixels, which is nMax then
};

struct ColumnCell {
    std::uint32_t nColumn = 0;
    std::uint32_t nSpan = 1;
    Fixed nMin = 0;
    Fixed nMax = 0;
    std::int32_t nPercent = 0;
    bool bFixed = false;
};

// Fills in the columns from the cells, those of few columns before those of many.
void MeasureColumns(std::span<const ColumnCell> cells, Fixed nSpacing, std::span<Column> columns);

struct ColumnTotals {
    Fixed nMin = 0;
    Fixed nMax = 0;
};
ColumnTotals TotalOf(std::span<const Column> columns);

// Gives out nWidth to the columns; at least each one's nMin.
void ShareWidth(std::span<const Column> columns, Fixed nWidth, std::span<Fixed> widths);

}  // namespace mvp::richtext
