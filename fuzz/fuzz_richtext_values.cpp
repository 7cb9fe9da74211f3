// Any bytes through every value reader.
#include "fuzz_target.h"
#include "richtext/markup/markup_tables.h"
#include "richtext/style/value_readers.h"

void Fuzz(std::string_view value) {
    using namespace mvp::richtext;
    const SystemColours& system = DefaultSystemColours();
    const LengthContext context{7, 13, 96};
    const auto colour = ReadColour(value, system);
    FUZZ_CHECK(!colour.has_value() || ReadPropertyColour(value, system) == colour);
    const auto length = ReadLength(value);
    for (const std::int32_t fallback : {0, 1, -1, 2147483647, -2147483647 - 1}) {
        const std::int32_t size32 = LengthOr(value, fallback, LengthUse::Size, context);
        FUZZ_CHECK(length.has_value() || size32 == fallback);
        LengthOr(value, fallback, LengthUse::FontSize, context);
    }
    const auto effect = ReadBackgroundEffect(value, context);
    FUZZ_CHECK(!effect.has_value() ||
               (static_cast<int>(*effect) >= -1 && static_cast<int>(*effect) <= 15));
    ReadFontStyle(value);
    ReadFontWeight(value);
    ReadTextAlign(value);
    ReadVerticalAlign(value);
    ReadTextTransform(value);
    ReadTextDecoration(value);
    ReadBorderWidth(value);
    ReadBorderStyle(value);
    FindTag(value);
    FindAttribute(value);
    MatchEntity(value);
}
