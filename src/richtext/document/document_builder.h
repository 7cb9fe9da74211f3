// The second stage: resolves the style of every run. Reads the events of a MarkupReader, keeps a
// stack of the open elements, and writes a StyledDocument.
//
//     BuildSettings settings{.pMeasurer = &measurer, .font = {"Tahoma", 13}};
//     StyledDocument document = BuildDocument(text, sheet, settings);
//
// How elements nest:
// - A closing tag closes the innermost open element of its name in the same cell. Elements opened
//   inside it and not closed stay open (up to 32 of them; more are closed with it). One that has
//   nothing to close is ignored; what is open at the end, or at the end of its cell, is closed.
// - A cell closes the cell before it, a row the cells of the row before it. Text of a table outside
//   of its cells opens a cell. tr and td outside of a table are ignored, and a table between the
//   cells of another closes that one first.
// - An alignment tag ends the line at both its ends.
#pragma once

#include <cstdint>
#include <string_view>

#include "richtext/document/case_maps.h"
#include "richtext/document/styled_document.h"
#include "richtext/markup/markup_reader.h"
#include "richtext/style/style_sheet.h"
#include "richtext/style/text_measurer.h"

namespace mvp::richtext {

struct BuildSettings {
    TextMeasurer* pMeasurer = nullptr;  // required; outlives the call
    FontDescription font{{}, 13, 400, false};
    Colour colour = 0;
    SystemColours system = DefaultSystemColours();
    const CaseMaps* pCaseMaps = &kWindows1252CaseMaps;  // outlives the call
};

// Spans are held to these; a table has at most so many columns as well, further cells go on in a
// row of their own.
constexpr std::int32_t kMaxColSpan = 100;
constexpr std::int32_t kMaxRowSpan = 65534;

// Longer texts are cut off here.
constexpr std::size_t kMaxTextLength = std::size_t{64} << 20;

StyledDocument BuildDocument(std::string_view text, const StyleSheet& sheet,
                             const BuildSettings& settings);

}  // namespace mvp::richtext
