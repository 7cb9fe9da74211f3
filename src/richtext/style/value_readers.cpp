#include "richtext/style/value_readers.h"

#include <algorithm>
#include <limits>
#include <span>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

template <class T>
struct Keyword {
    std::string_view name;
    T value;
};

template <class T>
std::optional<T> FindKeyword(std::string_view value, std::span<const Keyword<T>> keywords) {
    value = Trim(value);
    for (const Keyword<T>& keyword : keywords) {
        if (EqualsNoCase(keyword.name, value)) {
            return keyword.value;
        }
    }
    return std::nullopt;
}

// An empty name in these tables is what an empty value means.
constexpr Keyword<bool> kFontStyles[] = {
    {"", false}, {"normal", false}, {"italic", true}, {"oblique", true}};
constexpr Keyword<std::int32_t> kFontWeights[] = {
    {"", 400}, {"normal", 400}, {"bold", 700}, {"bolder", 900}, {"lighter", 100}};
constexpr Keyword<TextAlign> kTextAligns[] = {{"", TextAlign::Left},
                                              {"left", TextAlign::Left},
                                              {"center", TextAlign::Center},
                                              {"right", TextAlign::Right}};
constexpr Keyword<VerticalAlign> kVerticalAligns[] = {
    {"", VerticalAlign::Baseline},     {"baseline", VerticalAlign::Baseline},
    {"middle", VerticalAlign::Middle}, {"vcenter", VerticalAlign::Middle},
    {"top", VerticalAlign::Top},       {"bottom", VerticalAlign::Bottom}};
constexpr Keyword<TextTransform> kTextTransforms[] = {{"", TextTransform::None},
                                                      {"none", TextTransform::None},
                                                      {"uppercase", TextTransform::Uppercase},
                                                      {"lowercase", TextTransform::Lowercase},
                                                      {"capitalize", TextTransform::Capitalize}};
constexpr Keyword<std::uint8_t> kDecorations[] = {{"none", kDecorationNone},
                                                  {"underline", kUnderline},
                                                  {"line-through", kLineThrough},
                                                  {"overline", kOverline}};
constexpr Keyword<std::int32_t> kBorderWidths[] = {{"thin", 1}, {"medium", 3}, {"thick", 5}};
constexpr Keyword<BorderStyle> kBorderStyles[] = {{"none", BorderStyle::None},
                                                  {"solid", BorderStyle::Solid},
                                                  {"dotted", BorderStyle::Dotted},
                                                  {"dashed", BorderStyle::Dashed},
                                                  {"double", BorderStyle::Double}};
constexpr Keyword<BackgroundEffect> kEffects[] = {{"transparent", BackgroundEffect::Transparent},
                                                  {"solid", BackgroundEffect::Solid},
                                                  {"hgradient", BackgroundEffect::HGradient},
                                                  {"vgradient", BackgroundEffect::VGradient},
                                                  {"hcgradient", BackgroundEffect::HCGradient},
                                                  {"vcgradient", BackgroundEffect::VCGradient},
                                                  {"3hgradient", BackgroundEffect::HGradient3},
                                                  {"3vgradient", BackgroundEffect::VGradient3},
                                                  {"noise", BackgroundEffect::Noise},
                                                  {"diagshade", BackgroundEffect::DiagShade},
                                                  {"hshade", BackgroundEffect::HShade},
                                                  {"vshade", BackgroundEffect::VShade},
                                                  {"hbump", BackgroundEffect::HBump},
                                                  {"vbump", BackgroundEffect::VBump},
                                                  {"softbump", BackgroundEffect::SoftBump},
                                                  {"hardbump", BackgroundEffect::HardBump},
                                                  {"metal", BackgroundEffect::Metal}};
constexpr Keyword<LengthUnit> kUnits[] = {
    {"px", LengthUnit::Pixel}, {"ex", LengthUnit::Ex},         {"em", LengthUnit::Em},
    {"in", LengthUnit::Inch},  {"cm", LengthUnit::Centimetre}, {"mm", LengthUnit::Millimetre},
    {"pt", LengthUnit::Point}, {"pc", LengthUnit::Pica}};

// The classic font sizes 1 to 7.
constexpr std::int32_t kSizeSteps[] = {8, 10, 12, 14, 18, 24, 36};

std::int32_t Held(std::int64_t nValue) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(nValue, Limits::min(), Limits::max()));
}

// So many 127ths of the dots: an inch has 2.54 cm, so a centimetre is 50 of them. In integers,
// since a processor may calculate fractions with more digits than another, and is cut to another
// dot then.
constexpr std::int64_t InchParts(std::int64_t nDots, std::int64_t nParts) {
    return nDots / 127 * nParts + nDots % 127 * nParts / 127;
}

std::optional<Colour> ReadHexColour(std::string_view value) {
    std::uint32_t digits = 0;
    for (const char c : value.substr(1)) {
        const char lower = AsciiLower(c);
        if (!IsDigit(c) && !(lower >= 'a' && lower <= 'f')) {
            return std::nullopt;
        }
        digits = digits * 16 + static_cast<std::uint32_t>(IsDigit(c) ? c - '0' : lower - 'a' + 10);
    }
    return Rgb(digits >> 16, digits >> 8 & 0xFF, digits & 0xFF);
}

}  // namespace

