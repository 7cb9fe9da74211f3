#include "richtext/layout/table_columns.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace mvp::richtext {
namespace {

// Four guesses at a column's width, each at least the one before. The width that is to be given out
// lies between the sums of two of them, or beyond the last.
using Guess = std::size_t;
constexpr Guess kLeast = 0;
constexpr Guess kPercents = 1;
constexpr Guess kFixeds = 2;
constexpr Guess kMost = 3;
constexpr Guess kGuesses = 4;

Fixed GuessOf(const Column& column, Guess guess, Fixed nWidth) {
    if (guess == kLeast) {
        return column.nMin;
    }
    if (column.nPercent > 0) {
        return std::max(column.nMin, nWidth * column.nPercent / 100);
    }
    const bool most = guess == kMost || (guess == kFixeds && column.bFixed);
    return most ? std::max(column.nMin, column.nMax) : column.nMin;
}

Fixed SumOf(std::span<const Column> columns, Guess guess, Fixed nWidth) {
    return std::accumulate(
        columns.begin(), columns.end(), Fixed{0},
        [&](Fixed nSum, const Column& column) { return nSum + GuessOf(column, guess, nWidth); });
}

// Which columns grow, and by what measure, when there is more room than every column's most.
enum class Growth : std::uint8_t { Automatic, Fixed, Percent, AutomaticEvenly, Evenly };

Fixed WeightOf(const Column& column, Growth growth) {
    const bool automatic = !column.bFixed && column.nPercent == 0;
    switch (growth) {
        case Growth::Automatic:
            return automatic ? column.nMax : 0;
        case Growth::Fixed:
            return column.bFixed && column.nPercent == 0 ? column.nMax : 0;
        case Growth::Percent:
            return column.nPercent;
        case Growth::AutomaticEvenly:
            return automatic ? 1 : 0;
        case Growth::Evenly:
            break;
    }
    return 1;
}

void Grow(std::span<const Column> columns, Fixed nWidth, Fixed nExcess, std::span<Fixed> widths) {
    for (const Growth growth : {Growth::Automatic, Growth::Fixed, Growth::Percent,
                                Growth::AutomaticEvenly, Growth::Evenly}) {
        Fixed weights = 0;
        for (const Column& column : columns) {
            weights += WeightOf(column, growth);
        }
        if (weights == 0) {
            continue;
        }
        Fixed left = nExcess;
        std::size_t last = 0;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const Fixed weight = WeightOf(columns[i], growth);
            const Fixed part = nExcess * weight / weights;
            widths[i] = GuessOf(columns[i], kMost, nWidth) + part;
            left -= part;
            last = weight != 0 ? i : last;
        }
        widths[last] += left;
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
    std::int32_t surplus = cell.nPercent;
    Fixed weights = 0;
    std::int32_t free = 0;
    for (const Column& column : columns) {
        surplus -= column.nPercent;
        weights += column.nPercent == 0 ? column.nMax : 0;
        free += column.nPercent == 0 ? 1 : 0;
    }
    if (surplus <= 0 || free == 0) {
        return;
    }
    for (Column& column : columns) {
        if (column.nPercent == 0) {
            column.nPercent = static_cast<std::int32_t>(
                weights != 0 ? surplus * column.nMax / weights : surplus / free);
        }
    }
}

void SpreadWidths(const ColumnCell& cell, Fixed nSpacing, std::span<Column> columns,
                  std::vector<Fixed>& scratch) {
    const Fixed inner = nSpacing * (cell.nSpan - 1);
    scratch.resize(columns.size());
    ShareWidth(columns, std::max<Fixed>(0, cell.nMin - inner), scratch);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].nMin = std::max(columns[i].nMin, scratch[i]);
        columns[i].nMax = std::max(columns[i].nMax, columns[i].nMin);
    }
    ShareWidth(columns, std::max<Fixed>(0, cell.nMax - inner), scratch);
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
    std::int32_t left = 100;
    for (Column& column : columns) {
        column.nPercent = std::min(column.nPercent, left);
        left -= column.nPercent;
    }
}

ColumnTotals TotalOf(std::span<const Column> columns) {
    ColumnTotals totals;
    Fixed withoutShare = 0;
    Fixed byShares = 0;
    std::int32_t percent = 0;
    for (const Column& column : columns) {
        totals.nMin += column.nMin;
        totals.nMax += column.nMax;
        percent += column.nPercent;
        if (column.nPercent > 0) {
            byShares = std::max(byShares, column.nMax * 100 / column.nPercent);
        } else {
            withoutShare += column.nMax;
        }
    }
    // As wide as it takes for every share to hold its column's longest line.
    if (withoutShare != 0 && percent != 0) {
        const Fixed rest =
            percent < 100 ? withoutShare * 100 / (100 - percent) : ToFixed(kMaxCellWidth);
        byShares = std::max(byShares, rest);
    }
    totals.nMax = std::max(totals.nMax, std::min(byShares, ToFixed(kMaxCellWidth)));
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
    std::size_t upperIndex = kPercents;
    while (upperIndex < kMost && sums[upperIndex] < nWidth) {
        ++upperIndex;
    }
    const auto upper = static_cast<Guess>(upperIndex);
    const auto lower = static_cast<Guess>(upperIndex - 1);
    const Fixed range = sums[upper] - sums[lower];
    const Fixed over = std::max<Fixed>(0, nWidth - sums[lower]);
    Fixed left = range != 0 ? over : 0;
    std::size_t last = columns.size();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Fixed low = GuessOf(columns[i], lower, nWidth);
        const Fixed difference = GuessOf(columns[i], upper, nWidth) - low;
        const Fixed part = range != 0 ? difference * over / range : 0;
        widths[i] = low + part;
        left -= part;
        last = difference != 0 ? i : last;
    }
    if (last != columns.size()) {
        widths[last] += left;
    }
}

}  // namespace mvp::richtext
