// Borders, backgrounds, text and what of them is painted.
#include <algorithm>
#include <cctype>
#include <string>

#include <gtest/gtest.h>

#include "canvas.h"
#include "support/resource_counts.h"

namespace mvp::test {
namespace {

std::string Framed(const std::string& strAttributes) {
    return "<table cellspacing=0 cellpadding=0 width=40 height=30 bgcolor=white " + strAttributes +
           "><tr><td border=0></td></tr></table>";
}

TEST(BorderPainting, DrawsEveryStyle) {
    const struct {
        const char* attributes;
        const char* top;  // the first row
        const char* across;
        const char* down;
    } kCases[] = {
        {"border=2 borderstyle=solid bordercolor=red", "40r", "2r 36w 2r", "2r 26w 2r"},
        {"border=3 borderstyle=double bordercolor=red", "40r", "1r 1w 1r 34w 1r 1w 1r",
         "1r 1w 1r 24w 1r 1w 1r"},
        {"border=2 borderstyle=dotted bordercolor=blue",
         "2b 2w 2b 2w 2b 2w 2b 2w 2b 2w 2b 2w 2b 2w 2b 2w 2b 2w 4b", "40w", "2b 26w 2b"},
        {"border=1 borderstyle=dashed bordercolor=blue", "3b 3w 3b 3w 3b 3w 3b 3w 3b 3w 3b 3w 4b",
         "1b 38w 1b", "1b 28w 1b"},
        {"border=2 borderstyle=none bordercolor=blue", "40w", "40w", "30w"},
        // Light falls from the top left.
        {"border=2 bordercolorlight=red bordercolordark=blue", "40r", "2r 36w 2b", "2r 26w 2b"},
    };
    for (const auto& testCase : kCases) {
        const Canvas canvas(40, 30);
        DrawMarkup(canvas, Framed(testCase.attributes));
        EXPECT_EQ(canvas.Row(0), testCase.top) << testCase.attributes;
        EXPECT_EQ(canvas.Row(14), testCase.across) << testCase.attributes;
        EXPECT_EQ(canvas.Column(20), testCase.down) << testCase.attributes;
    }
}

TEST(TextPainting, DrawsInsideItsBoxes) {
    // What was measured is what is drawn: no letter leaves the box of its text, and the lines under
    // and through it are exactly as long as the box.
    for (const char* pszTag : {"", "<b>", "<i>", "<font size=7>", "<font face=Verdana>"}) {
        CHtmlDrawer drawer;
        UseTestFont(drawer);
        const std::string strWord = std::string(pszTag) + "<u>underlined nnnnnnnnnnn</u>";
        drawer.SetText(strWord);
        const Canvas canvas(600, 60);
        drawer.Draw(canvas.Dc(), canvas.Area(), canvas.Area());
        const LONG nWidth = drawer.RichText().Boxes().aLines.at(0).nWidth;
        const RECT ink = canvas.Ink();
        const bool bSlanted = std::string(pszTag) == "<i>";
        EXPECT_EQ(ink.left, 0) << pszTag;
        EXPECT_GE(ink.right, nWidth) << pszTag;
        EXPECT_LE(ink.right, nWidth + (bSlanted ? 4 : 1)) << pszTag;
        drawer.SetText(std::string(pszTag) + "underlined nnnnnnnnnnn");
        const Canvas plain(600, 60);
        drawer.Draw(plain.Dc(), plain.Area(), plain.Area());
        EXPECT_GE(plain.Ink().right, nWidth * 95 / 100) << pszTag << ": no letter is missing";
    }
}

TEST(TextPainting, UsesColoursAndBackgrounds) {
    const Canvas canvas(60, 24);
    DrawMarkup(canvas, "<font color=#0000ff bkgnd=#00ff00>nn</font>");
    const RECT ink = canvas.Ink();
    int nText = 0;
    for (int y = 0; y < ink.bottom; ++y) {
        for (int x = 0; x < ink.right; ++x) {
            nText += canvas.At(x, y) == RGB(0, 0, 255);
            EXPECT_TRUE(canvas.At(x, y) == RGB(0, 0, 255) || canvas.At(x, y) == RGB(0, 255, 0));
        }
    }
    EXPECT_GT(nText, 10);
    EXPECT_EQ(canvas.At(0, 0), RGB(0, 255, 0)) << "up to the corner";
}

TEST(Painting, LeavesOutWhatIsTransparent) {
    const struct {
        const char* pszMarkup;
        const char* pszColours;  // that are painted
    } kCases[] = {
        {"<span class=none><u>nn</u><s>nn</s></span>", ""},
        {"<font color=transparent bkgnd=blue>nn</font>", "b"},
        {"<span class=none><font color=red>nn</font></span>", "r"},
        {"<span class=frame><font color=red>nn</font></span>", "r"},
        {"<table class=frame><tr><td bgcolor=blue class=frame></td></tr></table>", "b"},
        {"<table border=3 borderstyle=solid class=none><tr><td bgcolor=blue "
         "border=0></td></tr></table>",
         "b"},
        {"<table border=3 bordercolor=transparent><tr><td bgcolor=blue border=0></td></tr></table>",
         "b"},
        {"<hr class=none>", ""},
        {"<hr class=line>", "g"},
    };
    for (const auto& testCase : kCases) {
        CHtmlDrawer drawer;
        UseTestFont(drawer);
        drawer.SetStyleSheet(
            ".none {color: transparent} .line {color: #00FF00} "
            ".frame {border-style: solid; border-color: transparent}");
        drawer.SetText(testCase.pszMarkup);
        const Canvas canvas(60, 30);
        drawer.Draw(canvas.Dc(), canvas.Area(), canvas.Area());
        std::string strColours;
        for (int y = 0; y < 30; ++y) {
            for (const char c : canvas.Row(y)) {
                if (std::isalpha(static_cast<unsigned char>(c)) &&
                    strColours.find(c) == std::string::npos)
                    strColours += c;
            }
        }
        EXPECT_EQ(strColours, testCase.pszColours) << testCase.pszMarkup;
    }
}

TEST(TextPainting, DrawsLinesUnderThroughAndOver) {
    // The rows that are black from end to end.
    const auto lineOf = [](const std::string& strMarkup) {
        const Canvas canvas(60, 24);
        DrawMarkup(canvas, strMarkup);
        const LONG nRight = canvas.Ink().right;
        for (int y = 0; y < 24; ++y) {
            if (canvas.Row(y).substr(0, canvas.Row(y).find(' ')) == std::to_string(nRight) + "k")
                return y;
        }
        return -1;
    };
    const int nUnder = lineOf("<u>nnnn</u>");
    const int nThrough = lineOf("<s>nnnn</s>");
    CHtmlDrawer drawer;
    drawer.SetStyleSheet(".o {text-decoration: overline}");
    UseTestFont(drawer);
    drawer.SetText("<span class=o>nnnn</span>");
    const Canvas canvas(60, 24);
    drawer.Draw(canvas.Dc(), canvas.Area(), canvas.Area());
    EXPECT_EQ(canvas.Ink().top, 0) << "over the text";
    EXPECT_GT(nThrough, 4);
    EXPECT_GT(nUnder, nThrough + 2);
    EXPECT_EQ(lineOf("nnnn"), -1);
}

TEST(TextPainting, SpreadsJustifiedLines) {
    CHtmlDrawer drawer;
    UseTestFont(drawer);
    drawer.SetText(
        "<justify>this paragraph is long enough to be spread over several lines, each of which "
        "ends where the view does, whatever letters are in it, but for the last</justify>");
    drawer.SetMargins(10, 0);  // room to see what leaves the line
    for (const int nEdge : {161, 210, 311, 390}) {
        const RECT area = {0, 0, nEdge + 10, 200};
        const Canvas canvas(nEdge + 10, 200);
        drawer.Draw(canvas.Dc(), area, area);
        const auto& lines = drawer.RichText().Boxes().aLines;
        for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
            const Canvas line(nEdge + 10, lines[i].nHeight);
            BitBlt(line.Dc(), 0, 0, nEdge + 10, lines[i].nHeight, canvas.Dc(), 0, lines[i].nY,
                   SRCCOPY);
            EXPECT_GE(line.Ink().right, nEdge - 2) << "line " << i << " up to " << nEdge;
            EXPECT_LE(line.Ink().right, nEdge) << "line " << i << " up to " << nEdge;
        }
    }
}

TEST(Painting, LeavesEverythingOutsideOfTheDirtyRectangleAlone) {
    const std::string strMarkup =
        "<h1>Title</h1><br>Some <b>bold</b> and <a msg=m>linked</a> text that runs over lines.<hr>"
        "<table border=3 bgcolor=silver bgeffect=metal><tr><td>one</td><td bgeffect=noise "
        "bgcolor=red>two</td></tr></table><i>slanted</i> <span class=x>end</span>";
    const Canvas whole(200, 160);
    const RECT all = whole.Area();
    FillRect(whole.Dc(), &all, GetSysColorBrush(COLOR_WINDOW));
    DrawMarkup(whole, strMarkup);
    const RECT kParts[] = {{0, 0, 200, 1}, {13, 17, 90, 44}, {50, 60, 51, 120}, {0, 90, 200, 160}};
    for (const RECT& part : kParts) {
        const Canvas canvas(200, 160);
        FillRect(canvas.Dc(), &part, GetSysColorBrush(COLOR_WINDOW));
        DrawMarkup(canvas, strMarkup, part);
        int nOutside = 0;
        int nWrong = 0;
        for (int y = 0; y < 160; ++y) {
            for (int x = 0; x < 200; ++x) {
                if (PtInRect(&part, {x, y}))
                    nWrong += canvas.At(x, y) != whole.At(x, y);
                else
                    nOutside += canvas.At(x, y) != kUntouched;
            }
        }
        EXPECT_EQ(nOutside, 0) << part.left << "," << part.top;
        EXPECT_EQ(nWrong, 0) << part.left << "," << part.top;
    }
}

TEST(Painting, ShowsHoverAndFocusOnTheLinkAlone) {
    CHtmlDrawer drawer;
    UseTestFont(drawer);
    drawer.SetText("before <a msg=m>link</a> after <a msg=n>other</a>");
    drawer.SetLinkColors(RGB(0, 0, 255), RGB(255, 0, 0));
    const Canvas plain(260, 24);
    drawer.Draw(plain.Dc(), plain.Area(), plain.Area());
    const std::vector<RECT> aRects = drawer.LinkRects(0);
    ASSERT_EQ(aRects.size(), 1u);
    for (const bool bHover : {true, false}) {
        drawer.SetHoverLink(bHover ? 0 : kNoLink);
        drawer.SetFocusLink(bHover ? kNoLink : 0);
        const Canvas changed(260, 24);
        drawer.Draw(changed.Dc(), changed.Area(), changed.Area());
        int nInside = 0;
        int nOutside = 0;
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < 260; ++x) {
                const bool bSame = changed.At(x, y) == plain.At(x, y);
                (PtInRect(&aRects[0], {x, y}) ? nInside : nOutside) += bSame ? 0 : 1;
            }
        }
        EXPECT_GT(nInside, 0) << bHover;
        EXPECT_EQ(nOutside, 0) << bHover;
    }
}

