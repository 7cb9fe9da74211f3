#include "ui/richtext/canvas.h"

#include <algorithm>
#include <cstring>

namespace mvp::test {
namespace {

char LetterOf(COLORREF colour) {
    constexpr COLORREF kColours[] = {kRed, kGreen, kBlue, RGB(255, 255, 255), 0, kUntouched};
    const auto* const found = std::find(std::begin(kColours), std::end(kColours), colour);
    return "rgbwk.?"[found - std::begin(kColours)];
}

}  // namespace

TestDrawer::TestDrawer(std::string_view markup, const char* pszSheet) {
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

Canvas::Canvas(int nWidth, int nHeight)
    : m_picture(nWidth, nHeight),
      m_dc(CreateCompatibleDC(nullptr)),
      m_selection(m_dc.get(), m_picture.Get()) {
    std::fill(m_picture.Pixels().begin(), m_picture.Pixels().end(), 0xFF00FFU);
}

Canvas::Canvas(int nWidth, int nHeight, CHtmlDrawer& drawer) : Canvas(nWidth, nHeight) {
    drawer.Draw(Dc(), Area(), Area());
}

Canvas::Canvas(int nWidth, int nHeight, std::string_view markup) : Canvas(nWidth, nHeight) {
    TestDrawer(markup).Draw(Dc(), Area(), Area());
}

COLORREF Canvas::At(int x, int y) const {
    GdiFlush();
    const auto row = m_picture.Pixels().subspan(static_cast<std::size_t>(y) *
                                                static_cast<std::size_t>(m_picture.Width()));
    const std::uint32_t n = row[static_cast<std::size_t>(x)];
    return RGB(n >> 16 & 0xFF, n >> 8 & 0xFF, n & 0xFF);
}

std::string Canvas::Runs(int nLine, bool bRow) const {
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

int Canvas::Count(const RECT& part, const std::function<bool(int x, int y)>& holds) const {
    int count = 0;
    for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x) {
            count += holds(x, y) ? 1 : 0;
        }
    }
    return count;
}

int Canvas::CountOf(COLORREF colour) const {
    return Count(Area(), [&](int x, int y) { return At(x, y) == colour; });
}

RECT Canvas::Ink() const {
    RECT ink{};
    Count(Area(), [&](int x, int y) {
        const RECT pixel = {x, y, x + 1, y + 1};
        return At(x, y) != kUntouched && UnionRect(&ink, &ink, &pixel);
    });
    return ink;
}

}  // namespace mvp::test
