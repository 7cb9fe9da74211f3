// A picture in memory that tests draw into and read, pixel by pixel.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
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
    explicit TestDrawer(std::string_view markup = "", const char* pszSheet = nullptr) {
        LOGFONTA font{};
        font.lfHeight = -13;
        font.lfCharSet = DEFAULT_CHARSET;
        // Without smoothing every pixel of a letter has the text's colour.
        font.lfQuality = NONANTIALIASED_QUALITY;
        std::strcpy(font.lfFaceName, "Tahoma");
        SetFont(font);
        SetTextColor(RGB(0, 0, 0));
        SetStyleSheet(pszSheet);
        SetText(markup);
    }
};

class Canvas {
public:
    // All of it in the colour of nothing drawn; then, from its corner on, what the drawer draws.
    Canvas(int nWidth, int nHeight)
        : m_picture(nWidth, nHeight),
          m_dc(CreateCompatibleDC(nullptr)),
          m_selection(m_dc.get(), m_picture.Get()) {
        std::ranges::fill(m_picture.Pixels(), 0xFF00FFU);
    }
    Canvas(int nWidth, int nHeight, CHtmlDrawer& drawer) : Canvas(nWidth, nHeight) {
        drawer.Draw(Dc(), Area(), Area());
    }
    Canvas(int nWidth, int nHeight, std::string_view markup) : Canvas(nWidth, nHeight) {
        TestDrawer(markup).Draw(Dc(), Area(), Area());
    }

    HDC Dc() const { return m_dc.get(); }
    RECT Area() const { return {0, 0, m_picture.Width(), m_picture.Height()}; }
    COLORREF At(int x, int y) const {
        GdiFlush();
        const std::uint32_t n =
            m_picture.Pixels()[static_cast<std::size_t>(y * m_picture.Width() + x)];
        return RGB(n >> 16 & 0xFF, n >> 8 & 0xFF, n & 0xFF);
    }
    // "3r 2. 3r": the runs of a row or column, a letter for each colour: r g b w k for pure red,
    // green, blue, white and black, '.' for untouched, '?' for others.
    std::string Row(int y) const { return Runs(y, true); }
    std::string Column(int x) const { return Runs(x, false); }
    RECT Ink() const {
        RECT ink{};
        Count(Area(), [&](int x, int y) {
            const RECT pixel = {x, y, x + 1, y + 1};
            return At(x, y) != kUntouched && UnionRect(&ink, &ink, &pixel);
        });
        return ink;
    }
    // How many pixels there are, in a part or in all of it, for which this holds.
    int Count(const RECT& part, const std::function<bool(int x, int y)>& holds) const {
        int count = 0;
        for (int y = part.top; y < part.bottom; ++y) {
            for (int x = part.left; x < part.right; ++x) {
                count += holds(x, y) ? 1 : 0;
            }
        }
        return count;
    }
    int CountOf(COLORREF colour) const {
        return Count(Area(), [&](int x, int y) { return At(x, y) == colour; });
    }

private:
    static char LetterOf(COLORREF colour) {
        constexpr COLORREF kColours[] = {kRed, kGreen, kBlue, RGB(255, 255, 255), 0, kUntouched};
        return "rgbwk.?"[std::ranges::find(kColours, colour) - std::begin(kColours)];
    }
    std::string Runs(int nLine, bool bRow) const {
        const auto letter = [&](int i) { return LetterOf(bRow ? At(i, nLine) : At(nLine, i)); };
        const int end = bRow ? m_picture.Width() : m_picture.Height();
        std::string runs;
        for (int start = 0, n = 0; n < end; start = n) {
            while (n < end && letter(n) == letter(start)) {
                ++n;
            }
            runs += (start == 0 ? "" : " ") + std::to_string(n - start) + letter(start);
        }
        return runs;
    }

    richtext::Picture m_picture;
    MemoryDc m_dc;
    DcSelection m_selection;
};

}  // namespace mvp::test