TEST(Painting, KeepsTheContextAsItWas) {
    const Canvas canvas(100, 50);
    SetTextColor(canvas.Dc(), 0x123456);
    SetBkMode(canvas.Dc(), OPAQUE);
    const HGDIOBJ hFont = GetCurrentObject(canvas.Dc(), OBJ_FONT);
    DrawMarkup(canvas, "<h1>x</h1><table border=1 bgeffect=hgradient><tr><td>y</td></tr></table>");
    EXPECT_EQ(GetTextColor(canvas.Dc()), 0x123456u);
    EXPECT_EQ(GetBkMode(canvas.Dc()), OPAQUE);
    EXPECT_EQ(GetCurrentObject(canvas.Dc(), OBJ_FONT), hFont);
    RECT clip{};
    GetClipBox(canvas.Dc(), &clip);
    EXPECT_EQ(clip.right, 100);
}

TEST(Painting, HoldsNothingMoreAfterManyTexts) {
    CHtmlDrawer drawer;
    const Canvas canvas(200, 200);
    const auto cycle = [&](int n) {
        drawer.SetText("<font size=" + std::to_string(8 + n % 40) +
                       "px face=Verdana>text</font><icon idres=32512 iddll=user32.dll>"
                       "<table border=2 bgeffect=" +
                       std::to_string(n % 16) + " bgcolor=red><tr><td><b>cell</b></table>");
        drawer.Draw(canvas.Dc(), canvas.Area(), canvas.Area());
    };
    // The fonts of some texts are kept; how many lies between none and these.
    ExpectRoundsKeepNothing(80, 200, cycle,
                            {.objects = 40, .heapBlocks = 200, .heapBytes = 200000});
    drawer.SetText("");
}

