// Draws the borders of tables, cells and inline boxes.
#pragma once

#include <windows.h>

#include "richtext/style/style_table.h"

namespace mvp::richtext {

struct Border {
    Edges width = {};  // pixels; 0: no such edge
    BorderStyle style = BorderStyle::None;
    Colour topLeft = 0;
    Colour bottomRight = 0;  // differs in a bevelled border, whose corners are cut aslant
};

// Along the inside of `box`; what lies outside of `dirty` is not drawn, nor does it cost time.
void DrawBorder(HDC hDC, const Border& border, const RECT& box, const RECT& dirty);

// Fills what lies in both rectangles; with kNoColour nothing.
void FillArea(HDC hDC, const RECT& area, const RECT& dirty, Colour colour);

}  // namespace mvp::richtext
