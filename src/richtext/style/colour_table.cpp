#include "richtext/style/colour_table.h"

#include <algorithm>
#include <iterator>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

constexpr int kFixed = -1;

struct NamedColour {
    std::string_view name;
    Colour colour;  // of a fixed one
    int nSystem;    // the desktop colour's index, or kFixed
};

// In alphabetical order, for the binary search.
constexpr NamedColour kColours[] = {
    {"activeborder", 0, 10},
    {"activecaption", 0, 2},
    {"aliceblue", Rgb(0xF0, 0xF8, 0xFF), kFixed},
    {"antiquewhite", Rgb(0xFA, 0xEB, 0xD7), kFixed},
    {"appworkspace", 0, 12},
    {"aqua", Rgb(0x00, 0xFF, 0xFF), kFixed},
    {"aquamarine", Rgb(0x7F, 0xFF, 0xD4), kFixed},
    {"azure", Rgb(0xF0, 0xFF, 0xFF), kFixed},
    {"background", 0, 1},
    {"beige", Rgb(0xF5, 0xF5, 0xDC), kFixed},
    {"bisque", Rgb(0xFF, 0xE4, 0xC4), kFixed},
    {"black", Rgb(0x00, 0x00, 0x00), kFixed},
    {"blanchedalmond", Rgb(0xFF, 0xEB, 0xCD), kFixed},
    {"blue", Rgb(0x00, 0x00, 0xFF), kFixed},
    {"blueviolet", Rgb(0x8A, 0x2B, 0xE2), kFixed},
    {"brown", Rgb(0xA5, 0x2A, 0x2A), kFixed},
    {"burlywood", Rgb(0xDE, 0xB8, 0x87), kFixed},
    {"buttonface", 0, 15},
    {"buttonhighlight", 0, 20},
    {"buttonshadow", 0, 16},
    {"buttontext", 0, 18},
    {"cadetblue", Rgb(0x5F, 0x9E, 0xA0), kFixed},
    {"captiontext", 0, 9},
    {"chartreuse", Rgb(0x7F, 0xFF, 0x00), kFixed},
    {"chocolate", Rgb(0xD2, 0x69, 0x1E), kFixed},
    {"coral", Rgb(0xFF, 0x7F, 0x50), kFixed},
    {"cornflowerblue", Rgb(0x64, 0x95, 0xED), kFixed},
    {"cornsilk", Rgb(0xFF, 0xF8, 0xDC), kFixed},
    {"crimson", Rgb(0xDC, 0x14, 0x3C), kFixed},
    {"cyan", Rgb(0x00, 0xFF, 0xFF), kFixed},
    {"darkblue", Rgb(0x00, 0x00, 0x8B), kFixed},
    {"darkcyan", Rgb(0x00, 0x8B, 0x8B), kFixed},
    {"darkgoldenrod", Rgb(0xB8, 0x86, 0x0B), kFixed},
    {"darkgray", Rgb(0xA9, 0xA9, 0xA9), kFixed},
    {"darkgreen", Rgb(0x00, 0x64, 0x00), kFixed},
    {"darkkhaki", Rgb(0xBD, 0xB7, 0x6B), kFixed},
    {"darkmagenta", Rgb(0x8B, 0x00, 0x8B), kFixed},
    {"darkolivegreen", Rgb(0x55, 0x6B, 0x2F), kFixed},
    {"darkorange", Rgb(0xFF, 0x8C, 0x00), kFixed},
    {"darkorchid", Rgb(0x99, 0x32, 0xCC), kFixed},
    {"darkred", Rgb(0x8B, 0x00, 0x00), kFixed},
    {"darksalmon", Rgb(0xE9, 0x96, 0x7A), kFixed},
    {"darkseagreen", Rgb(0x8F, 0xBC, 0x8F), kFixed},
    {"darkslateblue", Rgb(0x48, 0x3D, 0x8B), kFixed},
    {"darkslategray", Rgb(0x2F, 0x4F, 0x4F), kFixed},
    {"darkturquoise", Rgb(0x00, 0xCE, 0xD1), kFixed},
    {"darkviolet", Rgb(0x94, 0x00, 0xD3), kFixed},
    {"deeppink", Rgb(0xFF, 0x14, 0x93), kFixed},
    {"deepskyblue", Rgb(0x00, 0xBF, 0xFF), kFixed},
    {"dimgray", Rgb(0x69, 0x69, 0x69), kFixed},
    {"dodgerblue", Rgb(0x1E, 0x90, 0xFF), kFixed},
    {"firebrick", Rgb(0xB2, 0x22, 0x22), kFixed},
    {"floralwhite", Rgb(0xFF, 0xFA, 0xF0), kFixed},
    {"forestgreen", Rgb(0x22, 0x8B, 0x22), kFixed},
    {"fuchsia", Rgb(0xFF, 0x00, 0xFF), kFixed},
    {"gainsboro", Rgb(0xDC, 0xDC, 0xDC), kFixed},
    {"ghostwhite", Rgb(0xF8, 0xF8, 0xFF), kFixed},
    {"gold", Rgb(0xFF, 0xD7, 0x00), kFixed},
    {"goldenrod", Rgb(0xDA, 0xA5, 0x20), kFixed},
    {"gray", Rgb(0x80, 0x80, 0x80), kFixed},
    {"graytext", 0, 17},
    {"green", Rgb(0x00, 0x80, 0x00), kFixed},
    {"greenyellow", Rgb(0xAD, 0xFF, 0x2F), kFixed},
    {"highlight", 0, 13},
    {"highlighttext", 0, 14},
    {"honeydew", Rgb(0xF0, 0xFF, 0xF0), kFixed},
    {"hotpink", Rgb(0xFF, 0x69, 0xB4), kFixed},
    {"inactiveborder", 0, 11},
    {"inactivecaption", 0, 3},
    {"inactivecaptiontext", 0, 19},
    {"indianred", Rgb(0xCD, 0x5C, 0x5C), kFixed},
    {"indigo", Rgb(0x4B, 0x00, 0x82), kFixed},
    {"infobackground", 0, 24},
    {"infotext", 0, 23},
    {"ivory", Rgb(0xFF, 0xFF, 0xF0), kFixed},
    {"khaki", Rgb(0xF0, 0xE6, 0x8C), kFixed},
    {"lavender", Rgb(0xE6, 0xE6, 0xFA), kFixed},
    {"lavenderblush", Rgb(0xFF, 0xF0, 0xF5), kFixed},
    {"lawngreen", Rgb(0x7C, 0xFC, 0x00), kFixed},
    {"lemonchiffon", Rgb(0xFF, 0xFA, 0xCD), kFixed},
    {"lightblue", Rgb(0xAD, 0xD8, 0xE6), kFixed},
    {"lightcoral", Rgb(0xF0, 0x80, 0x80), kFixed},
    {"lightcyan", Rgb(0xE0, 0xFF, 0xFF), kFixed},
    {"lightgoldenrodyellow", Rgb(0xFA, 0xFA, 0xD2), kFixed},
    {"lightgreen", Rgb(0x90, 0xEE, 0x90), kFixed},
    {"lightgrey", Rgb(0xD3, 0xD3, 0xD3), kFixed},
    {"lightpink", Rgb(0xFF, 0xB6, 0xC1), kFixed},
    {"lightsalmon", Rgb(0xFF, 0xA0, 0x7A), kFixed},
    {"lightseagreen", Rgb(0x20, 0xB2, 0xAA), kFixed},
    {"lightskyblue", Rgb(0x87, 0xCE, 0xFA), kFixed},
    {"lightslategray", Rgb(0x77, 0x88, 0x99), kFixed},
    {"lightsteelblue", Rgb(0xB0, 0xC4, 0xDE), kFixed},
    {"lightyellow", Rgb(0xFF, 0xFF, 0xE0), kFixed},
    {"lime", Rgb(0x00, 0xFF, 0x00), kFixed},
    {"limegreen", Rgb(0x32, 0xCD, 0x32), kFixed},
    {"linen", Rgb(0xFA, 0xF0, 0xE6), kFixed},
    {"magenta", Rgb(0xFF, 0x00, 0xFF), kFixed},
    {"maroon", Rgb(0x80, 0x00, 0x00), kFixed},
    {"mediumaquamarine", Rgb(0x66, 0xCD, 0xAA), kFixed},
    {"mediumblue", Rgb(0x00, 0x00, 0xCD), kFixed},
    {"mediumorchid", Rgb(0xBA, 0x55, 0xD3), kFixed},
    {"mediumpurple", Rgb(0x93, 0x70, 0xDB), kFixed},
    {"mediumseagreen", Rgb(0x3C, 0xB3, 0x71), kFixed},
    {"mediumslateblue", Rgb(0x7B, 0x68, 0xEE), kFixed},
    {"mediumspringgreen", Rgb(0x00, 0xFA, 0x9A), kFixed},
    {"mediumturquoise", Rgb(0x48, 0xD1, 0xCC), kFixed},
    {"mediumvioletred", Rgb(0xC7, 0x15, 0x85), kFixed},
    {"menu", 0, 4},
    {"menutext", 0, 7},
    {"midnightblue", Rgb(0x19, 0x19, 0x70), kFixed},
    {"mintcream", Rgb(0xF5, 0xFF, 0xFA), kFixed},
    {"mistyrose", Rgb(0xFF, 0xE4, 0xE1), kFixed},
    {"moccasin", Rgb(0xFF, 0xE4, 0xB5), kFixed},
    {"navajowhite", Rgb(0xFF, 0xDE, 0xAD), kFixed},
    {"navy", Rgb(0x00, 0x00, 0x80), kFixed},
    {"oldlace", Rgb(0xFD, 0xF5, 0xE6), kFixed},
    {"olive", Rgb(0x80, 0x80, 0x00), kFixed},
    {"olivedrab", Rgb(0x6B, 0x8E, 0x23), kFixed},
    {"orange", Rgb(0xFF, 0xA5, 0x00), kFixed},
    {"orangered", Rgb(0xFF, 0x45, 0x00), kFixed},
    {"orchid", Rgb(0xDA, 0x70, 0xD6), kFixed},
    {"palegoldenrod", Rgb(0xEE, 0xE8, 0xAA), kFixed},
    {"palegreen", Rgb(0x98, 0xFB, 0x98), kFixed},
    {"paleturquoise", Rgb(0xAF, 0xEE, 0xEE), kFixed},
    {"palevioletred", Rgb(0xDB, 0x70, 0x93), kFixed},
    {"papayawhip", Rgb(0xFF, 0xEF, 0xD5), kFixed},
    {"peachpuff", Rgb(0xFF, 0xDA, 0xB9), kFixed},
    {"peru", Rgb(0xCD, 0x85, 0x3F), kFixed},
    {"pink", Rgb(0xFF, 0xC0, 0xCB), kFixed},
    {"plum", Rgb(0xDD, 0xA0, 0xDD), kFixed},
    {"powderblue", Rgb(0xB0, 0xE0, 0xE6), kFixed},
    {"purple", Rgb(0x80, 0x00, 0x80), kFixed},
    {"red", Rgb(0xFF, 0x00, 0x00), kFixed},
    {"rosybrown", Rgb(0xBC, 0x8F, 0x8F), kFixed},
    {"royalblue", Rgb(0x41, 0x69, 0xE1), kFixed},
    {"saddlebrown", Rgb(0x8B, 0x45, 0x13), kFixed},
    {"salmon", Rgb(0xFA, 0x80, 0x72), kFixed},
    {"sandybrown", Rgb(0xF4, 0xA4, 0x60), kFixed},
    {"scrollbar", 0, 0},
    {"seagreen", Rgb(0x2E, 0x8B, 0x57), kFixed},
    {"seashell", Rgb(0xFF, 0xF5, 0xEE), kFixed},
    {"sienna", Rgb(0xA0, 0x52, 0x2D), kFixed},
    {"silver", Rgb(0xC0, 0xC0, 0xC0), kFixed},
    {"skyblue", Rgb(0x87, 0xCE, 0xEB), kFixed},
    {"slateblue", Rgb(0x6A, 0x5A, 0xCD), kFixed},
    {"slategray", Rgb(0x70, 0x80, 0x90), kFixed},
    {"snow", Rgb(0xFF, 0xFA, 0xFA), kFixed},
    {"springgreen", Rgb(0x00, 0xFF, 0x7F), kFixed},
    {"steelblue", Rgb(0x46, 0x82, 0xB4), kFixed},
    {"tan", Rgb(0xD2, 0xB4, 0x8C), kFixed},
    {"teal", Rgb(0x00, 0x80, 0x80), kFixed},
    {"thistle", Rgb(0xD8, 0xBF, 0xD8), kFixed},
    {"threeddarkshadow", 0, 21},
    {"threedface", 0, 15},
    {"threedhighlight", 0, 20},
    {"threedlightshadow", 0, 22},
    {"threedshadow", 0, 16},
    {"tomato", Rgb(0xFF, 0x63, 0x47), kFixed},
    {"turquoise", Rgb(0x40, 0xE0, 0xD0), kFixed},
    {"violet", Rgb(0xEE, 0x82, 0xEE), kFixed},
    {"wheat", Rgb(0xF5, 0xDE, 0xB3), kFixed},
    {"white", Rgb(0xFF, 0xFF, 0xFF), kFixed},
    {"whitesmoke", Rgb(0xF5, 0xF5, 0xF5), kFixed},
    {"window", 0, 5},
    {"windowframe", 0, 6},
    {"windowtext", 0, 8},
    {"yellow", Rgb(0xFF, 0xFF, 0x00), kFixed},
    {"yellowgreen", Rgb(0x9A, 0xCD, 0x32), kFixed},
};
static_assert(std::size(kColours) == kColourNameCount);
static_assert(std::is_sorted(std::begin(kColours), std::end(kColours),
                             [](const NamedColour& a, const NamedColour& b) {
                                 return a.name < b.name;
                             }));

