// The value readers and the fixed tables, case by case.
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "richtext/markup/markup_tables.h"
#include "richtext/markup/text_bytes.h"
#include "richtext/style/colour_table.h"
#include "richtext/style/value_readers.h"

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

constexpr Colour kDefault = 0xABCDEF;

TEST(Colours, AreReadAsWritten) {
    struct Case {
        const char* pszValue;
        Colour expected;
    };
    constexpr Case kCases[] = {
        {"#FF0000", 0x0000FF},
        {"red", 0x0000FF},
        {"#ff9900", 0x0099FF},
        {"0xFF0000", 0xFF0000},
        {"0x0000FF", 0x0000FF},
        {"255", 255},
        {"010", 8},
        {"#F00", kDefault},
        {"#FF00000", kDefault},
        {"#GG0000", kDefault},
        {"", kDefault},
        {"nocolour", kDefault},
        {"RED", 0x0000FF},
        {" navy ", 0x800000},
        {"lightgrey", 0xD3D3D3},
        {"lightgray", kDefault},
        {"grey", kDefault},
        {"darkgray", 0xA9A9A9},
        {"yellowgreen", 0x32CD9A},
        {"aqua", 0xFFFF00},
        {"cyan", 0xFFFF00},
        {"rebeccapurple", kDefault},
        {"transparent", kDefault},
        {"-1", kDefault},
        {"99999999999", 0xFFFFFFFF},
        {"lightgoldenrodyellow", 0xD2FAFA},
    };
    const SystemColours system = TestColours();
    for (const Case& c : kCases) {
        EXPECT_EQ(ReadColour(c.pszValue, system).value_or(kDefault), c.expected) << c.pszValue;
    }
    EXPECT_EQ(ReadPropertyColour("Transparent", system), kNoColour);
}

TEST(Colours, OfTheDesktopComeFromTheCaller) {
    struct Case {
        const char* pszName;
        Colour nIndex;
    };
    constexpr Case kCases[] = {
        {"activeborder", 10},   {"activecaption", 2},    {"appworkspace", 12},
        {"background", 1},      {"buttonface", 15},      {"buttonhighlight", 20},
        {"buttonshadow", 16},   {"buttontext", 18},      {"captiontext", 9},
        {"graytext", 17},       {"highlight", 13},       {"highlighttext", 14},
        {"inactiveborder", 11}, {"inactivecaption", 3},  {"inactivecaptiontext", 19},
        {"infobackground", 24}, {"infotext", 23},        {"menu", 4},
        {"menutext", 7},        {"scrollbar", 0},        {"threeddarkshadow", 21},
        {"threedface", 15},     {"threedhighlight", 20}, {"threedlightshadow", 22},
        {"threedshadow", 16},   {"window", 5},           {"windowframe", 6},
        {"windowtext", 8}};
    const SystemColours system = TestColours();
    int nFromDesktop = 0;
    for (int i = 0; i < kColourNameCount; ++i) {
        const Colour colour = ReadColour(ColourName(i), system).value_or(kNoColour);
        nFromDesktop += colour >= 0x100 && colour < 0x119 ? 1 : 0;
    }
    EXPECT_EQ(nFromDesktop, 28);
    for (const Case& c : kCases) {
        EXPECT_EQ(ReadColour(c.pszName, system), 0x100 + c.nIndex) << c.pszName;
    }
}

