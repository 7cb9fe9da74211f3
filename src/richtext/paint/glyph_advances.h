// How far the letters of a font move the pen, byte by byte: faster than asking the system for every
// word, and true to what is drawn. Small sizes of some fonts are drawn from bitmaps inside the font
// whose advances are not the ones the system tells; that is found out by drawing a word.
//
// Only for code pages in which a byte is a letter that stands by itself. For the others, and when
// the font does not tell, there are no advances and the system must be asked about whole words.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace mvp::richtext {

using GlyphAdvances = std::array<std::int32_t, 256>;

// Of the font selected into the context.
std::optional<GlyphAdvances> ReadGlyphAdvances(HDC hDC);

std::int64_t WidthOf(const GlyphAdvances& advances, std::string_view text);

}  // namespace mvp::richtext
