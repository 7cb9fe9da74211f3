// The colours that markup may name: the 140 of the extended colour list and 28 names that stand
// for colours of the desktop.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace mvp::richtext {

// Red in the low byte, then green, then blue: the order of a Windows COLORREF.
using Colour = std::uint32_t;

// No colour: nothing is painted. The value Windows itself uses for "none".
constexpr Colour kNoColour = 0xFFFFFFFF;

constexpr Colour Rgb(unsigned red, unsigned green, unsigned blue) {
    return red | green << 8 | blue << 16;
}

// The desktop's colours by system colour index. The caller fills them in (from GetSysColor) each
// time it builds a document, so that a change of the desktop's scheme is seen.
struct SystemColours {
    static constexpr int kCount = 25;
    std::array<Colour, kCount> aColour = {};
};

// A plain light scheme, for callers without a desktop.
const SystemColours& DefaultSystemColours();

constexpr int kColourNameCount = 168;

// Looks a name up, whatever its letter case. False when the name is not in the table.
bool FindColour(std::string_view name, const SystemColours& system, Colour& colour);

// The name at a place of the table, 0 up to kColourNameCount - 1, in alphabetical order.
std::string_view ColourName(int nIndex);

}  // namespace mvp::richtext
