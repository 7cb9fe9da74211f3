// A picture in memory that tests draw into and read, pixel by pixel.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "platform/handle.h"
#include "richtext/control/html_drawer.h"
#include "richtext/pictures/picture.h"

namespace mvp::test {

constexpr COLORREF kUntouched = RGB(255, 0, 255);

class Canvas {
public:
    // All of it in the colour of nothing drawn.
    Canvas(int nWidth, int nHeight);

    HDC Dc() const { return m_dc.get(); }
    RECT Area() const { return {0, 0, m_picture.Width(), m_picture.Height()}; }
    COLORREF At(int x, int y) const;
    // "3r 2. 3r": the runs of a row or column, a letter for each colour: r g b w k for pure red,
    // green, blue, white and black, '.' for untouched, '?' for others.
    std::string Row(int y) const { return Runs(y, true); }
    std::string Column(int x) const { return Runs(x, false); }
    // Where anything has been drawn.
    RECT Ink() const;
    bool operator==(const Canvas& other) const;

private:
    std::string Runs(int nLine, bool bRow) const;

    richtext::CPicture m_picture;
    MemoryDc m_dc;
    DcSelection m_selection;
};

// Tahoma at a fixed size in black, so that nothing depends on the desktop's settings.
void UseTestFont(CHtmlDrawer& drawer);

// A drawer with the test font and a text, drawn once with what lies in `dirty`.
void DrawMarkup(const Canvas& canvas, std::string_view markup, const RECT& dirty);
void DrawMarkup(const Canvas& canvas, std::string_view markup);

}  // namespace mvp::test
