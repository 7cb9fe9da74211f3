// Readers for the values of attributes and style properties. Each returns nothing when the value is
// empty or cannot be read and the language gives that case no meaning of its own; the caller then
// keeps what it had (value_or). Letter case of keywords, colour names and units does not matter,
// and white space around a value is dropped.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "richtext/style/colour_table.h"

namespace mvp::richtext {

enum class TextAlign : std::uint8_t { Left, Center, Right, Justify };
enum class VerticalAlign : std::uint8_t { Baseline, Middle, Top, Bottom };
enum class TextTransform : std::uint8_t { None, Uppercase, Lowercase, Capitalize };
enum class BorderStyle : std::uint8_t { None, Solid, Dotted, Dashed, Double };

// Flags of text-decoration.
constexpr std::uint8_t kDecorationNone = 1;
constexpr std::uint8_t kUnderline = 2;
constexpr std::uint8_t kLineThrough = 4;
constexpr std::uint8_t kOverline = 8;

// How a table or a cell is filled. The numbers are part of the language.
enum class BackgroundEffect : std::int8_t {
    Transparent = -1,
    Solid = 0,
    HGradient,
    VGradient,
    HCGradient,
    VCGradient,
    HGradient3,
    VGradient3,
    Noise,
    DiagShade,
    HShade,
    VShade,
    HBump,
    VBump,
    SoftBump,
    HardBump,
    Metal
};

// A length as written. What it comes to depends on the font, the device and the place it is used.
enum class LengthUnit : std::uint8_t {
    Plain,
    Pixel,
    Percent,
    Ex,
    Em,
    Inch,
    Centimetre,
    Millimetre,
    Point,
    Pica
};
struct Length {
    std::int32_t nValue = 0;
    LengthUnit unit = LengthUnit::Plain;

    bool operator==(const Length&) const = default;
};

struct LengthContext {
    std::int32_t nXHeight = 0;     // height of the letter x in the current font, pixels
    std::int32_t nFontHeight = 0;  // height of the current font, pixels
    std::int32_t nDpi = 96;        // the device's vertical dots per inch
};

enum class LengthUse : std::uint8_t { Size, FontSize };

std::optional<Colour> ReadColour(std::string_view value, const SystemColours& system);
// The same where a style property takes a colour: "transparent" gives kNoColour.
std::optional<Colour> ReadPropertyColour(std::string_view value, const SystemColours& system);

std::optional<Length> ReadLength(std::string_view value);
// In pixels. nDefault is what a percentage is taken of.
std::int32_t ResolveLength(Length length, std::int32_t nDefault, LengthUse use,
                           const LengthContext& context);
// Both steps at once; nDefault when there is nothing to read.
std::int32_t LengthOr(std::string_view value, std::int32_t nDefault, LengthUse use,
                      const LengthContext& context);

std::optional<bool> ReadFontStyle(std::string_view value);  // true: italic
std::optional<std::int32_t> ReadFontWeight(std::string_view value);
std::optional<TextAlign> ReadTextAlign(std::string_view value);
std::optional<VerticalAlign> ReadVerticalAlign(std::string_view value);
std::optional<TextTransform> ReadTextTransform(std::string_view value);
std::optional<std::uint8_t> ReadTextDecoration(std::string_view value);
std::optional<Length> ReadBorderWidth(std::string_view value);
std::optional<BorderStyle> ReadBorderStyle(std::string_view value);
std::optional<BackgroundEffect> ReadBackgroundEffect(std::string_view value,
                                                     const LengthContext& context);

}  // namespace mvp::richtext
