#include "richtext/paint/glyph_advances.h"

#include <algorithm>

#include "richtext/markup/text_bytes.h"
#include "richtext/pictures/picture.h"

namespace mvp::richtext {
namespace {

// Letters of every width; the last one has feet that reach far to the right.
constexpr std::string_view kSample = "The quick brown fox jumps over a lazy dog and returns mm";

// Pixels of difference over the whole sample; less is not to be seen.
constexpr std::int32_t kWorthIt = 4;

// Central European, Cyrillic, Latin, Greek, Turkish, Baltic. Elsewhere letters join, stack, run
// from right to left or take two bytes.
bool IsSimpleCodePage() {
    const UINT codePage = GetACP();
    return (codePage >= 1250 && codePage <= 1254) || codePage == 1257;
}

std::optional<std::int32_t> AdvanceInBitmap(HDC hDC, unsigned nChar) {
    constexpr MAT2 kIdentity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
    GLYPHMETRICS glyph{};
    if (GetGlyphOutlineA(hDC, nChar, GGO_BITMAP, &glyph, 0, nullptr, &kIdentity) == GDI_ERROR) {
        return std::nullopt;
    }
    return glyph.gmCellIncX;
}

// One behind the last column that the sample reaches when it is drawn with the context's font.
std::int32_t DrawnWidth(HDC hDC, std::int32_t nRoom) {
    const Picture picture(nRoom, 16);
    const MemoryDc dc(CreateCompatibleDC(hDC));
    if (!picture || !dc) {
        return nRoom;
    }
    const DcSelection bitmap(dc.get(), picture.Get());
    const DcSelection font(dc.get(), GetCurrentObject(hDC, OBJ_FONT));
    SetTextColor(dc.get(), 0xFFFFFF);
    SetBkMode(dc.get(), TRANSPARENT);
    // The feet of the letters are enough: the picture is as high as they are.
    SetTextAlign(dc.get(), TA_LEFT | TA_BASELINE);
    ExtTextOutA(dc.get(), 0, picture.Height() - 1, 0, nullptr, kSample.data(),
                static_cast<UINT>(kSample.size()), nullptr);
    GdiFlush();
    std::int32_t last = 0;
    const auto pixels = picture.Pixels();
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if ((pixels[i] & 0xFFFFFF) != 0) {
            last = std::max(last, static_cast<std::int32_t>(i % static_cast<std::size_t>(nRoom)));
        }
    }
    return last + 1;
}

// Whether the advances inside the font's bitmaps are the ones that count.
bool IsDrawnFromBitmaps(HDC hDC, const GlyphAdvances& told) {
    std::int32_t inBitmaps = 0;
    for (const char c : kSample) {
        inBitmaps += AdvanceInBitmap(hDC, Byte(c)).value_or(told[Byte(c)]);
    }
    const auto toldWidth = static_cast<std::int32_t>(WidthOf(told, kSample));
    if (inBitmaps <= 0 || std::abs(toldWidth - inBitmaps) < kWorthIt) {
        return false;
    }
    const std::int32_t drawn = DrawnWidth(hDC, std::max(toldWidth, inBitmaps) + 16);
    return std::abs(drawn - inBitmaps) < std::abs(drawn - toldWidth);
}

}  // namespace

std::optional<GlyphAdvances> ReadGlyphAdvances(HDC hDC) {
    GlyphAdvances advances{};
    if (!IsSimpleCodePage() || !GetCharWidth32A(hDC, 0, 255, advances.data())) {
        return std::nullopt;
    }
    if (IsDrawnFromBitmaps(hDC, advances)) {
        for (unsigned n = 0; n < advances.size(); ++n) {
            advances[n] = AdvanceInBitmap(hDC, n).value_or(advances[n]);
        }
    }
    return advances;
}

std::int64_t WidthOf(const GlyphAdvances& advances, std::string_view text) {
    std::int64_t width = 0;
    for (const char c : text) {
        width += advances[Byte(c)];
    }
    return width;
}

}  // namespace mvp::richtext
