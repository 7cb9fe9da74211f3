// What the golden dumps do not say: questions asked of a layout, and layouts that must not depend
// on something.
#include <string>

#include <gtest/gtest.h>

#include "richtext/dump.h"
#include "richtext/layout/layout_queries.h"
#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"

namespace mvp::richtext {
namespace {

class LayoutTest : public testing::Test {
protected:
    LayoutTest() {
        BuildSettings settings;
        settings.font = {"Tahoma", 10, 400, false};
        EXPECT_TRUE(m_text.SetSettings(settings));
    }

    // The lines' texts, with a bar behind each.
    std::string Lines(const std::string& strMarkup, std::int32_t nWidth) {
        EXPECT_TRUE(m_text.SetText(strMarkup));
        EXPECT_TRUE(m_text.Layout(nWidth));
        std::string strLines;
        for (const LineBox& line : m_text.Boxes().aLines) {
            for (std::uint32_t i = 0; i < line.nFragments; ++i) {
                const Fragment& fragment = m_text.Boxes().aFragments[line.nFirstFragment + i];
                if (fragment.kind == FragmentKind::Text) {
                    strLines +=
                        m_text.Document().strText.substr(fragment.nOffset, fragment.nLength);
                }
            }
            strLines += '|';
        }
        return strLines;
    }

