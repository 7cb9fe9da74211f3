#include "richtext/layout/table_columns.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace mvp::richtext {
namespace {

// Four guesses at a column's width, each at least the one before. The width that is to be given out
// lies between the sums of two of them, or beyond the last.
enum Guess : std::uint8_t { kLeast, kPercents, kFixeds, kMost, kGuesses };

Fixed GuessOf(const Column& column, Guess guess, Fixed nWidth) {
    if (guess == kLeast) {
        return column.nMin;
    }
    if (column.nPercent > 0) {
        return std::max(column.nMin, nWidth * column.nPercent / 100);
    }
    const bool bMost = guess == kMost || (guess == kFixeds && column.bFixed);
    return bMost ? std::max(column.nMin, column.nMax) : column.nMin;
}

Fixed SumOf(std::span<const Column> columns, Guess guess, Fixed nWidth) {
    return std::accumulate(
        columns.begin(), columns.end(), Fixed{0},
        [&](Fixed nSum, const Column& column) { return nSum + GuessOf(column, guess, nWidth); });
}

// Which columns grow, and by what measure, when there is more room than every column's most.
enum class Growth : std::uint8_t { Automatic, Fixed, Percent, AutomaticEvenly, Evenly };

Fixed WeightOf(const Column& column, Growth growth) {
    const bool bAutomatic = !column.bFixed && column.nPercent == 0;
    switch (growth) {
        case Growth::Automatic:
            return bAutomatic ? column.nMax : 0;
        case Growth::Fixed:
            return column.bFixed && column.nPercent == 0 ? column.nMax : 0;
        case Growth::Percent:
            return column.nPercent;
        case Growth::AutomaticEvenly:
            return bAutomatic ? 1 : 0;
        case Growth::Evenly:
            break;
    }
    return 1;
}

void Grow(std::span<const Column> columns, Fixed nWidth, Fixed nExcess, std::span<Fixed> widths) {
    for (const Growth growth : {Growth::Automatic, Growth::Fixed, Growth::Percent,
                                Growth::AutomaticEvenly, Growth::Evenly}) {
        Fixed nWeights = 0;
        for (const Column& column : columns) {
            nWeights += WeightOf(column, growth);
        }
        if (nWeights == 0) {
            continue;
        }
        Fixed nLeft = nExcess;
        std::size_t nLast = 0;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const Fixed nWeight = WeightOf(columns[i], growth);
            const Fixed nPart = nExcess * nWeight / nWeights;
            widths[i] = GuessOf(columns[i], kMost, nWidth) + nPart;
            nLeft -= nPart;
            nLast = nWeight != 0 ? i : nLast;
        }
        widths[nLast] += nLeft;
        return;
    }
}

void Encompass(const ColumnCell& cell, Column& column) {
    column.nMin = std::max(column.nMin, cell.nMin);
    column.nPercent = std::max(column.nPercent, cell.nPercent);
    if (cell.bFixed && !column.bFixed) {
        column.bFixed = true;
        column.nMax = cell.nMax;
    } else if (cell.bFixed || !column.bFixed) {
        column.nMax = std::max(column.nMax, cell.nMax);
    }
}

// What a spanning cell's share in per cent exceeds that of its columns goes to those without one.
void SpreadPercent(const ColumnCell& cell, std::span<Column> columns) {
    std::int32_t nSurplus = cell.nPercent;
    Fixed nWeights = 0;
    std::int32_t nFree = 0;
    for (const Column& column : columns) {
        nSurplus -= column.nPercent;
        nWeights += column.nPercent == 0 ? column.nMax : 0;
        nFree += column.nPercent == 0 ? 1 : 0;
    }
    if (nSurplus <= 0 || nFree == 0) {
        return;
    }
    for (Column& column : columns) {
        if (column.nPercent == 0) {
            column.nPercent = static_cast<std::int32_t>(
                nWeights != 0 ? nSurplus * column.nMax / nWeights : nSurplus / nFree);
        }
    }
}

