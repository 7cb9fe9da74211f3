#include "looks/contrast.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "platform/handle.h"

namespace looks {

namespace {

// Fewer pixels of a colour are the corner of something or the edge of a letter.
constexpr int kHandful = 4;

// The share of a component in the luminance, by its value.
std::array<double, 256> Linear() {
    constexpr double kDarkest = 0.03928;
    std::array<double, 256> linear{};
    for (std::size_t i = 0; i < linear.size(); ++i) {
        const double value = static_cast<double>(i) / 255.0;
        linear.at(i) = value <= kDarkest ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    }
    return linear;
}

// The relative luminance of the accessibility guidelines for the web.
double Luminance(COLORREF colour) {
    static const std::array<double, 256> linear = Linear();
    return 0.2126 * linear[GetRValue(colour)] + 0.7152 * linear[GetGValue(colour)] +
           0.0722 * linear[GetBValue(colour)];
}

double Ratio(COLORREF one, COLORREF other) {
    const auto [dark, light] = std::minmax({Luminance(one), Luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

RECT ClientOf(HWND hWindow) {
    RECT client{};
    GetClientRect(hWindow, &client);
    return client;
}

}  // namespace

Picture::Picture(HWND hWindow) : Picture(hWindow, ClientOf(hWindow)) {}

Picture::Picture(HWND hWindow, const RECT& part)
    : m_bMirrored((GetWindowLongPtrA(hWindow, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0) {
    const RECT client = ClientOf(hWindow);
    m_nClientWidth = client.right;
    RECT inside{};
    if (IntersectRect(&inside, &part, &client)) {
        m_place = FromLeft(inside);
        Take(hWindow);
    }
}

void Picture::Take(HWND hWindow) {
    const int width = m_place.right - m_place.left;
    const int height = m_place.bottom - m_place.top;
    const mvp::WindowDc source(hWindow);
    SetLayout(source.get(), 0);
    const mvp::MemoryDc target(CreateCompatibleDC(source.get()));
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const mvp::Bitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    const mvp::DcSelection selection(target.get(), bitmap.get());
    BitBlt(target.get(), 0, 0, width, height, source.get(), m_place.left, m_place.top, SRCCOPY);
    GdiFlush();
    const auto* first = static_cast<const COLORREF*>(bits);
    m_pixels.assign(first, first + static_cast<std::ptrdiff_t>(width) * height);
    for (COLORREF& pixel : m_pixels) {
        pixel = RGB(pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF);
    }
}

RECT Picture::FromLeft(const RECT& part) const {
    return m_bMirrored ? RECT{m_nClientWidth - part.right, part.top, m_nClientWidth - part.left,
                              part.bottom}
                       : part;
}

template <typename Pixel>
void Picture::ForEach(const RECT& part, Pixel pixel) const {
    const RECT wanted = FromLeft(part);
    RECT rect{};
    if (!IntersectRect(&rect, &wanted, &m_place)) {
        return;
    }
    for (LONG y = rect.top; y < rect.bottom; ++y) {
        const auto row = static_cast<std::size_t>(y - m_place.top) *
                         static_cast<std::size_t>(m_place.right - m_place.left);
        for (LONG x = rect.left; x < rect.right; ++x) {
            pixel(m_pixels[row + static_cast<std::size_t>(x - m_place.left)]);
        }
    }
}

double Picture::ContrastIn(const RECT& part) const {
    std::map<COLORREF, int> counts;
    auto last = counts.end();  // most pixels have the colour of the one before
    ForEach(part, [&](COLORREF colour) {
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

bool Picture::DiffersFrom(const Picture& other) const {
    constexpr double kClear = 3;
    int clear = 0;
    for (std::size_t i = 0; i < std::min(m_pixels.size(), other.m_pixels.size()); ++i) {
        const COLORREF here = m_pixels[i];
        const COLORREF there = other.m_pixels[i];
        clear += here != there && Ratio(here, there) >= kClear ? 1 : 0;
    }
    return clear >= kHandful;
}

RECT Picture::DifferenceFrom(const Picture& other) const {
    const LONG width = m_place.right - m_place.left;
    RECT bounds{};
    for (std::size_t i = 0; i < std::min(m_pixels.size(), other.m_pixels.size()); ++i) {
        if (m_pixels[i] != other.m_pixels[i]) {
            const auto at = static_cast<LONG>(i);
            const RECT pixel{at % width, at / width, at % width + 1, at / width + 1};
            UnionRect(&bounds, &bounds, &pixel);
        }
    }
    return FromLeft(bounds);
}

std::string Picture::GreyOf(const RECT& part) const {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string grey;
    ForEach(part, [&](COLORREF colour) {
        const auto level = static_cast<unsigned>(std::lround(Luminance(colour) * 255));
        grey += kDigits[level / 16];
        grey += kDigits[level % 16];
    });
    return grey;
}

}  // namespace looks
