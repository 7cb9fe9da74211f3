// Texts made to upset: nothing recurses on them, takes unbounded memory, or takes more than linear
// time. All of it runs on a stack of 1 MB, as a thread of a host may have.

#include <functional>
#include <string>

#include <gtest/gtest.h>
#include <pthread.h>
#include <time.h>

#include "richtext/rich_text.h"
#include "richtext/style/fixed_measurer.h"

namespace mvp::richtext {
namespace {

void* RunFunction(void* pFunction) {
    (*static_cast<std::function<void()>*>(pFunction))();
    return nullptr;
}

void OnSmallStack(std::function<void()> function) {
    constexpr std::size_t kStack = std::size_t{1} << 20;
    pthread_attr_t attributes;
    pthread_t thread;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
    ASSERT_EQ(pthread_create(&thread, &attributes, RunFunction, &function), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

std::string Repeated(std::string_view piece, std::size_t nTimes) {
    std::string strText;
    strText.reserve(piece.size() * nTimes);
    for (std::size_t i = 0; i < nTimes; ++i) {
        strText += piece;
    }
    return strText;
}

// What this thread computed, in seconds: other programs on the machine do not count.
double ThreadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Seconds to lay the text out.
double LayOut(const std::string& strText, std::int32_t nWidth,
              const std::function<void(const CRichText&)>& check = {}) {
    CFixedMeasurer measurer;
    CRichText text(measurer);
    const double start = ThreadSeconds();
    EXPECT_TRUE(text.SetText(strText));
    EXPECT_TRUE(text.Layout(nWidth));
    const double time = ThreadSeconds() - start;
    for (const LineBox& line : text.Boxes().aLines) {
        EXPECT_GE(line.nHeight, 0);
        EXPECT_LE(line.nFirstFragment + line.nFragments, text.Boxes().aFragments.size());
    }
    if (check) {
        check(text);
    }
    return time;
}

struct Pattern {
    const char* pszName;
    const char* pszPiece;
    std::size_t nTimes;
};

// Each of these at its full size and at an eighth of it: the time may grow somewhat faster than the
// text (caches), never with its square.
constexpr Pattern kPatterns[] = {
    {"nested bold", "<b>", 100000},
    {"nested sizes", "<big><small>x", 50000},
    {"nested boxes", "<span class=cpp-comment><pre>x ", 30000},
    {"closing tags without opening ones", "</b></i></table></td>", 40000},
    {"crossed tags", "<b><i><u></b></i></u>", 40000},
    {"nested tables", "<table><tr><td>x", 10000},
    {"tables without cells", "<table>", 50000},
    {"angle brackets", "<", 1000000},
    {"open tags", "<a ", 300000},
    {"quotation marks", "<a b=\"", 150000},
    {"comments", "<!--", 250000},
    {"ampersands", "&", 1000000},
    {"one word", "w", 1000000},
    {"one word of break characters", "a,", 500000},
    {"hyphens", "-", 1000000},
    {"line feeds", "\n", 500000},
    {"tabs", "\t", 300000},
    {"cells in one row", "<td>x", 100000},
    {"rows with row spans", "<tr><td rowspan=99999999>x<td>y", 20000},
    {"wide spans", "<tr><td colspan=99999999>x<td>y", 20000},
    {"fonts", "<font face=f size=9>x</font>", 30000},
    {"rules", "<hr width=1>", 50000},
    {"string resources", "<string idres=12345>", 50000},
    {"links", "<a msg=x>y</a> ", 50000},
    {"alignment", "<center><justify>a b", 40000},
};

TEST(Abuse, TimeIsLinear) {
    for (const Pattern& pattern : kPatterns) {
        SCOPED_TRACE(pattern.pszName);
        const bool bTable = std::string_view(pattern.pszPiece).substr(0, 2) == "<t" &&
                            std::string_view(pattern.pszPiece).find("<table") != 0;
        const std::string strOpen = bTable ? "<table>" : "";
        OnSmallStack([&] {
            const double small =
                LayOut(strOpen + Repeated(pattern.pszPiece, pattern.nTimes / 8), 360);
            const double large = LayOut(strOpen + Repeated(pattern.pszPiece, pattern.nTimes), 360);
            // The square would be 64 times.
            EXPECT_LT(large, 24 * small + 0.05);
        });
    }
}

TEST(Abuse, CrossedDeepTagsAreLinear) {
    OnSmallStack([] {
        const auto crossed = [](std::size_t n) {
            return Repeated("<b>", n) + Repeated("<i>", n) + Repeated("</b>", n) +
                   Repeated("<u>x</i>", n);
        };
        const double small = LayOut(crossed(5000), 360);
        EXPECT_LT(LayOut(crossed(40000), 360), 24 * small + 0.05);
    });
}

TEST(Abuse, SpansAreClamped) {
    for (const char* pszSpan : {"0", "-1", "99999999", "-99999999999999", "x", ""}) {
        SCOPED_TRACE(pszSpan);
        const std::string strSpan = pszSpan;
        LayOut("<table cellspacing=0 cellpadding=0><tr><td rowspan=" + strSpan +
                   " colspan=" + strSpan + ">a</td><td>b</td></tr><tr><td>c</td></tr></table>",
               360, [](const CRichText& text) {
                   ASSERT_EQ(text.Boxes().aBlocks.size(), 4U);
                   EXPECT_LT(text.Boxes().aBlocks[0].nWidth, 40);
                   EXPECT_LT(text.Boxes().aBlocks[0].nHeight, 60);
               });
    }
    // More cells in a row than a table has columns: none is lost.
    LayOut("<table><tr>" + Repeated("<td>x", 2000), 360,
           [](const CRichText& text) { EXPECT_EQ(text.Boxes().aLines.size(), 2000U); });
}

TEST(Abuse, BoundsAreKept) {
    std::string strFonts;
    for (int nSize = 100; nSize < 400; ++nSize) {
        strFonts += "<font size=" + std::to_string(nSize) + ">x</font>";
    }
    LayOut(strFonts, 360,
           [](const CRichText& text) { EXPECT_EQ(text.Document().styles.FontCount(), 256U); });

    CFixedMeasurer measurer;
    CRichText text(measurer);
    EXPECT_TRUE(text.SetStyleSheet("span {padding: 1}"));
    EXPECT_TRUE(text.SetText(Repeated("<span>", 20) + "x"));
    EXPECT_TRUE(text.Layout(360));
    EXPECT_EQ(text.Boxes().aFragments.size(), 16U + 1) << "boxes and the text";

    LayOut("<table><tr><td colspan=101>x</table>", 360,
           [](const CRichText& spans) { EXPECT_EQ(spans.Document().aCells[0].nColSpan, 100); });
}

TEST(Abuse, LengthsThatOverflowAreHeld) {
    for (const char* pszLength :
         {"99999999999", "99999999999px", "99999999999in", "99999999999%", "-99999999999",
          "2147483647", "-2147483648", "0x7FFFFFFF", "99999999999em", "99999999999cm"}) {
        SCOPED_TRACE(pszLength);
        const std::string strLength = pszLength;
        std::string strText = "<font size=" + strLength + ">a</font><hr width=" + strLength + ">";
        for (const char* pszTag : {"bmp", "icon", "ilst"}) {
            strText += std::string("<") + pszTag + " width=" + strLength + " cy=" + strLength +
                       " index=" + strLength + " speed=" + strLength + ">";
        }
        strText += "<table width=" + strLength + " height=" + strLength + " border=" + strLength +
                   " cellpadding=" + strLength + " cellspacing=" + strLength +
                   "><tr><td width=" + strLength + " height=" + strLength + " border=" + strLength +
                   ">x</td><td bgeffect=" + strLength + ">y</td></tr></table>";
        LayOut(strText, 360, [](const CRichText& text) {
            EXPECT_GT(text.Boxes().nHeight, 0);
            EXPECT_LT(text.Boxes().nHeight, kMaxCoordinate);
        });
    }
    for (const std::int32_t nWidth : {-2147483647 - 1, -1, 0, 1, 2147483647}) {
        LayOut("some words <table width=50%><tr><td>x</table>", nWidth);
    }
}

TEST(Abuse, HundredNestedTablesTakeMilliseconds) {
    const std::string strText = Repeated("<table border=1><tr><td>level</td><td>", 100) + "inside";
    double best = 1;
    for (int i = 0; i < 5; ++i) {
        best = std::min(best, LayOut(strText, 360));
    }
    EXPECT_LT(best, 0.010);
}

TEST(Abuse, ResourceTextsAreBoundedTogether) {
    LayOut(Repeated("<string idres=0123456789012345678901234567890123456789>", 10000), 360,
           [](const CRichText& text) {
               EXPECT_LE(text.Document().strText.size(), std::size_t{64} << 10);
           });
}

}  // namespace
}  // namespace mvp::richtext