TEST(Lengths, AreReadAsWritten) {
    struct Case {
        const char* pszValue;
        std::int32_t nSize;
        std::int32_t nFontSize;
    };
    constexpr std::int32_t kWithout = 200;
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    constexpr Case kCases[] = {
        {"", kWithout, kWithout},
        {"garbage", kWithout, kWithout},
        {"px", kWithout, kWithout},
        {"3", 3, 12},
        {"1", 1, 8},
        {"2", 2, 10},
        {"4", 4, 14},
        {"5", 5, 18},
        {"6", 6, 24},
        {"7", 7, 36},
        {"8", 8, 8},
        {"0", 0, 0},
        {"-1", -1, -1},
        {"+3", 3, 12},
        {"0x10", 16, 16},
        {"010", 8, 8},
        {"12abc", 12, 12},
        {"10px", 10, 10},
        {"10PX", 10, 10},
        {"3px", 3, 3},
        {"-2pt", 2, 2},  // 2 * 96 / 72 = 2.67
        {"2pt", 2, 2},
        {"10pt", 13, 13},  // 13.33
        {"72pt", 96, 96},
        {"1in", 96, 96},
        {"+1in", 96, 96},
        {"1cm", 37, 37},  // 37.8
        {"10mm", 37, 37},
        {"1mm", 3, 3},
        {"1pc", 16, 16},
        {"2ex", 10, 10},
        {"2em", 40, 40},
        {"1.5em", 20, 20},  // the number is an integer
        {"50%", 100, 100},
        {"33%", 66, 66},
        {"-50%", -100, -100},
        {"1000000%", 2000000, 2000000},
        {"99999999999", kMost, kMost},
        {"99999999999in", kMost, kMost},
        {"99999999999cm", kMost, kMost},
    };
    const LengthContext context{5, 20, 96};
    for (const Case& c : kCases) {
        EXPECT_EQ(LengthOr(c.pszValue, kWithout, LengthUse::Size, context), c.nSize) << c.pszValue;
        EXPECT_EQ(LengthOr(c.pszValue, kWithout, LengthUse::FontSize, context), c.nFontSize)
            << c.pszValue;
    }
    // Halves of a percentage are rounded away from zero.
    EXPECT_EQ(LengthOr("50%", 5, LengthUse::Size, context), 3);
    EXPECT_EQ(LengthOr("65%", 10, LengthUse::Size, context), 7);
    EXPECT_EQ(LengthOr("-50%", 5, LengthUse::Size, context), -3);
}

TEST(Keywords, AreReadAsWritten) {
    EXPECT_EQ(ReadFontStyle(""), false);
    EXPECT_EQ(ReadFontStyle("normal"), false);
    EXPECT_EQ(ReadFontStyle("Italic"), true);
    EXPECT_EQ(ReadFontStyle("oblique"), true);
    EXPECT_EQ(ReadFontStyle("bold"), std::nullopt);

    EXPECT_EQ(ReadFontWeight(""), 400);
    EXPECT_EQ(ReadFontWeight("normal"), 400);
    EXPECT_EQ(ReadFontWeight("bold"), 700);
    EXPECT_EQ(ReadFontWeight("bolder"), 900);
    EXPECT_EQ(ReadFontWeight("lighter"), 100);
    EXPECT_EQ(ReadFontWeight("650"), 650);
    EXPECT_EQ(ReadFontWeight("heavy"), std::nullopt);

    EXPECT_EQ(ReadTextAlign(""), TextAlign::Left);
    EXPECT_EQ(ReadTextAlign("center"), TextAlign::Center);
    EXPECT_EQ(ReadTextAlign("RIGHT"), TextAlign::Right);
    EXPECT_EQ(ReadTextAlign("justify"), std::nullopt);  // only the tag justifies

    EXPECT_EQ(ReadVerticalAlign(""), VerticalAlign::Baseline);
    EXPECT_EQ(ReadVerticalAlign("middle"), VerticalAlign::Middle);
    EXPECT_EQ(ReadVerticalAlign("vcenter"), VerticalAlign::Middle);
    EXPECT_EQ(ReadVerticalAlign("top"), VerticalAlign::Top);
    EXPECT_EQ(ReadVerticalAlign("bottom"), VerticalAlign::Bottom);
    EXPECT_EQ(ReadVerticalAlign("sub"), std::nullopt);

    EXPECT_EQ(ReadTextTransform("none"), TextTransform::None);
    EXPECT_EQ(ReadTextTransform("capitalize"), TextTransform::Capitalize);
    EXPECT_EQ(ReadTextTransform("full-width"), std::nullopt);

    EXPECT_EQ(ReadTextDecoration(""), kDecorationNone);
    EXPECT_EQ(ReadTextDecoration("underline,line-through overline"),
              kUnderline | kLineThrough | kOverline);
    EXPECT_EQ(ReadTextDecoration("none blink"), kDecorationNone);
    EXPECT_EQ(ReadTextDecoration("blink"), std::nullopt);

    EXPECT_EQ(ReadBorderStyle("dashed"), BorderStyle::Dashed);
    EXPECT_EQ(ReadBorderStyle("groove"), std::nullopt);
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
    int nCode = -1;
    for (const char* pszName : kNames) {
        const auto effect = ReadBackgroundEffect(pszName, context);
        ASSERT_TRUE(effect.has_value()) << pszName;
        EXPECT_EQ(static_cast<int>(*effect), nCode) << pszName;
        EXPECT_EQ(ReadBackgroundEffect(std::to_string(nCode), context), effect) << nCode;
        ++nCode;
    }
    for (const char* pszOther : {"", "plaid", "16", "-2", "99999999999"}) {
        EXPECT_EQ(ReadBackgroundEffect(pszOther, context), std::nullopt) << pszOther;
    }
}

