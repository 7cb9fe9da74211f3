// The value readers and the fixed tables, case by case.
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "richtext/control/browser_command.h"
#include "richtext/markup/markup_tables.h"
#include "richtext/style/colour_table.h"
#include "richtext/style/value_readers.h"
#include "unit/richtext/test_text.h"

namespace mvp::richtext {
namespace {

// The current desktop colours of these tests: index in the low byte, so that each is told apart.
SystemColours TestColours() {
    SystemColours system;
    for (std::size_t i = 0; i < system.aColour.size(); ++i) {
        system.aColour[i] = 0x100 + static_cast<Colour>(i);
    }
    return system;
}

TEST(Colours, AreReadAsWritten) {
    constexpr std::pair<const char*, Colour> kCases[] = {
        {"#FF0000", 0x0000FF},   {"#ff9900", 0x0099FF},  {"0xFF0000", 0xFF0000},
        {"0x0000FF", 0x0000FF},  {"255", 0x0000FF},      {"010", 0x000008},
        {"red", 0x0000FF},       {"RED", 0x0000FF},      {" navy ", 0x800000},
        {"lightgrey", 0xD3D3D3}, {"darkgray", 0xA9A9A9}, {"yellowgreen", 0x32CD9A},
        {"aqua", 0xFFFF00},      {"cyan", 0xFFFF00},     {"99999999999", 0xFFFFFFFF}};
    const SystemColours system = TestColours();
    for (const auto& [value, expected] : kCases) {
        EXPECT_EQ(ReadColour(value, system), expected) << value;
    }
    EXPECT_EQ(ReadColour("lightgoldenrodyellow", system), 0xD2FAFAU);
    for (const char* other : {"", "#F00", "#FF00000", "#GG0000", "nocolour", "lightgray", "grey",
                              "rebeccapurple", "transparent", "-1"}) {
        EXPECT_EQ(ReadColour(other, system), std::nullopt) << other;
    }
    EXPECT_EQ(ReadPropertyColour("Transparent", system), kNoColour);
}

TEST(Colours, OfTheDesktopComeFromTheCaller) {
    const SystemColours system = TestColours();
    std::string found;
    std::string_view previous;
    for (int i = 0; i < kColourNameCount; ++i) {
        EXPECT_LT(previous, ColourName(i));
        previous = ColourName(i);
        const Colour colour = ReadColour(previous, system).value_or(kNoColour);
        if (colour >= 0x100 && colour < 0x119) {
            found.append(previous).append(" " + std::to_string(colour - 0x100) + ", ");
        }
    }
    EXPECT_EQ(found,
              "activeborder 10, activecaption 2, appworkspace 12, background 1, buttonface 15, "
              "buttonhighlight 20, buttonshadow 16, buttontext 18, captiontext 9, graytext 17, "
              "highlight 13, highlighttext 14, inactiveborder 11, inactivecaption 3, "
              "inactivecaptiontext 19, infobackground 24, infotext 23, menu 4, menutext 7, "
              "scrollbar 0, threeddarkshadow 21, threedface 15, threedhighlight 20, "
              "threedlightshadow 22, threedshadow 16, window 5, windowframe 6, windowtext 8, ");
    EXPECT_EQ(kColourNameCount, 168);
}

TEST(Lengths, AreReadAsWritten) {
    const LengthContext context{5, 20, 96};
    const auto expect = [&](const char* value, std::int32_t size) {
        for (const LengthUse use : {LengthUse::Size, LengthUse::FontSize}) {
            EXPECT_EQ(LengthOr(value, 200, use, context), size) << value;
        }
    };
    constexpr std::pair<const char*, std::int32_t> kCases[] = {
        {"0", 0},      {"8", 8},      {"-1", -1},   {"0x10", 16}, {"010", 8},
        {"12abc", 12}, {"10px", 10},  {"10PX", 10}, {"3px", 3},   {"2pt", 2},
        {"-2pt", 2},   {"10pt", 13},  {"72pt", 96}, {"1in", 96},  {"+1in", 96},
        {"1cm", 37},   {"10mm", 37},  {"1mm", 3},   {"1pc", 16},  {"2ex", 10},
        {"2em", 40},   {"1.5em", 20}, {"50%", 100}, {"33%", 66},  {"-50%", -100}};
    for (const auto& [value, size] : kCases) {
        expect(value, size);
    }
    expect("1000000%", 2000000);
    for (const char* large : {"99999999999", "99999999999in", "99999999999cm"}) {
        expect(large, std::numeric_limits<std::int32_t>::max());
    }
    for (const char* other : {"", "garbage", "px"}) {
        expect(other, 200);
    }
    // Without a unit a font has one of seven sizes.
    constexpr std::int32_t kSteps[] = {8, 10, 12, 14, 18, 24, 36};
    for (int n = 1; n <= 7; ++n) {
        const std::string valueText = (n == 3 ? "+" : "") + std::to_string(n);
        EXPECT_EQ(LengthOr(valueText, 200, LengthUse::Size, context), n);
        EXPECT_EQ(LengthOr(valueText, 200, LengthUse::FontSize, context), kSteps[n - 1]);
    }
    // Halves of a percentage are rounded away from zero.
    EXPECT_EQ(LengthOr("50%", 5, LengthUse::Size, context), 3);
    EXPECT_EQ(LengthOr("65%", 10, LengthUse::Size, context), 7);
    EXPECT_EQ(LengthOr("-50%", 5, LengthUse::Size, context), -3);
}

// The numbers of what a reader makes of each, "-" for what it does not know.
template <class Reader>
std::string All(Reader read, std::initializer_list<const char*> values) {
    std::string all;
    for (const char* valueText : values) {
        const auto value = read(valueText);
        all += value ? std::to_string(static_cast<int>(*value)) + " " : "- ";
    }
    return all;
}

TEST(Keywords, AreReadAsWritten) {
    EXPECT_EQ(All(ReadFontStyle, {"", "normal", "Italic", "oblique", "bold"}), "0 0 1 1 - ");
    EXPECT_EQ(All(ReadFontWeight, {"", "normal", "bold", "bolder", "lighter", "650", "heavy"}),
              "400 400 700 900 100 650 - ");
    // Only the tag justifies.
    EXPECT_EQ(All(ReadTextAlign, {"", "center", "RIGHT", "justify"}), "0 1 2 - ");
    EXPECT_EQ(All(ReadVerticalAlign, {"", "middle", "vcenter", "top", "bottom", "sub"}),
              "0 1 1 2 3 - ");
    EXPECT_EQ(All(ReadTextTransform, {"none", "capitalize", "full-width"}), "0 3 - ");
    EXPECT_EQ(
        All(ReadTextDecoration, {"", "underline,line-through overline", "none blink", "blink"}),
        "1 14 1 - ");
    EXPECT_EQ(All(ReadBorderStyle, {"dashed", "groove"}), "3 - ");
    EXPECT_EQ(ReadBorderWidth("thin"), (Length{1, LengthUnit::Pixel}));
    EXPECT_EQ(ReadBorderWidth("thick"), (Length{5, LengthUnit::Pixel}));
    EXPECT_EQ(ReadBorderWidth("2pt"), (Length{2, LengthUnit::Point}));
}

TEST(BackgroundEffects, HaveTheNumbersOfTheLanguage) {
    constexpr const char* kNames[] = {
        "transparent", "solid",      "hgradient", "vgradient", "hcgradient", "vcgradient",
        "3hgradient",  "3vgradient", "noise",     "diagshade", "hshade",     "vshade",
        "hbump",       "vbump",      "softbump",  "hardbump",  "metal"};
    const LengthContext context{5, 20, 96};
    int code = -1;
    for (const char* name : kNames) {
        const auto effect = static_cast<BackgroundEffect>(code);
        EXPECT_EQ(ReadBackgroundEffect(name, context), effect) << name;
        EXPECT_EQ(ReadBackgroundEffect(std::to_string(code), context), effect) << code;
        ++code;
    }
    for (const char* other : {"", "plaid", "16", "-2", "99999999999"}) {
        EXPECT_EQ(ReadBackgroundEffect(other, context), std::nullopt) << other;
    }
}

TEST(Tables, HoldTheLanguagesTags) {
    std::string tags;
    for (int i = 0; i < kTagCount; ++i) {
        const TagInfo& info = InfoOf(static_cast<TagId>(i));
        tags.append(info.name).append(" " + std::to_string(static_cast<int>(info.kind)) + " ");
        tags.append(info.selector).append(", ");
        EXPECT_EQ(FindTag(info.name), static_cast<TagId>(i)) << info.name;
    }
    EXPECT_EQ(
        tags,
        "b 1 bold, i 2 italic, em 2 italic, u 3 underline, s 4 strikeout, strike 4 strikeout, "
        "font 5 font, hr 6 , br 7 , t 8 , left 9 left, center 10 center, right 11 right, "
        "justify 12 justify, baseline 13 baseline, top 14 top, vcenter 15 vcenter, "
        "middle 15 vcenter, bottom 16 vcenter, bmp 17 , icon 18 , ilst 19 , string 20 , "
        "body 21 body, h1 21 h1, h2 21 h2, h3 21 h3, h4 21 h4, h5 21 h5, h6 21 h6, "
        "code 21 code, pre 21 pre, big 21 big, small 21 small, sub 21 sub, sup 21 sup, "
        "span 22 span, a 23 link, table 0 table, tr 0 tr, td 0 td, ");
    EXPECT_EQ(FindTag("TABLE"), TagId::Table);
    for (const char* unknown : {"p", "div", "th", "", "tablex", "averyveryverylongtagname"}) {
        EXPECT_EQ(FindTag(unknown), std::nullopt) << unknown;
    }
}

TEST(Tables, FindEveryAttribute) {
    for (int i = 0; i < kAttributeCount; ++i) {
        const auto attribute = static_cast<AttributeId>(i);
        EXPECT_EQ(FindAttribute(NameOf(attribute)), attribute);
    }
    EXPECT_EQ(FindAttribute("CellPadding"), AttributeId::CellPadding);
    EXPECT_EQ(FindAttribute("Href"), std::nullopt);
    EXPECT_EQ(FindAttribute("onclick"), std::nullopt);
}

TEST(BrowserCommand, CutsTheCommandAtItsPlaceholder) {
    ExpectTexts([](const char* psz) { return BrowserCommandLine(psz, "T"); },
                {
                    {"browser.exe %1", "browser.exe  T"},
                    {R"("C:\A B\browser.exe" -nohome)", R"("C:\A B\browser.exe" -nohome T)"},
                    {R"("C:\A B\browser.exe" "%1")", R"("C:\A B\browser.exe"  T)"},
                    {R"("C:\A B\browser.exe" -url "%1" -new)", R"("C:\A B\browser.exe" -url  T)"},
                    {R"(browser.exe "-url=%1")", "browser.exe  T"},
                    {R"("browser.exe" %1 "%1")", R"("browser.exe"  T)"},
                    {"%1", " T"},
                    {R"("%1")", " T"},
                    {"browser.exe %10", "browser.exe  T"},
                    {"", " T"},
                });
}

}  // namespace
}  // namespace mvp::richtext