void SpreadWidths(const ColumnCell& cell, Fixed nSpacing, std::span<Column> columns,
                  std::vector<Fixed>& scratch) {
    const Fixed nInner = nSpacing * (cell.nSpan - 1);
    scratch.resize(columns.size());
    ShareWidth(columns, std::max<Fixed>(0, cell.nMin - nInner), scratch);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].nMin = std::max(columns[i].nMin, scratch[i]);
        columns[i].nMax = std::max(columns[i].nMax, columns[i].nMin);
    }
    ShareWidth(columns, std::max<Fixed>(0, cell.nMax - nInner), scratch);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].nMax = std::max(columns[i].nMax, scratch[i]);
    }
}

}  // namespace

void MeasureColumns(std::span<const ColumnCell> cells, Fixed nSpacing, std::span<Column> columns) {
    std::vector<ColumnCell> spanning;
    for (const ColumnCell& cell : cells) {
        if (cell.nSpan == 1) {
            Encompass(cell, columns[cell.nColumn]);
        } else {
            spanning.push_back(cell);
        }
    }
    for (Column& column : columns) {
        column.nMax = std::max(column.nMax, column.nMin);
    }
    std::vector<Fixed> scratch;
    std::stable_sort(spanning.begin(), spanning.end(),
                     [](const ColumnCell& a, const ColumnCell& b) { return a.nSpan < b.nSpan; });
    for (const ColumnCell& cell : spanning) {
        const std::span<Column> spanned = columns.subspan(cell.nColumn, cell.nSpan);
        SpreadPercent(cell, spanned);
        SpreadWidths(cell, nSpacing, spanned, scratch);
    }
    std::int32_t nLeft = 100;
    for (Column& column : columns) {
        column.nPercent = std::min(column.nPercent, nLeft);
        nLeft -= column.nPercent;
    }
}

ColumnTotals TotalOf(std::span<const Column> columns) {
    ColumnTotals totals;
    Fixed nWithoutShare = 0;
    Fixed nByShares = 0;
    std::int32_t nPercent = 0;
    for (const Column& column : columns) {
        totals.nMin += column.nMin;
        totals.nMax += column.nMax;
        nPercent += column.nPercent;
        if (column.nPercent > 0) {
            nByShares = std::max(nByShares, column.nMax * 100 / column.nPercent);
        } else {
            nWithoutShare += column.nMax;
        }
    }
    // As wide as it takes for every share to hold its column's longest line.
    if (nWithoutShare != 0 && nPercent != 0) {
        const Fixed nRest =
            nPercent < 100 ? nWithoutShare * 100 / (100 - nPercent) : ToFixed(kMaxCellWidth);
        nByShares = std::max(nByShares, nRest);
    }
    totals.nMax = std::max(totals.nMax, std::min(nByShares, ToFixed(kMaxCellWidth)));
    return totals;
}

void ShareWidth(std::span<const Column> columns, Fixed nWidth, std::span<Fixed> widths) {
    std::array<Fixed, kGuesses> sums = {};
    for (const Guess guess : {kLeast, kPercents, kFixeds, kMost}) {
        sums[guess] = SumOf(columns, guess, nWidth);
    }
    if (nWidth > sums[kMost]) {
        Grow(columns, nWidth, nWidth - sums[kMost], widths);
        return;
    }
    std::size_t nUpper = kPercents;
    while (nUpper < kMost && sums[nUpper] < nWidth) {
        ++nUpper;
    }
    const auto upper = static_cast<Guess>(nUpper);
    const auto lower = static_cast<Guess>(nUpper - 1);
    const Fixed nRange = sums[upper] - sums[lower];
    const Fixed nOver = std::max<Fixed>(0, nWidth - sums[lower]);
    Fixed nLeft = nRange != 0 ? nOver : 0;
    std::size_t nLast = columns.size();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Fixed nLow = GuessOf(columns[i], lower, nWidth);
        const Fixed nDifference = GuessOf(columns[i], upper, nWidth) - nLow;
        const Fixed nPart = nRange != 0 ? nDifference * nOver / nRange : 0;
        widths[i] = nLow + nPart;
        nLeft -= nPart;
        nLast = nDifference != 0 ? i : nLast;
    }
    if (nLast != columns.size()) {
        widths[nLast] += nLeft;
    }
}

}  // namespace mvp::richtext
