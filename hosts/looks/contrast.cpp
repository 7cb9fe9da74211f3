#include "looks/contrast.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "platform/handle.h"

namespace looks {

namespace {

// Fewer pixels of a colour are the corner of something or the edge of a letter.
constexpr int kHandful = 4;

double Linear(int nComponent) {
    constexpr double kDarkest = 0.03928;
    const double value = nComponent / 255.0;
    return value <= kDarkest ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

// The relative luminance of the accessibility guidelines for the web.
double Luminance(COLORREF colour) {
    return 0.2126 * Linear(GetRValue(colour)) + 0.7152 * Linear(GetGValue(colour)) +
           0.0722 * Linear(GetBValue(colour));
}

double Ratio(COLORREF one, COLORREF other) {
    const auto [dark, light] = std::minmax({Luminance(one), Luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

}  // namespace

Picture::Picture(HWND hWindow)
    : m_bMirrored((GetWindowLongPtrA(hWindow, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0) {
    RECT client{};
    GetClientRect(hWindow, &client);
    m_nWidth = client.right;
    m_nHeight = client.bottom;
    const mvp::WindowDc source(hWindow);
    SetLayout(source.get(), 0);
    const mvp::MemoryDc target(CreateCompatibleDC(source.get()));
    const mvp::Bitmap bitmap(CreateCompatibleBitmap(source.get(), m_nWidth, m_nHeight));
    {
        const mvp::DcSelection selection(target.get(), bitmap.get());
        BitBlt(target.get(), 0, 0, m_nWidth, m_nHeight, source.get(), 0, 0, SRCCOPY);
    }
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = m_nWidth;
    info.bmiHeader.biHeight = -m_nHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    m_pixels.resize(static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight));
    GetDIBits(target.get(), bitmap.get(), 0, static_cast<UINT>(m_nHeight), m_pixels.data(), &info,
              DIB_RGB_COLORS);
}

COLORREF Picture::At(int nLeft, int nTop) const {
    const RGBQUAD& pixel =
        m_pixels[static_cast<std::size_t>(nTop) * static_cast<std::size_t>(m_nWidth) +
                 static_cast<std::size_t>(nLeft)];
    return RGB(pixel.rgbRed, pixel.rgbGreen, pixel.rgbBlue);
}

template <typename Pixel>
void Picture::ForEach(const RECT& part, Pixel pixel) const {
    const LONG left = m_bMirrored ? m_nWidth - part.right : part.left;
    const LONG right = m_bMirrored ? m_nWidth - part.left : part.right;
    for (LONG y = std::max(0L, part.top); y < std::min<LONG>(m_nHeight, part.bottom); ++y) {
        for (LONG x = std::max(0L, left); x < std::min<LONG>(m_nWidth, right); ++x) {
            pixel(x, y);
        }
    }
}

double Picture::ContrastIn(const RECT& part) const {
    std::map<COLORREF, int> counts;
    auto last = counts.end();  // most pixels have the colour of the one before
    ForEach(part, [&](LONG x, LONG y) {
        const COLORREF colour = At(x, y);
        if (last == counts.end() || last->first != colour) {
            last = counts.try_emplace(colour).first;
        }
        ++last->second;
    });
    if (counts.empty()) {
        return 1;
    }
    const auto ground =
        std::ranges::max_element(counts, {}, [](const auto& count) { return count.second; });
    double best = 1;
    for (const auto& [colour, count] : counts) {
        if (count >= kHandful) {
            best = std::max(best, Ratio(colour, ground->first));
        }
    }
    return best;
}

bool Picture::DiffersIn(const Picture& other, const RECT& part) const {
    constexpr double kClear = 3;
    int clear = 0;
    ForEach(part, [&](LONG x, LONG y) {
        const COLORREF here = At(x, y);
        const COLORREF there = other.At(x, y);
        clear += here != there && Ratio(here, there) >= kClear ? 1 : 0;
    });
    return clear >= kHandful;
}

std::string Picture::GreyOf(const RECT& part) const {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string grey;
    ForEach(part, [&](LONG x, LONG y) {
        const auto level = static_cast<unsigned>(std::lround(Luminance(At(x, y)) * 255));
        grey += kDigits[level / 16];
        grey += kDigits[level % 16];
    });
    return grey;
}

}  // namespace looks
