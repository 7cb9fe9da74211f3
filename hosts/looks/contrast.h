// Contrast of what is drawn, from its pixels.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

namespace looks {

// The pixels of a window's client area. Parts of it are in client coordinates, which count from the
// right in a mirrored window.
class Picture {
public:
    explicit Picture(HWND hWindow);

    // The ratio (1 to 21) between the commonest colour of the part and the colour in it that stands
    // out most, of those that cover at least a handful of pixels. 1 when there is but one colour.
    double ContrastIn(const RECT& part) const;

    // Whether the two pictures differ within the part as clearly as somebody needs who sees little:
    // by 3 : 1, in a handful of pixels at least.
    bool DiffersIn(const Picture& other, const RECT& part) const;

    // How bright each pixel of the part is: two hexadecimal digits for one, from the top left.
    std::string GreyOf(const RECT& part) const;

private:
    template <typename Pixel>
    void ForEach(const RECT& part, Pixel pixel) const;
    COLORREF At(int nLeft, int nTop) const;

    int m_nWidth = 0;
    int m_nHeight = 0;
    bool m_bMirrored;
    std::vector<RGBQUAD> m_pixels;  // from the top
};

}  // namespace looks
