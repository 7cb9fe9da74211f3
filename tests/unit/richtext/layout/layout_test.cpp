// What the golden dumps do not say: questions asked of a layout, and layouts that must not depend
// on something.
#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "richtext/document/plain_text.h"
#include "richtext/dump.h"
#include "richtext/layout/table_columns.h"
#include "richtext/layout/table_rows.h"
#include "unit/richtext/test_text.h"

namespace mvp::richtext {
namespace {

class LayoutTest : public testing::Test {
protected:
    // The lines' texts, with a bar behind each.
    std::string Lines(const std::string& strMarkup, std::int32_t nWidth) {
        m_test.LayOut(strMarkup, nWidth);
        std::string lines;
        for (const std::string& line : m_test.Lines()) {
            lines += line + '|';
        }
        return lines;
    }

    TestText m_test{{"Tahoma", 10}};
    RichText& m_text = m_test.text;
};

TEST_F(LayoutTest, BreaksLines) {
    constexpr struct {
        const char* pszMarkup;
        std::int32_t nWidth;
        const char* pszLines;
    } kCases[] = {
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
    for (const auto& c : kCases) {
        EXPECT_EQ(Lines(c.pszMarkup, c.nWidth), c.pszLines) << c.pszMarkup;
    }
}

TEST_F(LayoutTest, TransformsFollowTheCodePage) {
    EXPECT_TRUE(
        m_text.SetStyleSheet(".u {text-transform:uppercase} .l {text-transform:lowercase} "
                             ".c {text-transform:capitalize}"));
    ExpectTexts([&](const char* pszMarkup) { return Lines(pszMarkup, 500); },
                {
                    {"<span class=u>stra\xDF"
                     "e \xE9\xFF\xF7</span>",
                     "STRA\xDF"
                     "E \xC9\x9F\xF7|"},
                    {"<span class=l>\xC9T\xC9 1</span>", "\xE9t\xE9 1|"},
                    {"<span class=c>don't be well-known 2nd \xE9t\xE9 \xDFx</span>",
                     "Don't Be Well-Known 2nd \xC9t\xE9 \xDFx|"},
                    // A word begins where it does, whatever is transformed before it.
                    {"so, <span class=c>every</span> o<span class=c>ne</span>", "so, Every one|"},
                });
}

TEST_F(LayoutTest, FindsWhatIsUnderThePoint) {
    // "go " is 15 wide, the link's two words 5 and 10 on two lines.
    EXPECT_EQ(Lines("go <a msg=m>b cc</a> <a href=h>d</a>", 22), "go b|cc d|");
    const auto expectAt = [&](std::uint32_t nLink, const std::vector<std::pair<int, int>>& points) {
        for (const auto& [x, y] : points) {
            EXPECT_EQ(HitTest(m_text.Boxes(), x, y).nLink, nLink) << x << "," << y;
        }
    };
    expectAt(kNone, {{0, 0}, {14, 0}, {20, 5}, {12, 15}, {15, 20}, {-1, 10}, {15, -1}});
    expectAt(kNone, {{2000000000, 2000000000}});
    expectAt(0, {{15, 0}, {19, 9}, {0, 10}, {9, 19}});
    expectAt(1, {{15, 15}});
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
    const StyleTable& styles = m_text.Document().styles;
    for (const Fragment& fragment : m_text.Boxes().aFragments) {
        const ComputedStyle& style = styles[fragment.nStyle];
        ASSERT_EQ(style.nHover != kNone, fragment.nLink != kNone);
        if (style.nHover != kNone) {
            EXPECT_EQ(styles[style.nHover].colour, 2U);
            EXPECT_EQ(styles[style.nHover].nFont, style.nFont);
            EXPECT_EQ(styles[style.nHover].nBox, style.nBox);
        }
    }
}

TEST_F(LayoutTest, IsMadeAnewOnlyForWhatChanged) {
    EXPECT_EQ(Lines("aaa bbb", 15), "aaa|bbb|");
    const std::string narrow = DumpLayout(m_text.Document(), m_text.Boxes());
    const Item* const items = m_text.Document().aItems.data();
    EXPECT_TRUE(m_text.Layout(500));
    EXPECT_EQ(m_text.Document().aItems.data(), items);
    EXPECT_EQ(m_text.Boxes().aLines.size(), 1U);
    EXPECT_TRUE(m_text.Layout(15));
    EXPECT_EQ(DumpLayout(m_text.Document(), m_text.Boxes()), narrow);
    BuildSettings settings;
    settings.font.nSize = 20;
    EXPECT_TRUE(m_text.SetSettings(settings));
    EXPECT_TRUE(m_text.Layout(15));
    EXPECT_EQ(m_text.Boxes().nHeight, 40);
}

TEST_F(LayoutTest, PlainTextKeepsWordsAndLinesApart) {
    constexpr struct {
        const char *pszMarkup, *pszPlain, *pszLink;
    } kCases[] = {
        {"one <b>two</b>", "one two", ""},
        {"one<br><br>two<hr>three", "one\ntwo\nthree", ""},
        {"a<table><tr><td>b<td>c</tr><tr><td>d</table>e", "a\nb c\nd\ne", ""},
        {"see <a msg=m>this <i>page</i><br>here</a>.", "see this page\nhere.", "this page\nhere"},
        {"<br> &lt;x> ", "<x>", ""},
        {"", "", ""},
    };
    for (const auto& c : kCases) {
        m_test.LayOut(c.pszMarkup, 200);
        EXPECT_EQ(PlainTextOf(m_text.Document()), c.pszPlain) << c.pszMarkup;
        EXPECT_EQ(LinkTextOf(m_text.Document(), 0), c.pszLink) << c.pszMarkup;
    }
}

// --- tables: how a width is given out to the columns, and a height to the rows ---

Column Auto(int nMin, int nMax) {
    return {ToFixed(nMin), ToFixed(nMax), 0, false};
}
Column Given(int nMin, int nWidth) {
    return {ToFixed(nMin), ToFixed(nWidth), 0, true};
}
Column Percent(int nMin, int nMax, int nPercent) {
    return {ToFixed(nMin), ToFixed(nMax), nPercent, false};
}

TEST(TableColumns, ShareTheWidth) {
    const struct {
        std::vector<Column> columns;
        int nWidth;
        std::vector<Fixed> widths;
    } kCases[] = {
        // Never below the least.
        {{Auto(30, 50), Auto(20, 90)}, 10, {30, 20}},
        // Between least and most: by what each could grow.
        {{Auto(10, 30), Auto(10, 70)}, 60, {20, 40}},
        // A share in per cent first, then a width in pixels, then the rest.
        {{Auto(10, 100), Given(10, 50), Percent(10, 20, 40)}, 100, {10, 50, 40}},
        {{Auto(10, 100), Given(10, 50)}, 100, {50, 50}},
        {{Auto(10, 100), Given(10, 50)}, 40, {10, 30}},
        {{Auto(10, 100), Percent(5, 10, 50)}, 100, {50, 50}},
        // More than most: to those without a width, else to those in pixels, else to the shares.
        {{Auto(5, 10), Auto(5, 30), Given(5, 20)}, 100, {20, 60, 20}},
        {{Given(5, 20), Given(5, 60), Percent(5, 5, 20)}, 200, {40, 120, 40}},
        {{Percent(5, 5, 20), Percent(5, 5, 30)}, 100, {40, 60}},
        {{Auto(0, 0), Auto(0, 0)}, 50, {25, 25}},
        {{}, 50, {}},
    };
    for (const auto& c : kCases) {
        std::vector<Fixed> widths(c.columns.size());
        ShareWidth(c.columns, ToFixed(c.nWidth), widths);
        std::ranges::transform(widths, widths.begin(), RoundPixels);
        EXPECT_EQ(widths, c.widths) << c.nWidth;
    }
}

TEST(TableColumns, TakeFromCellsOfOneColumnFirst) {
    const std::vector<ColumnCell> cells = {
        {0, 2, ToFixed(60), ToFixed(100), 0, false},  // over both, with 10 between
        {0, 1, ToFixed(10), ToFixed(30), 0, false},
        {1, 1, ToFixed(10), ToFixed(10), 0, false},
        {2, 1, ToFixed(10), ToFixed(40), 0, true},
        {2, 1, ToFixed(20), ToFixed(90), 0, false},  // the width in pixels stands
        {1, 2, 0, 0, 50, false},                     // a share for the two without one
    };
    std::vector<Column> columns(3);
    MeasureColumns(cells, ToFixed(10), columns);
    EXPECT_EQ(columns[0].nMin + columns[1].nMin, ToFixed(50));
    EXPECT_EQ(columns[0].nMax + columns[1].nMax, ToFixed(90));
    EXPECT_EQ(columns[2].nMin, ToFixed(20));
    EXPECT_EQ(columns[2].nMax, ToFixed(40));
    EXPECT_TRUE(columns[2].bFixed);
    EXPECT_EQ(columns[0].nPercent, 0);
    EXPECT_NEAR(columns[1].nPercent + columns[2].nPercent, 50, 1);

    // Shares end at a hundred together: the first ones have theirs.
    columns.assign(3, {});
    MeasureColumns(std::vector<ColumnCell>{{0, 1, 0, 0, 80, false}, {1, 1, 0, 0, 60, false}}, 0,
                   columns);
    EXPECT_EQ(columns[0].nPercent, 80);
    EXPECT_EQ(columns[1].nPercent, 20);
    // Of a share over both the one without its own gets the rest.
    columns.assign(2, {});
    MeasureColumns(std::vector<ColumnCell>{{0, 1, 0, 0, 20, false}, {0, 2, 0, 0, 50, false}}, 0,
                   columns);
    EXPECT_EQ(columns[1].nPercent, 30);
}

TEST(TableRows, HoldTheirCells) {
    const struct {
        std::vector<RowCell> cells;
        int nTableHeight;
        std::array<std::int64_t, 3> heights;
    } kCases[] = {
        {{{0, 1, 10, -1, false}, {1, 1, 20, -1, false}}, 0, {10, 20, 0}},
        // A cell over rows: in proportion, but not to a row with a height of its own.
        {{{0, 2, 60, -1, false}, {0, 1, 10, -1, false}, {1, 1, 20, -1, false}}, 0, {20, 40, 0}},
        {{{0, 2, 60, -1, false}, {0, 1, 10, -1, true}, {1, 1, 20, -1, false}}, 0, {10, 50, 0}},
        {{{1, 2, 30, -1, false}}, 0, {0, 15, 15}},
        // On one baseline: the highest above it and the deepest below it.
        {{{0, 1, 20, 16, false}, {0, 1, 20, 4, false}}, 0, {32, 0, 0}},
        {{{0, 1, 10, -1, false}, {1, 1, 30, -1, false}}, 80, {20, 60, 0}},
    };
    for (const auto& c : kCases) {
        std::vector<Row> rows(3);
        MeasureRows(c.cells, 0, c.nTableHeight, rows);
        EXPECT_EQ((std::array{rows[0].nHeight, rows[1].nHeight, rows[2].nHeight}), c.heights);
    }
}

}  // namespace
}  // namespace mvp::richtext