constexpr std::size_t kLongestName = 20;  // lightgoldenrodyellow

}  // namespace

const SystemColours& DefaultSystemColours() {
    static constexpr SystemColours kColoursOfDesktop = {
        {0xC8C8C8, 0x000000, 0xD1B499, 0xDBCDBF, 0xF0F0F0, 0xFFFFFF, 0x646464, 0x000000, 0x000000,
         0x000000, 0xB4B4B4, 0xFCF7F4, 0xABABAB, 0xFF9933, 0xFFFFFF, 0xF0F0F0, 0xA0A0A0, 0x6D6D6D,
         0x000000, 0x544E43, 0xFFFFFF, 0x696969, 0xE3E3E3, 0x000000, 0xE1FFFF}};
    return kColoursOfDesktop;
}

bool FindColour(std::string_view name, const SystemColours& system, Colour& colour) {
    if (name.size() > kLongestName) {
        return false;
    }
    char lowerCase[kLongestName];
    std::transform(name.begin(), name.end(), lowerCase, AsciiLower);
    const std::string_view lower(lowerCase, name.size());
    const auto* found = std::lower_bound(
        std::begin(kColours), std::end(kColours), lower,
        [](const NamedColour& entry, std::string_view key) { return entry.name < key; });
    if (found == std::end(kColours) || found->name != lower) {
        return false;
    }
    colour = found->nSystem == kFixed ? found->colour
                                      : system.aColour[static_cast<std::size_t>(found->nSystem)];
    return true;
}

std::string_view ColourName(int nIndex) {
    return nIndex >= 0 && nIndex < kColourNameCount ? kColours[nIndex].name : std::string_view{};
}

}  // namespace mvp::richtext
