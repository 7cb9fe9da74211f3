// A picture in memory that tests draw into and read, pixel by pixel.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <string_view>

#include "platform/handle.h"
#include "richtext/control/html_drawer.h"
#include "richtext/pictures/picture.h"

namespace mvp::test {

constexpr COLORREF kUntouched = RGB(255, 0, 255);
constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kGreen = RGB(0, 255, 0);
constexpr COLORREF kBlue = RGB(0, 0, 255);

// A drawer of a text in Tahoma of a fixed size in black, so that nothing depends on the desktop's
// settings.
class TestDrawer : public CHtmlDrawer {
public:
    explicit TestDrawer(std::string_view markup = "", const char* pszSheet = nullptr);
};

class Canvas {
public:
    // All of it in the colour of nothing drawn; then, from its corner on, what the drawer draws.
    Canvas(int nWidth, int nHeight);
    Canvas(int nWidth, int nHeight, CHtmlDrawer& drawer);
    Canvas(int nWidth, int nHeight, std::string_view markup);

    HDC Dc() const { return m_dc.get(); }
    RECT Area() const { return {0, 0, m_picture.Width(), m_picture.Height()}; }
    COLORREF At(int x, int y) const;
    // "3r 2. 3r": the runs of a row or column, a letter for each colour: r g b w k for pure red,
    // green, blue, white and black, '.' for untouched, '?' for others.
    std::string Row(int y) const { return Runs(y, true); }
    std::string Column(int x) const { return Runs(x, false); }
    // Where anything has been drawn.
    RECT Ink() const;
    // How many pixels there are, in a part or in all of it, for which this holds.
    int Count(const RECT& part, const std::function<bool(int x, int y)>& holds) const;
    int CountOf(COLORREF colour) const;

private:
    std::string Runs(int nLine, bool bRow) const;

    richtext::Picture m_picture;
    MemoryDc m_dc;
    DcSelection m_selection;
};

}  // namespace mvp::test