// What this process computed: other programs on the machine do not count.
double ProcessSeconds() {
    FILETIME created{};
    FILETIME ended{};
    FILETIME kernel{};
    FILETIME user{};
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
    const auto seconds = [](const FILETIME& time) {
        return (time.dwHighDateTime * 4294967296.0 + time.dwLowDateTime) * 1e-7;
    };
    return seconds(kernel) + seconds(user);
}

TEST(Painting, GetsOverHostileTexts) {
    const std::string kTexts[] = {
        std::string(200000, '<'),
        std::string(100000, 'w'),
        std::string(20000, '\xFF'),
        "<font size=32767px>huge</font>",
        "<table width=99999999 height=99999999 border=999999 borderstyle=dotted bordercolor=red>"
        "<tr><td colspan=99999 rowspan=99999>x</table>",
        "<bmp handle=0 width=32767 height=32767 file=a.bmp><icon cx=99999 cy=99999 idres=32512 "
        "iddll=user32.dll>"};
    for (const std::string& strText : kTexts) {
        const Canvas canvas(300, 100);
        const double before = ProcessSeconds();
        DrawMarkup(canvas, strText);
        EXPECT_LT(ProcessSeconds() - before, 3) << strText.substr(0, 30);
    }
}

}  // namespace
}  // namespace mvp::test