std::optional<Colour> ReadColour(std::string_view value, const SystemColours& system) {
    value = Trim(value);
    if (value.empty()) {
        return std::nullopt;
    }
    constexpr std::size_t kHexLength = 7;  // #rrggbb
    if (value.front() == '#') {
        return value.size() == kHexLength ? ReadHexColour(value) : std::nullopt;
    }
    Colour colour = 0;
    const bool read = IsDigit(value.front()) ? ReadUnsignedCNumber(value, colour)
                                             : FindColour(value, system, colour);
    return read ? std::optional(colour) : std::nullopt;
}

std::optional<Colour> ReadPropertyColour(std::string_view value, const SystemColours& system) {
    return EqualsNoCase(Trim(value), "transparent") ? kNoColour : ReadColour(value, system);
}

std::optional<Length> ReadLength(std::string_view value) {
    value = Trim(value);
    if (value.empty()) {
        return std::nullopt;
    }
    Length length;
    if (value.back() == '%') {
        length.unit = LengthUnit::Percent;
        return ReadDecimal(value, length.nValue) ? std::optional(length) : std::nullopt;
    }
    std::string_view digits = value;
    if (digits.front() == '+' || digits.front() == '-') {
        digits.remove_prefix(1);
    }
    if (digits.size() > 2) {
        const auto unit =
            FindKeyword<LengthUnit>(digits.substr(digits.size() - 2), std::span(kUnits));
        if (unit.has_value()) {
            length.unit = *unit;
            return ReadDecimal(digits, length.nValue) ? std::optional(length) : std::nullopt;
        }
    }
    return ReadCNumber(value, length.nValue) ? std::optional(length) : std::nullopt;
}

std::int32_t ResolveLength(Length length, std::int32_t nDefault, LengthUse use,
                           const LengthContext& context) {
    const std::int64_t value = length.nValue;
    const std::int64_t dots = value * context.nDpi;
    switch (length.unit) {
        case LengthUnit::Percent:
            return MulDivRounded(nDefault, length.nValue, 100);
        case LengthUnit::Ex:
            return Held(value * context.nXHeight);
        case LengthUnit::Em:
            return Held(value * context.nFontHeight);
        case LengthUnit::Inch:
            return Held(dots);
        case LengthUnit::Centimetre:
            return Held(InchParts(dots, 50));
        case LengthUnit::Millimetre:
            return Held(InchParts(dots, 5));
        case LengthUnit::Point:
            return Held(dots / 72);
        case LengthUnit::Pica:
            return Held(dots / 6);
        case LengthUnit::Plain:
            if (use == LengthUse::FontSize && length.nValue >= 1 && length.nValue <= 7) {
                return kSizeSteps[length.nValue - 1];
            }
            return length.nValue;
        case LengthUnit::Pixel:
            break;
    }
    return length.nValue;
}

std::int32_t LengthOr(std::string_view value, std::int32_t nDefault, LengthUse use,
                      const LengthContext& context) {
    const std::optional<Length> length = ReadLength(value);
    return length.has_value() ? ResolveLength(*length, nDefault, use, context) : nDefault;
}

std::optional<bool> ReadFontStyle(std::string_view value) {
    return FindKeyword<bool>(value, kFontStyles);
}

std::optional<std::int32_t> ReadFontWeight(std::string_view value) {
    const auto keyword = FindKeyword<std::int32_t>(value, kFontWeights);
    std::int32_t number = 0;
    if (keyword.has_value() || !ReadCNumber(value, number)) {
        return keyword;
    }
    return number;
}

std::optional<TextAlign> ReadTextAlign(std::string_view value) {
    return FindKeyword<TextAlign>(value, kTextAligns);
}

std::optional<VerticalAlign> ReadVerticalAlign(std::string_view value) {
    return FindKeyword<VerticalAlign>(value, kVerticalAligns);
}

std::optional<TextTransform> ReadTextTransform(std::string_view value) {
    return FindKeyword<TextTransform>(value, kTextTransforms);
}

std::optional<std::uint8_t> ReadTextDecoration(std::string_view value) {
    std::string_view rest = Trim(value);
    if (rest.empty()) {
        return kDecorationNone;
    }
    std::uint8_t flags = 0;
    for (std::string_view word = NextToken(rest, " ,\t\r\n"); !word.empty();
         word = NextToken(rest, " ,\t\r\n")) {
        flags |= FindKeyword<std::uint8_t>(word, kDecorations).value_or(0);
    }
    return flags != 0 ? std::optional(flags) : std::nullopt;
}

std::optional<Length> ReadBorderWidth(std::string_view value) {
    const auto keyword = FindKeyword<std::int32_t>(value, kBorderWidths);
    return keyword.has_value() ? Length{*keyword, LengthUnit::Pixel} : ReadLength(value);
}

std::optional<BorderStyle> ReadBorderStyle(std::string_view value) {
    return FindKeyword<BorderStyle>(value, kBorderStyles);
}

std::optional<BackgroundEffect> ReadBackgroundEffect(std::string_view value,
                                                     const LengthContext& context) {
    if (const auto keyword = FindKeyword<BackgroundEffect>(value, kEffects); keyword.has_value()) {
        return keyword;
    }
    const std::optional<Length> length = ReadLength(value);
    if (!length.has_value()) {
        return std::nullopt;
    }
    const std::int32_t code = ResolveLength(*length, 0, LengthUse::Size, context);
    if (code < static_cast<int>(BackgroundEffect::Transparent) ||
        code > static_cast<int>(BackgroundEffect::Metal)) {
        return std::nullopt;
    }
    return static_cast<BackgroundEffect>(code);
}

}  // namespace mvp::richtext
