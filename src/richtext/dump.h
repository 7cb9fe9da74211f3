// The stages as text: stable from machine to machine and from run to run, one thing a line. Golden
// files and the host program's --dump have this form.
#pragma once

#include <string>
#include <string_view>

#include "richtext/document/styled_document.h"
#include "richtext/layout/layout_boxes.h"

namespace mvp::richtext {

// One event a line, with the attributes the reader knows.
std::string DumpMarkup(std::string_view text);

// One item a line, indented by tables and cells; then the styles, fonts and links it names.
std::string DumpStyles(const StyledDocument& document);

// Blocks, then lines with their fragments, as "x,y widthxheight".
std::string DumpLayout(const StyledDocument& document, const LayoutBoxes& boxes);

}  // namespace mvp::richtext
