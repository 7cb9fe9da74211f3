#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "richtext/dump.h"
#include "richtext/style/style_sheet.h"
#include "unit/richtext/test_text.h"

namespace mvp::richtext {
namespace {

TEST(MarkupReader, CutsTextIntoEvents) {
    ExpectTexts(
        DumpMarkup,
        {
            {"a<b>c</B>", "text \"a\"\nopen b\ntext \"c\"\nclose b\n"},
            {"a\nb\r\nc\rd",
             "text \"a\"\nopen br (character)\ntext \"b\"\nopen br (character)\ntext \"c\"\n"
             "open br (character)\ntext \"d\"\n"},
            {"a\tb<br/><t>", "text \"a\"\nopen t (character)\ntext \"b\"\nopen br\nopen t\n"},
            // One visible bracket each, and none of them a tag.
            {"&lt;b>", "text \"<\"\ntext \"b>\"\n"},
            {"<<b>", "text \"<\"\ntext \"b>\"\n"},
            {"a < b <4 <",
             "text \"a \"\ntext \"<\"\ntext \" b \"\ntext \"<\"\ntext \"4 \"\n"
             "text \"<\"\n"},
            {"&euro;&nbsp;&apos;&AMP;&amp",
             "text \"\\x88\"\ntext \" \"\ntext \"&apos;\"\ntext \"&AMP;\"\ntext \"&amp\"\n"},
            {"x<!-- <b> -->y<!doctype>z<?p?></>w</ >",
             "text \"x\"\ntext \"y\"\ntext \"z\"\ntext \"w\"\n"},
            {"x<!-->y", "text \"x\"\ntext \"y\"\n"},
            {"x<div a=b>y</div>", "text \"x\"\ntext \"y\"\n"},
            // Without an end, a tag swallows the rest.
            {"x<b y", "text \"x\"\n"},
            {"x<font color=\"red>y", "text \"x\"\n"},
            // Attributes: quotes of both kinds or none, unknown ones skipped, the first one counts.
            {"<FONT Color = 'a b' size=3/ x=y face=\"A>B\" SIZE=4>",
             "open font size=\"3/\" color=\"a b\" face=\"A>B\"\n"},
            {"<a msg=\"say &quot;&lt;hi&gt;&quot; &no;\">",
             "open a msg=\"say \\\"<hi>\\\" &no;\"\n"},
            {"<td\nrowspan=2\n colspan='3'>", "open td rowspan=\"2\" colspan=\"3\"\n"},
            {"<table border>", "open table border=\"\"\n"},
            // href: in lower case and with its equals sign only.
            {"<a href=x>", "open a href=\"x\"\n"},
            {"<a href \n = x>", "open a href=\"x\"\n"},
            {"<a HREF=x>", "open a\n"},
            {"<a href>", "open a\n"},
        });
}

TEST(StyleSheet, ScansRuleByRule) {
    ExpectTexts(
        [](const char* pszText) {
            StyleSheet sheet;
            sheet.Load(pszText);
            return sheet.Dump();
        },
        {
            {"", ""},
            {"b{color:red}", "b {color:red}\n"},
            {" b \r\n { color : red } \r\n i {x}", "b {color : red}\ni {x}\n"},
            {"{lost} b {x} c {unended", "b {x}\n"},
            {"z {1} a {2} z {3}", "a {2}\nz {1}\nz {3}\n"},
            {"H1, A:Link, .Warn {x}", ".Warn {x}\na:link {x}\nh1 {x}\n"},
            {"b {x}/* i {y} */u {z}/* open", "b {x}\nu {z}\n"},
            {"}} b {x}", "}} b {x}\n"},
        });
}

TEST(StyleSheet, BuiltInOneIsLoadedForNoText) {
    StyleSheet sheet;
    sheet.Load("b {x}");
    sheet.Load(std::nullopt);
    EXPECT_EQ(sheet.Rules().size(), 17U);
    EXPECT_TRUE(sheet.Find("b").empty());
    ASSERT_EQ(sheet.Find("h6").size(), 1U);
    EXPECT_EQ(sheet.Find("h6")[0].block,
              "font-size: 65%; color:#626262; font-family:Verdana; font-weight:normal");
    ASSERT_EQ(sheet.FindClass("cpp-comment").size(), 1U);
    EXPECT_TRUE(sheet.FindClass("cpp").empty());
    // Each line ends with carriage return and line feed.
    const std::string_view text = BuiltInStyleSheet();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 17);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\r'), 17);
    EXPECT_EQ(text.substr(0, 62),
              "body {font-size: 10pt; color:black; font-family:Verdana}\r\np {f");
}

TEST(StyleSheet, TakesLinkRulesOfTheHost) {
    StyleSheet sheet;
    sheet.Load("a:link {color:red} b {color:blue} a:hover {color:red}");
    sheet.SetLinkRules(0x123456, false, 0xFF, true);
    EXPECT_EQ(sheet.Dump(),
              "a:hover {color:0x0000FF; text-decoration:underline}\n"
              "a:link {color:0x123456; text-decoration:none}\n"
              "b {color:blue}\n");
}

std::string LastStyle(const char* pszMarkup, std::optional<std::string_view> sheet) {
    TestText test;
    EXPECT_TRUE(test.text.SetStyleSheet(sheet));
    test.LayOut(pszMarkup, 1000);
    const auto& items = test.text.Document().aItems;
    const auto last = std::find_if(items.rbegin(), items.rend(),
                                   [](const Item& item) { return item.kind == ItemKind::Text; });
    const std::string dump = DumpStyles(test.text.Document());
    const std::string name = "\nstyle " + std::to_string(last->nStyle) + ": font ";
    const std::size_t at = dump.find(name) + name.size();
    return dump.substr(at, dump.find('\n', at) - at);
}

TEST(Styles, FollowTheCascade) {
    constexpr struct {
        const char *pszMarkup, *pszSheet, *pszStyle;  // of the last text
    } kCases[] = {
        {"<b>x", "", "\"\" 13 weight 700 colour 0x000000"},
        {"<b>x", "bold {font-weight:500}", "\"\" 13 weight 500 colour 0x000000"},
        {"<i><u>x", "italic {color:red}", "\"\" 13 weight 400 italic colour 0x0000FF underline"},
        {"<strike>x", "strikeout {text-decoration:none}", "\"\" 13 weight 400 colour 0x000000"},
        {"<u><span class=n>x", ".n {text-decoration:none}",
         "\"\" 13 weight 400 colour 0x000000 underline"},
        {"<bottom>x", "", "\"\" 13 weight 400 colour 0x000000 valign bottom"},
        {"<bottom>x", "vcenter {color:red}", "\"\" 13 weight 400 colour 0x0000FF valign bottom"},
        {"<middle>x", "bottom {color:red}", "\"\" 13 weight 400 colour 0x000000 valign middle"},
        {"<font size=5 color=0x0000FF face='Arial, x' style=italic weight=bold bkgnd=white>x", "",
         "\"Arial\" 18 weight 700 italic colour 0x0000FF background 0xFFFFFF"},
        // A rule comes before an attribute, a class before the tag's rule.
        {"<font size=5>x", "font {font-size:9px}", "\"\" 9 weight 400 colour 0x000000"},
        {"<span class='B A'>x", "span {color:1} .A {color:2} .B {color:3}",
         "\"\" 13 weight 400 colour 0x000002"},
        {"<span class=a>x", ".A {color:2}", "\"\" 13 weight 400 colour 0x000000"},
        {"<b>x", "bold {color:1; font-size:9px} bold {color:2}",
         "\"\" 9 weight 700 colour 0x000002"},
        {"<b>x", "bold {color:1; color:nonsense; font-size:; font-style:; bad}",
         "\"\" 13 weight 700 colour 0x000001"},
        // What a closing tag leaves.
        {"<b><i>x</b>y", "", "\"\" 13 weight 400 italic colour 0x000000"},
        {"<b>x</i>y", "", "\"\" 13 weight 700 colour 0x000000"},
        {"<i>x</em>y", "", "\"\" 13 weight 400 italic colour 0x000000"},
        {"<b><table><tr><td>x</b>y", "", "\"\" 13 weight 700 colour 0x000000"},
        {"<table><tr><td><b>x</table>y", "", "\"\" 13 weight 400 colour 0x000000"},
        {"<a msg=1>x<b>y</a>z", "a:link {color:red}", "\"\" 13 weight 700 colour 0x000000"},
        {"<center><right>x</right>y", "", "\"\" 13 weight 400 colour 0x000000 align center"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(LastStyle(c.pszMarkup, c.pszSheet), c.pszStyle) << c.pszMarkup;
    }
    // 14 points at 96 dots an inch.
    EXPECT_EQ(LastStyle("<h1>x", std::nullopt), "\"Verdana\" 18 weight 700 colour 0x000000");
    // p is in the sheet, but no tag of the language.
    EXPECT_EQ(LastStyle("<p>x", std::nullopt), "\"\" 13 weight 400 colour 0x000000");
}

}  // namespace
}  // namespace mvp::richtext
