#include "canvas.h"

#include <algorithm>
#include <cstring>

namespace mvp::test {
namespace {

char LetterOf(COLORREF colour) {
    switch (colour) {
        case RGB(255, 0, 0):
            return 'r';
        case RGB(0, 255, 0):
            return 'g';
        case RGB(0, 0, 255):
            return 'b';
        case RGB(255, 255, 255):
            return 'w';
        case RGB(0, 0, 0):
            return 'k';
        case kUntouched:
            return '.';
        default:
            return '?';
    }
}

}  // namespace

Canvas::Canvas(int nWidth, int nHeight)
    : m_picture(nWidth, nHeight),
      m_dc(CreateCompatibleDC(nullptr)),
      m_selection(m_dc.get(), m_picture.Get()) {
    std::fill(m_picture.Pixels().begin(), m_picture.Pixels().end(), 0xFF00FFU);
}

COLORREF Canvas::At(int x, int y) const {
    GdiFlush();
    const std::uint32_t n = m_picture.Pixels()[static_cast<std::size_t>(y * m_picture.Width() + x)];
    return RGB(n >> 16 & 0xFF, n >> 8 & 0xFF, n & 0xFF);
}

std::string Canvas::Runs(int nLine, bool bRow) const {
    const int nEnd = bRow ? m_picture.Width() : m_picture.Height();
    std::string strRuns;
    for (int n = 0; n < nEnd;) {
        const auto letter = [&](int i) { return LetterOf(bRow ? At(i, nLine) : At(nLine, i)); };
        const int nStart = n;
        while (n < nEnd && letter(n) == letter(nStart))
            ++n;
        if (!strRuns.empty())
            strRuns += ' ';
        strRuns.append(std::to_string(n - nStart)).append(1, letter(nStart));
    }
    return strRuns;
}

RECT Canvas::Ink() const {
    RECT ink{};
    for (int y = 0; y < m_picture.Height(); ++y) {
        for (int x = 0; x < m_picture.Width(); ++x) {
            const RECT pixel = {x, y, x + 1, y + 1};
            if (At(x, y) != kUntouched)
                UnionRect(&ink, &ink, &pixel);
        }
    }
    return ink;
}

bool Canvas::operator==(const Canvas& other) const {
    GdiFlush();
    const auto colour = [](std::uint32_t a, std::uint32_t b) {
        return (a & 0xFFFFFF) == (b & 0xFFFFFF);
    };
    return std::equal(m_picture.Pixels().begin(), m_picture.Pixels().end(),
                      other.m_picture.Pixels().begin(), other.m_picture.Pixels().end(), colour);
}

void UseTestFont(CHtmlDrawer& drawer) {
    LOGFONTA font{};
    font.lfHeight = -13;
    font.lfCharSet = DEFAULT_CHARSET;
    // Without smoothing every pixel of a letter has the text's colour.
    font.lfQuality = NONANTIALIASED_QUALITY;
    std::strcpy(font.lfFaceName, "Tahoma");
    drawer.SetFont(font);
    drawer.SetTextColor(RGB(0, 0, 0));
}

void DrawMarkup(const Canvas& canvas, std::string_view markup, const RECT& dirty) {
    CHtmlDrawer drawer;
    UseTestFont(drawer);
    drawer.SetText(markup);
    drawer.Draw(canvas.Dc(), canvas.Area(), dirty);
}

void DrawMarkup(const Canvas& canvas, std::string_view markup) {
    DrawMarkup(canvas, markup, canvas.Area());
}

}  // namespace mvp::test
