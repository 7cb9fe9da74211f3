// Any bytes through every data reader.
#include "fuzz_target.h"
#include "richtext/markup/markup_tables.h"
#include "richtext/style/value_readers.h"

void Fuzz(std::string_view data) {
    using namespace mvp::richtext;
    const SystemColours& system = DefaultSystemColours();
    const LengthContext context{7, 13, 96};
    const auto colour = ReadColour(data, system);
    FUZZ_CHECK(!colour.has_value() || ReadPropertyColour(data, system) == colour);
    const auto length = ReadLength(data);
    for (const std::int32_t fallback : {0, 1, -1, 2147483647, -2147483647 - 1}) {
        const std::int32_t size32 = LengthOr(data, fallback, LengthUse::Size, context);
        FUZZ_CHECK(length.has_value() || size32 == fallback);
        LengthOr(data, fallback, LengthUse::FontSize, context);
    }
    const auto effect = ReadBackgroundEffect(data, context);
    FUZZ_CHECK(!effect.has_value() ||
               (static_cast<int>(*effect) >= -1 && static_cast<int>(*effect) <= 15));
    ReadFontStyle(data);
    ReadFontWeight(data);
    ReadTextAlign(data);
    ReadVerticalAlign(data);
    ReadTextTransform(data);
    ReadTextDecoration(data);
    ReadBorderWidth(data);
    ReadBorderStyle(data);
    FindTag(data);
    FindAttribute(data);
    MatchEntity(data);
}