TEST(Tables, HoldTheLanguagesTags) {
    struct Case {
        const char* pszName;
        int nKind;
        const char* pszSelector;
    };
    constexpr Case kCases[] = {{"b", 1, "bold"},
                               {"i", 2, "italic"},
                               {"em", 2, "italic"},
                               {"u", 3, "underline"},
                               {"s", 4, "strikeout"},
                               {"strike", 4, "strikeout"},
                               {"font", 5, "font"},
                               {"hr", 6, ""},
                               {"br", 7, ""},
                               {"t", 8, ""},
                               {"left", 9, "left"},
                               {"center", 10, "center"},
                               {"right", 11, "right"},
                               {"justify", 12, "justify"},
                               {"baseline", 13, "baseline"},
                               {"top", 14, "top"},
                               {"vcenter", 15, "vcenter"},
                               {"middle", 15, "vcenter"},
                               {"bottom", 16, "vcenter"},
                               {"bmp", 17, ""},
                               {"icon", 18, ""},
                               {"ilst", 19, ""},
                               {"string", 20, ""},
                               {"body", 21, "body"},
                               {"h1", 21, "h1"},
                               {"h6", 21, "h6"},
                               {"code", 21, "code"},
                               {"pre", 21, "pre"},
                               {"big", 21, "big"},
                               {"small", 21, "small"},
                               {"sub", 21, "sub"},
                               {"sup", 21, "sup"},
                               {"span", 22, "span"},
                               {"a", 23, "link"}};
    for (const Case& c : kCases) {
        const auto tag = FindTag(c.pszName);
        ASSERT_TRUE(tag.has_value()) << c.pszName;
        EXPECT_EQ(static_cast<int>(InfoOf(*tag).kind), c.nKind) << c.pszName;
        EXPECT_EQ(InfoOf(*tag).selector, c.pszSelector) << c.pszName;
    }
    EXPECT_TRUE(FindTag("TABLE").has_value());
    for (const char* pszUnknown : {"p", "div", "th", "", "tablex", "averyveryverylongtagname"}) {
        EXPECT_FALSE(FindTag(pszUnknown).has_value()) << pszUnknown;
    }
}

TEST(Tables, FindEveryNameTheyHold) {
    for (int i = 0; i < kTagCount; ++i) {
        EXPECT_EQ(FindTag(InfoOf(static_cast<TagId>(i)).name), static_cast<TagId>(i));
    }
    for (int i = 0; i < kAttributeCount; ++i) {
        const auto attribute = static_cast<AttributeId>(i);
        EXPECT_EQ(FindAttribute(NameOf(attribute)), attribute);
    }
    EXPECT_EQ(FindAttribute("CellPadding"), AttributeId::CellPadding);
    EXPECT_EQ(FindAttribute("Href"), std::nullopt);
    EXPECT_EQ(FindAttribute("onclick"), std::nullopt);
    std::set<std::string_view> names;
    for (int i = 0; i < kColourNameCount; ++i) {
        names.insert(ColourName(i));
    }
    EXPECT_EQ(names.size(), 168U);
}

TEST(Tables, HoldTheLanguagesEntities) {
    struct Case {
        const char* pszEntity;
        const char* pszBytes;
    };
    constexpr Case kCases[] = {{"&amp;", "&"},      {"&bull;", "\x95"}, {"&copy;", "\xA9"},
                               {"&euro;", "\x88"},  {"&gt;", ">"},      {"&iquest;", "\xBF"},
                               {"&lt;", "<<"},      {"&nbsp;", " "},    {"&para;", "\xB6"},
                               {"&pound;", "\xA3"}, {"&quot;", "\""},   {"&reg;", "\xAE"},
                               {"&trade;", "\x99"}};
    ASSERT_EQ(std::size(kCases), static_cast<std::size_t>(kEntityCount));
    for (const Case& c : kCases) {
        const EntityInfo* pEntity = MatchEntity(c.pszEntity);
        ASSERT_NE(pEntity, nullptr) << c.pszEntity;
        EXPECT_EQ(pEntity->replacement, c.pszBytes) << c.pszEntity;
    }
    EXPECT_EQ(MatchEntity("&AMP;"), nullptr);
    EXPECT_EQ(MatchEntity("&amp"), nullptr);
    EXPECT_EQ(MatchEntity("&apos;"), nullptr);
}

}  // namespace
}  // namespace mvp::richtext