    CFixedMeasurer m_measurer;
    CRichText m_text{m_measurer};
};

TEST_F(LayoutTest, BreaksLines) {
    struct Case {
        const char* pszMarkup;
        std::int32_t nWidth;
        const char* pszLines;
    };
    constexpr Case kCases[] = {
        // Spaces collapse, and none begins or ends a line.
        {"  a   b  <br>  c &nbsp; d ", 200, "a b|c d|"},
        {"a <b> b</b>", 200, "a b|"},
        {"a\n\nb\n", 200, "a||b|"},
        // A hyphen breaks inside a word; other break characters only where a word fits no line.
        {"well-known", 25, "well-|known|"},
        {"x -5 y", 15, "x|-5|y|"},
        {"a--b", 15, "a--|b|"},
        {"well-<b>known</b>", 25, "well-|known|"},
        {"at 12:30.", 30, "at|12:30.|"},
        {"one,two.three", 25, "one,|two.|three|"},
        {"x one,<b>two</b>", 20, "x|one,|two|"},
        {"(a)b]c}d?e!f;g", 10, "(a)|b]|c}|d?|e!|f;|g|"},
        {"end...", 10, "end...|"},
        // Alignment tags end the line at both ends; style sheets do not.
        {"a<center>b</center>c", 200, "a|b|c|"},
        {"a<h1>b</h1>c", 200, "abc|"},
        // A rule stands on a line of its own.
        {"a<hr>b", 200, "a||b|"},
        // Text between the cells of a table is not lost; white space and line feeds are nothing.
        {"<table>\n<tr>\n<td>a</td>\n\tstray</tr></table>", 200, "a|stray|"},
        {"<tr><td>a</td></tr>", 200, "a|"},
        // A break before a table ends the line, one behind it begins an empty one.
        {"a<br><table><tr><td>b</table>\nc", 200, "a|b||c|"},
    };
    EXPECT_TRUE(m_text.SetStyleSheet(""));
    for (const Case& c : kCases) {
        EXPECT_EQ(Lines(c.pszMarkup, c.nWidth), c.pszLines) << c.pszMarkup;
    }
}

TEST_F(LayoutTest, TransformsFollowTheCodePage) {
    EXPECT_TRUE(
        m_text.SetStyleSheet(".u {text-transform:uppercase} .l {text-transform:lowercase} "
                             ".c {text-transform:capitalize}"));
    EXPECT_EQ(Lines("<span class=u>stra\xDF"
                    "e \xE9\xFF\xF7</span>",
                    500),
              "STRA\xDF"
              "E \xC9\x9F\xF7|");
    EXPECT_EQ(Lines("<span class=l>\xC9T\xC9 1</span>", 500), "\xE9t\xE9 1|");
    EXPECT_EQ(Lines("<span class=c>don't be well-known 2nd \xE9t\xE9 \xDFx</span>", 500),
              "Don't Be Well-Known 2nd \xC9t\xE9 \xDFx|");
    // A word begins where it does, whatever is transformed before it.
    EXPECT_EQ(Lines("so, <span class=c>every</span> o<span class=c>ne</span>", 500),
              "so, Every one|");
}

TEST_F(LayoutTest, FindsWhatIsUnderThePoint) {
    // "go " is 15 wide, the link's two words 5 and 10 on two lines.
    EXPECT_EQ(Lines("go <a msg=m>b cc</a> <a href=h>d</a>", 22), "go b|cc d|");
    struct Case {
        std::int32_t nX;
        std::int32_t nY;
        std::uint32_t nLink;
    };
    constexpr Case kCases[] = {{0, 0, kNone},
                               {14, 0, kNone},
                               {15, 0, 0},
                               {19, 9, 0},
                               {20, 5, kNone},
                               {0, 10, 0},
                               {9, 19, 0},
                               {12, 15, kNone},
                               {15, 15, 1},
                               {15, 20, kNone},
                               {-1, 10, kNone},
                               {15, -1, kNone},
                               {2000000000, 2000000000, kNone}};
    for (const Case& c : kCases) {
        EXPECT_EQ(HitTest(m_text.Boxes(), c.nX, c.nY).nLink, c.nLink) << c.nX << "," << c.nY;
    }
    const auto boxes = LinkBoxes(m_text.Boxes(), 0);
    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(boxes[0].nX, 15);
    EXPECT_EQ(boxes[0].nWidth, 5);
    EXPECT_EQ(boxes[1].nY, 10);
    EXPECT_TRUE(LinkBoxes(m_text.Boxes(), kNone).empty());
}

TEST_F(LayoutTest, HoverNeverChangesTheLayout) {
    EXPECT_TRUE(
        m_text.SetStyleSheet("a:link {color:1} a:hover {color:2; font-size:40px; padding:9}"));
    Lines("x <a msg=m>link <b>bold</b></a>", 500);
    for (const Fragment& fragment : m_text.Boxes().aFragments) {
        const CStyleTable& styles = m_text.Document().styles;
        if (fragment.nLink == kNone) {
            EXPECT_EQ(styles[fragment.nStyle].nHover, kNone);
            continue;
        }
        const std::uint32_t nHover = styles[fragment.nStyle].nHover;
        ASSERT_NE(nHover, kNone);
        EXPECT_EQ(styles[nHover].colour, 2U);
        EXPECT_EQ(styles[nHover].nFont, styles[fragment.nStyle].nFont);
        EXPECT_EQ(styles[nHover].nBox, styles[fragment.nStyle].nBox);
    }
}

TEST_F(LayoutTest, IsMadeAnewOnlyForWhatChanged) {
    EXPECT_EQ(Lines("aaa bbb", 15), "aaa|bbb|");
    const std::string strNarrow = DumpLayout(m_text.Document(), m_text.Boxes());
    const Item* const pItems = m_text.Document().aItems.data();
    EXPECT_TRUE(m_text.Layout(500));
    EXPECT_EQ(m_text.Document().aItems.data(), pItems);
    EXPECT_EQ(m_text.Boxes().aLines.size(), 1U);
    EXPECT_TRUE(m_text.Layout(15));
    EXPECT_EQ(DumpLayout(m_text.Document(), m_text.Boxes()), strNarrow);
    BuildSettings settings;
    settings.font.nSize = 20;
    EXPECT_TRUE(m_text.SetSettings(settings));
    EXPECT_TRUE(m_text.Layout(15));
    EXPECT_EQ(m_text.Boxes().nHeight, 40);
}

}  // namespace
}  // namespace mvp::richtext
