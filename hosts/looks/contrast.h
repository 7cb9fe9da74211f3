// Contrast of what is drawn, from its pixels.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

namespace looks {

// The pixels of a window's client area, or of a part of it. Parts are in client coordinates, which
// count from the right in a mirrored window; what lies outside the picture tells nothing.
class Picture {
public:
    explicit Picture(HWND hWindow);
    Picture(HWND hWindow, const RECT& part);

    // The ratio (1 to 21) between the commonest colour of the part and the colour in it that stands
    // out most, of those that cover at least a handful of pixels. 1 when there is but one colour.
    double ContrastIn(const RECT& part) const;

    // Whether two pictures of the same part differ as clearly as somebody needs who sees little: by
    // 3 : 1, in a handful of pixels at least.
    bool DiffersFrom(const Picture& other) const;

    // The least rectangle around all pixels in which two pictures of a whole client area differ, in
    // client coordinates; empty: there is none.
    RECT DifferenceFrom(const Picture& other) const;

    // How bright each pixel of the part is: two hexadecimal digits for one, from the top left.
    std::string GreyOf(const RECT& part) const;

private:
    // The same part from the left, whichever side the window counts from, in this picture.
    RECT FromLeft(const RECT& part) const;
    template <typename Pixel>
    void ForEach(const RECT& part, Pixel pixel) const;
    void Take(HWND hWindow);

    LONG m_nClientWidth = 0;
    bool m_bMirrored;
    RECT m_place{};                  // in the client area, from the left
    std::vector<COLORREF> m_pixels;  // from the top left
};

}  // namespace looks
