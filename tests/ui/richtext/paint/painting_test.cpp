#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "common/patched_imports.h"
#include "richtext/paint/background_effects.h"
#include "ui/richtext/canvas.h"

namespace mvp::test {
namespace {

TEST(BorderPainting, DrawsEveryStyle) {
    const struct {
        std::string strAttributes;
        const char *pszTop, *pszAcross, *pszDown;  // the first row, one and a column in the middle
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
        {"class=uneven bordercolorlight=red bordercolordark=blue", "40r", "3r 34w 3b", "1r 28w 1b"},
    };
    for (const auto& c : kCases) {
        TestDrawer drawer("<table cellspacing=0 cellpadding=0 width=40 height=30 bgcolor=white " +
                              c.strAttributes + "><tr><td border=0></td></tr></table>",
                          ".uneven {border-style: solid; border-width: 1px 3px}");
        const Canvas canvas(40, 30, drawer);
        EXPECT_EQ(canvas.Row(0), c.pszTop) << c.strAttributes;
        EXPECT_EQ(canvas.Row(14), c.pszAcross) << c.strAttributes;
        EXPECT_EQ(canvas.Column(20), c.pszDown) << c.strAttributes;
    }
}

TEST(TextPainting, DrawsInsideItsBoxes) {
    // What was measured is what is drawn: no letter leaves the box of its text, and the lines under
    // and through it are exactly as long as the box.
    for (const std::string tag : {"", "<b>", "<i>", "<font size=7>", "<font face=Verdana>"}) {
        TestDrawer drawer(tag + "<u>underlined nnnnnnnnnnn</u>");
        const RECT ink = Canvas(600, 60, drawer).Ink();
        const LONG width = drawer.RichText().Boxes().aLines.at(0).nWidth;
        EXPECT_EQ(ink.left, 0) << tag;
        EXPECT_GE(ink.right, width) << tag;
        EXPECT_LE(ink.right, width + (tag == "<i>" ? 4 : 1)) << tag;
        const Canvas plain(600, 60, tag + "underlined nnnnnnnnnnn");
        EXPECT_GE(plain.Ink().right, width * 95 / 100) << tag << ": no letter is missing";
    }
}

TEST(TextPainting, UsesColoursAndBackgrounds) {
    const Canvas canvas(60, 24, "<font color=#0000ff bkgnd=#00ff00>nn</font>");
    const RECT ink = canvas.Ink();
    EXPECT_GT(canvas.CountOf(kBlue), 10);
    EXPECT_EQ(canvas.CountOf(kBlue) + canvas.CountOf(kGreen), ink.right * ink.bottom);
    EXPECT_EQ(canvas.At(0, 0), kGreen) << "up to the corner";
}

TEST(Painting, LeavesOutWhatIsTransparent) {
    const std::pair<const char*, std::vector<COLORREF>> kCases[] = {
        {"<span class=none><u>nn</u><s>nn</s></span>", {}},
        {"<font color=transparent bkgnd=blue>nn</font>", {kBlue}},
        {"<span class=none><font color=red>nn</font></span>", {kRed}},
        {"<span class=frame><font color=red>nn</font></span>", {kRed}},
        {"<table class=frame><tr><td bgcolor=blue class=frame></td></tr></table>", {kBlue}},
        {"<table border=3 borderstyle=solid class=none><tr><td bgcolor=blue border=0></table>",
         {kBlue}},
        {"<table border=3 bordercolor=transparent><tr><td bgcolor=blue border=0></table>", {kBlue}},
        {"<hr class=none>", {}},
        {"<hr class=line>", {kGreen}},
    };
    for (const auto& [markup, colours] : kCases) {
        TestDrawer drawer(markup,
                          ".none {color: transparent} .line {color: #00FF00} "
                          ".frame {border-style: solid; border-color: transparent}");
        const Canvas canvas(60, 30, drawer);
        int others = 60 * 30 - canvas.CountOf(kUntouched);
        for (const COLORREF colour : colours) {
            EXPECT_GT(canvas.CountOf(colour), 0) << markup;
            others -= canvas.CountOf(colour);
        }
        EXPECT_EQ(others, 0) << markup;
    }
}

TEST(TextPainting, DrawsLinesUnderThroughAndOver) {
    // The first row that is black from end to end.
    const auto lineOf = [](const char* pszMarkup) {
        TestDrawer drawer(pszMarkup, ".o {text-decoration: overline}");
        const Canvas canvas(60, 24, drawer);
        const std::string line = std::to_string(canvas.Ink().right) + "k ";
        for (int y = 0; y < 24; ++y) {
            if (canvas.Row(y).starts_with(line)) {
                return y;
            }
        }
        return -1;
    };
    EXPECT_EQ(lineOf("nnnn"), -1);
    EXPECT_EQ(lineOf("<span class=o>nnnn</span>"), 0) << "over the text";
    EXPECT_GT(lineOf("<s>nnnn</s>"), 4);
    EXPECT_GT(lineOf("<u>nnnn</u>"), lineOf("<s>nnnn</s>") + 2);
}

TEST(TextPainting, SpreadsJustifiedLines) {
    TestDrawer drawer(
        "<justify>this paragraph is long enough to be spread over several lines, each of which "
        "ends where the view does, whatever letters are in it, but for the last</justify>");
    drawer.SetMargins(10, 0);  // room to see what leaves the line
    for (const int edge : {161, 210, 311, 390}) {
        const Canvas canvas(edge + 10, 200, drawer);
        const auto& lines = drawer.RichText().Boxes().aLines;
        for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
            int end = 0;
            canvas.Count({0, lines[i].nY, edge + 10, lines[i].nY + lines[i].nHeight},
                         [&](int x, int y) {
                             end = canvas.At(x, y) != kUntouched ? std::max(end, x + 1) : end;
                             return false;
                         });
            EXPECT_GE(end, edge - 2) << "line " << i << " up to " << edge;
            EXPECT_LE(end, edge) << "line " << i << " up to " << edge;
        }
    }
}

TEST(Painting, LeavesTheContextAndEverythingOutsideOfTheDirtyRectangleAlone) {
    TestDrawer drawer(
        "<h1>Title</h1><br>Some <b>bold</b> and <a msg=m>linked</a> text that runs over lines.<hr>"
        "<table border=3 bgcolor=silver bgendcolor=blue bgeffect=hgradient><tr><td>one</td><td "
        "bgeffect=noise "
        "bgcolor=red>two</td></tr></table><i>slanted</i> <span class=x>end</span>");
    const Canvas whole(200, 160);
    const RECT all = whole.Area();
    FillRect(whole.Dc(), &all, GetSysColorBrush(COLOR_WINDOW));
    drawer.Draw(whole.Dc(), all, all);
    for (const RECT& part :
         {RECT{0, 0, 200, 1}, RECT{13, 17, 90, 44}, RECT{50, 60, 51, 120}, RECT{0, 90, 200, 160}}) {
        const Canvas canvas(200, 160);
        FillRect(canvas.Dc(), &part, GetSysColorBrush(COLOR_WINDOW));
        SetTextColor(canvas.Dc(), 0x123456);
        SetBkMode(canvas.Dc(), OPAQUE);
        const HGDIOBJ font = GetCurrentObject(canvas.Dc(), OBJ_FONT);
        drawer.Draw(canvas.Dc(), all, part);
        EXPECT_EQ(GetTextColor(canvas.Dc()), 0x123456u);
        EXPECT_EQ(GetBkMode(canvas.Dc()), OPAQUE);
        EXPECT_EQ(GetCurrentObject(canvas.Dc(), OBJ_FONT), font);
        RECT clip{};
        GetClipBox(canvas.Dc(), &clip);
        EXPECT_TRUE(EqualRect(&clip, &all));
        const auto isWrong = [&](int x, int y) {
            return canvas.At(x, y) != (PtInRect(&part, {x, y}) ? whole.At(x, y) : kUntouched);
        };
        EXPECT_EQ(canvas.Count(all, isWrong), 0) << part.left << "," << part.top;
    }
}

TEST(Painting, ShowsHoverAndFocusOnTheLinkAlone) {
    TestDrawer drawer("before <a msg=m>link</a> after <a msg=n>other</a>");
    drawer.SetLinkColors(kBlue, kRed);
    const Canvas plain(260, 24, drawer);
    const std::vector<RECT> rects = drawer.LinkRects(0);
    ASSERT_EQ(rects.size(), 1u);
    for (const bool hover : {true, false}) {
        drawer.SetHoverLink(hover ? 0 : kNoLink);
        drawer.SetFocusLink(hover ? kNoLink : 0);
        const Canvas changed(260, 24, drawer);
        const auto differs = [&](int x, int y) { return changed.At(x, y) != plain.At(x, y); };
        const int inside = changed.Count(rects[0], differs);
        EXPECT_GT(inside, 0) << hover;
        EXPECT_EQ(changed.Count(changed.Area(), differs), inside) << hover;
    }
}

// What this process computed: other programs on the machine do not count.
double ProcessSeconds() {
    std::array<ULONGLONG, 4> times{};  // created, ended, kernel, user
    auto* const p = reinterpret_cast<FILETIME*>(times.data());
    GetProcessTimes(GetCurrentProcess(), p, p + 1, p + 2, p + 3);
    return static_cast<double>(times[2] + times[3]) * 1e-7;
}

TEST(Painting, GetsOverHostileTexts) {
    for (const std::string& text :
         {std::string(100000, 'w'), std::string("<font size=32767px>huge</font>"),
          std::string("<table width=99999999 height=99999999 border=999999 borderstyle=dotted "
                      "bordercolor=red><tr><td colspan=99999 rowspan=99999>x</table>"),
          std::string("<bmp handle=0 width=32767 height=32767 file=a.bmp><icon cx=99999 cy=99999 "
                      "idres=32512 iddll=user32.dll>")}) {
        const double before = ProcessSeconds();
        const Canvas canvas(300, 100, text);
        EXPECT_LT(ProcessSeconds() - before, 3) << text.substr(0, 30);
    }
}

constexpr int kBlockWidth = 96;
constexpr int kBlockHeight = 64;

TestDrawer Block(const std::string& strEffect) {
    return TestDrawer(
        "<table cellspacing=0 cellpadding=0 width=96 height=64 bgcolor=#ff0000 "
        "bgmidcolor=#00ff00 bgendcolor=#0000ff bgeffect=" +
        strEffect + "><tr><td></td></tr></table>");
}

TEST(EffectPainting, EffectsAreTheirPixelsInEveryPart) {
    using enum richtext::BackgroundEffect;
    for (int code = static_cast<int>(HGradient); code <= static_cast<int>(Metal); ++code) {
        auto drawer = Block(std::to_string(code));
        const Canvas canvas(kBlockWidth, kBlockHeight);
        for (const RECT& part : {RECT{0, 0, 31, 64}, RECT{31, 0, 96, 17}, RECT{31, 17, 96, 64}}) {
            drawer.Draw(canvas.Dc(), canvas.Area(), part);
        }
        const auto effect = static_cast<richtext::BackgroundEffect>(code);
        std::vector<std::uint8_t> pixels(std::size_t{4} * kBlockWidth * kBlockHeight);
        richtext::PaintEffect({effect, kRed, kGreen, kBlue, kBlockWidth, kBlockHeight},
                              {0, 0, kBlockWidth, kBlockHeight}, pixels.data(),
                              std::size_t{4} * kBlockWidth);
        // The system draws the gradients, which end one step short of their end colour.
        const int tolerance = effect <= VGradient3 ? 9 : 0;
        const auto differs = [&](int x, int y) {
            const std::uint8_t* p = &pixels[4 * static_cast<std::size_t>(y * kBlockWidth + x)];
            const COLORREF colour = canvas.At(x, y);
            return std::abs(GetRValue(colour) - p[2]) > tolerance ||
                   std::abs(GetGValue(colour) - p[1]) > tolerance ||
                   std::abs(GetBValue(colour) - p[0]) > tolerance;
        };
        EXPECT_EQ(canvas.Count(canvas.Area(), differs), 0) << code;
    }
}

TEST(EffectPainting, PlainOnesAndHugeOnes) {
    auto solid = Block("solid");
    EXPECT_EQ(Canvas(kBlockWidth, kBlockHeight, solid).CountOf(kRed), kBlockWidth * kBlockHeight);
    auto transparent = Block("transparent");
    EXPECT_EQ(Canvas(kBlockWidth, kBlockHeight, transparent).CountOf(kUntouched),
              kBlockWidth * kBlockHeight);
    // Far longer than what the system's gradients can count; only the part in view is computed.
    const Canvas part(kBlockWidth, kBlockHeight,
                      "<table cellspacing=0 width=32767 height=32767 bgcolor=red bgendcolor=blue "
                      "bgeffect=hgradient><tr><td></td></tr></table>");
    EXPECT_EQ(part.At(0, 63), kRed);
    EXPECT_GE(GetRValue(part.At(95, 0)), 250) << "the beginning of a very long one";
}

// Lengths on a real device: its dots per inch and its fonts decide what a unit comes to.
constexpr int kFontHeight = 30;

int HeightOfX() {
    const Canvas canvas(60, 60);
    const Font font(CreateFontA(-kFontHeight, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                                DEFAULT_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0, "Tahoma"));
    const DcSelection selection(canvas.Dc(), font.get());
    SetBkMode(canvas.Dc(), TRANSPARENT);
    ExtTextOutA(canvas.Dc(), 5, 5, 0, nullptr, "x", 1, nullptr);
    return static_cast<int>(canvas.Ink().bottom - canvas.Ink().top);
}

void ExpectUnits(int nDots) {
    const std::pair<const char*, int> kCases[] = {
        {"3em", 3 * kFontHeight},
        {"5ex", 5 * HeightOfX()},
        {"2in", 2 * nDots},
        {"31pt", 31 * nDots / 72},
    };
    for (const auto& [length, pixels] : kCases) {
        TestDrawer drawer(std::string("<font size=30px><hr width=") + length + "></font>");
        drawer.Measure(2000);
        EXPECT_EQ(drawer.RichText().Boxes().aFragments.at(0).nWidth, pixels) << length;
    }
}

TEST(DeviceUnits, AreThoseOfTheScreen) {
    ExpectUnits(GetDeviceCaps(WindowDc(nullptr).get(), LOGPIXELSY));
    const auto dots = +[](HDC, int) WINAPI { return 144; };
    const PatchedImports dense(nullptr, {{"GetDeviceCaps", Address(dots)}});
    ExpectUnits(144);
}

}  // namespace
}  // namespace mvp::test
