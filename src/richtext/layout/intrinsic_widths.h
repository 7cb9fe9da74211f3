// The first pass of layout, needed only where there are tables: one walk over the items finds for
// every cell how narrow and how wide its content can be, and from the inside out for every table
// its grid and its columns. Each item is visited once, however deep tables are nested.
#pragma once

#include <cstdint>
#include <vector>

#include "richtext/document/styled_document.h"
#include "richtext/layout/table_columns.h"
#include "richtext/layout/table_grid.h"
#include "richtext/layout/word_scanner.h"
#include "richtext/style/text_measurer.h"

namespace mvp::richtext {

struct TableMeasure {
    std::uint32_t nFirstColumn = 0;  // of aColumns
    std::uint32_t nColumns = 0;
    std::uint32_t nRows = 0;
    Fixed nMinWidth = 0;  // border box
    Fixed nMaxWidth = 0;
};

struct DocumentMeasures {
    std::vector<GridCell> aCells;       // parallel to the document's
    std::vector<TableMeasure> aTables;  // parallel to the document's
    std::vector<Column> aColumns;
};

// Border and spacing of a table besides its columns.
std::int64_t TableInsets(const TableAttributes& table, std::uint32_t nColumns);
// Border and padding of a cell, both sides.
std::int32_t CellInsets(const CellAttributes& cell);

// A table whose width is given in pixels, or -1.
std::int64_t GivenWidth(const TableAttributes& table, const StyledDocument& document);

DocumentMeasures MeasureDocument(const StyledDocument& document, TextMeasurer& measurer);

// The distance of tab stops: eight spaces.
std::int64_t TabDistance(const Font& font);

}  // namespace mvp::richtext
