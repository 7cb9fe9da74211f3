// How a table's width is given out to its columns, and its height to its rows.
#include "richtext/table_columns.h"

#include <vector>

#include <gtest/gtest.h>

#include "richtext/table_grid.h"
#include "richtext/table_rows.h"

namespace mvp::richtext {
namespace {

Column Auto(int nMin, int nMax) {
    return {ToFixed(nMin), ToFixed(nMax), 0, false};
}
Column Given(int nMin, int nWidth) {
    return {ToFixed(nMin), ToFixed(nWidth), 0, true};
}
Column Percent(int nMin, int nMax, int nPercent) {
    return {ToFixed(nMin), ToFixed(nMax), nPercent, false};
}

TEST(TableColumns, ShareTheWidth) {
    const struct {
        std::vector<Column> columns;
        int nWidth;
        std::vector<int> widths;
    } kCases[] = {
        // Never below the least.
        {{Auto(30, 50), Auto(20, 90)}, 10, {30, 20}},
        // Between least and most: by what each could grow.
        {{Auto(10, 30), Auto(10, 70)}, 60, {20, 40}},
        // A share in per cent first, then a width in pixels, then the rest.
        {{Auto(10, 100), Given(10, 50), Percent(10, 20, 40)}, 100, {10, 50, 40}},
        {{Auto(10, 100), Given(10, 50)}, 100, {50, 50}},
        {{Auto(10, 100), Given(10, 50)}, 40, {10, 30}},
        {{Auto(10, 100), Percent(5, 10, 50)}, 100, {50, 50}},
        // More than most: to those without a width, else to those in pixels, else to the shares.
        {{Auto(5, 10), Auto(5, 30), Given(5, 20)}, 100, {20, 60, 20}},
        {{Given(5, 20), Given(5, 60), Percent(5, 5, 20)}, 200, {40, 120, 40}},
        {{Percent(5, 5, 20), Percent(5, 5, 30)}, 100, {40, 60}},
        {{Auto(0, 0), Auto(0, 0)}, 50, {25, 25}},
        {{}, 50, {}},
    };
    for (const auto& c : kCases) {
        std::vector<Fixed> widths(c.columns.size());
        ShareWidth(c.columns, ToFixed(c.nWidth), widths);
        std::vector<int> pixels;
        for (const Fixed width : widths) {
            pixels.push_back(static_cast<int>(RoundPixels(width)));
        }
        EXPECT_EQ(pixels, c.widths) << c.nWidth;
    }
}

TEST(TableColumns, TakeFromCellsOfOneColumnFirst) {
    const std::vector<ColumnCell> cells = {
        {0, 2, ToFixed(60), ToFixed(100), 0, false},  // over both, with 10 between
        {0, 1, ToFixed(10), ToFixed(30), 0, false},
        {1, 1, ToFixed(10), ToFixed(10), 0, false},
        {2, 1, ToFixed(10), ToFixed(40), 0, true},
        {2, 1, ToFixed(20), ToFixed(90), 0, false},  // the width in pixels stands
        {1, 2, 0, 0, 50, false},                     // a share for the two without one
    };
    std::vector<Column> columns(3);
    MeasureColumns(cells, ToFixed(10), columns);
    EXPECT_EQ(columns[0].nMin + columns[1].nMin, ToFixed(50));
    EXPECT_EQ(columns[0].nMax + columns[1].nMax, ToFixed(90));
    EXPECT_EQ(columns[2].nMin, ToFixed(20));
    EXPECT_EQ(columns[2].nMax, ToFixed(40));
    EXPECT_TRUE(columns[2].bFixed);
    EXPECT_EQ(columns[0].nPercent, 0);
    EXPECT_NEAR(columns[1].nPercent + columns[2].nPercent, 50, 1);

    // Shares end at a hundred together: the first ones have theirs.
    columns.assign(3, {});
    MeasureColumns(std::vector<ColumnCell>{{0, 1, 0, 0, 80, false}, {1, 1, 0, 0, 60, false}}, 0,
                   columns);
    EXPECT_EQ(columns[0].nPercent, 80);
    EXPECT_EQ(columns[1].nPercent, 20);
}

TEST(TableRows, HoldTheirCells) {
    const struct {
        std::vector<RowCell> cells;
        int nTableHeight;
        std::vector<int> heights;
    } kCases[] = {
        {{{0, 1, 10, -1, false}, {1, 1, 20, -1, false}}, 0, {10, 20, 0}},
        // A cell over rows: in proportion, but not to a row with a height of its own.
        {{{0, 2, 60, -1, false}, {0, 1, 10, -1, false}, {1, 1, 20, -1, false}}, 0, {20, 40, 0}},
        {{{0, 2, 60, -1, false}, {0, 1, 10, -1, true}, {1, 1, 20, -1, false}}, 0, {10, 50, 0}},
        {{{1, 2, 30, -1, false}}, 0, {0, 15, 15}},
        // On one baseline: the highest above it and the deepest below it.
        {{{0, 1, 20, 16, false}, {0, 1, 20, 4, false}}, 0, {32, 0, 0}},
        {{{0, 1, 10, -1, false}, {1, 1, 30, -1, false}}, 80, {20, 60, 0}},
    };
    for (const auto& c : kCases) {
        std::vector<Row> rows(3);
        MeasureRows(c.cells, 0, c.nTableHeight, rows);
        std::vector<int> heights;
        for (const Row& row : rows) {
            heights.push_back(static_cast<int>(row.nHeight));
        }
        EXPECT_EQ(heights, c.heights);
    }
}

TEST(TableGrid, LeavesOutColumnsNoCellBeginsIn) {
    CTableGrid grid;
    grid.BeginRow();
    grid.Place(1, 3);
    grid.Place(4, 1);
    grid.BeginRow();
    grid.Place(2, 1);
    grid.Place(1, 1);
    grid.Finish();
    EXPECT_EQ(grid.Rows(), 2);
    EXPECT_EQ(grid.Columns(), 3);
    const std::vector<GridCell>& cells = grid.Cells();
    EXPECT_EQ(cells[0].nRowSpan, 2);
    EXPECT_EQ(cells[1].nColSpan, 2);
    EXPECT_EQ(cells[2].nColumn, 1);
    EXPECT_EQ(cells[2].nColSpan, 1);
    EXPECT_EQ(cells[3].nColumn, 2);
}

}  // namespace
}  // namespace mvp::richtext
