// Texts made to upset: nothing recurses on them, takes unbounded memory, or takes more than linear
// time.
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>

#include "unit/richtext/test_text.h"

namespace mvp::richtext {
namespace {

// A stack of 1 MB, as a thread of a host may have.
void OnSmallStack(std::function<void()> function) {
    const auto run = [](void* pFunction) -> void* {
        (*static_cast<std::function<void()>*>(pFunction))();
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_t thread;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{1} << 20), 0);
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &function), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

std::string Repeated(std::string_view piece, std::size_t nTimes) {
    std::string text;
    text.reserve(piece.size() * nTimes);
    for (std::size_t i = 0; i < nTimes; ++i) {
        text += piece;
    }
    return text;
}

// The text with `value` for each "@".
std::string With(std::string strText, std::string_view value) {
    for (std::size_t n = strText.find('@'); n != std::string::npos; n = strText.find('@', n)) {
        strText.replace(n, 1, value);
    }
    return strText;
}

// What this process computed: other programs on the machine do not count.
double ProcessSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

struct AbusedText : TestText {
    explicit AbusedText(const std::string& strText, std::int32_t nWidth = 360) {
        const double start = ProcessSeconds();
        LayOut(strText, nWidth);
        seconds = ProcessSeconds() - start;
        for (const LineBox& line : text.Boxes().aLines) {
            EXPECT_GE(line.nHeight, 0);
            EXPECT_LE(line.nFirstFragment + line.nFragments, text.Boxes().aFragments.size());
        }
    }

    double seconds = 0;
};

// At the full size and at an eighth of it: the time may grow somewhat faster than the text
// (caches), never with its square, which would be 64 times.
void ExpectLinear(const std::function<std::string(std::size_t)>& make, std::size_t nTimes) {
    const double small = AbusedText(make(nTimes / 8)).seconds;
    EXPECT_LT(AbusedText(make(nTimes)).seconds, 24 * small + 0.05);
}

TEST(Abuse, TimeIsLinear) {
    const struct {
        std::size_t nTimes;
        std::vector<std::string> aPieces;
    } kPatterns[] = {
        {1000000, {"<", "&", "w", "-"}},
        {500000, {"a,", "\n"}},
        {300000, {"<a ", "\t"}},
        {250000, {"<!--"}},
        {150000, {"<a b=\""}},
        {100000, {"<b>", "<td>x"}},
        {50000,
         {"<big><small>x", "<table>", "<hr width=1>", "<string idres=12345>", "<a msg=x>y</a> "}},
        {40000, {"</b></i></table></td>", "<b><i><u></b></i></u>", "<center><justify>a b"}},
        {30000, {"<span class=cpp-comment><pre>x ", "<font face=f size=9>x</font>"}},
        {20000, {"<tr><td rowspan=99999999>x<td>y", "<tr><td colspan=99999999>x<td>y"}},
        {10000, {"<table><tr><td>x"}},
    };
    OnSmallStack([&] {
        for (const auto& [times, pieces] : kPatterns) {
            for (const std::string& piece : pieces) {
                SCOPED_TRACE(piece);
                const bool cells = piece.starts_with("<td") || piece.starts_with("<tr");
                ExpectLinear(
                    [&](std::size_t n) { return (cells ? "<table>" : "") + Repeated(piece, n); },
                    times);
            }
        }
        SCOPED_TRACE("crossed and deep");
        ExpectLinear(
            [](std::size_t n) {
                return Repeated("<b>", n) + Repeated("<i>", n) + Repeated("</b>", n) +
                       Repeated("<u>x</i>", n);
            },
            40000);
    });
}

TEST(Abuse, SpansAreClamped) {
    for (const char* span : {"0", "-1", "99999999", "-99999999999999", "x", ""}) {
        SCOPED_TRACE(span);
        const AbusedText spans(
            With("<table cellspacing=0 cellpadding=0><tr><td rowspan=@ "
                 "colspan=@>a</td><td>b</td></tr><tr><td>c</td></tr></table>",
                 span));
        const auto& blocks = spans.text.Boxes().aBlocks;
        ASSERT_EQ(blocks.size(), 4U);
        EXPECT_LT(blocks[0].nWidth, 40);
        EXPECT_LT(blocks[0].nHeight, 60);
    }
    const AbusedText wide("<table><tr><td colspan=101>x</table>");
    EXPECT_EQ(wide.text.Document().aCells[0].nColSpan, 100);
    // More cells in a row than a table has columns: none is lost.
    EXPECT_EQ(AbusedText("<table><tr>" + Repeated("<td>x", 2000)).Lines().size(), 2000U);
}

TEST(Abuse, BoundsAreKept) {
    std::string fonts;
    for (int size = 100; size < 400; ++size) {
        fonts += With("<font size=@>x</font>", std::to_string(size));
    }
    EXPECT_EQ(AbusedText(fonts).text.Document().styles.FontCount(), 256U);

    TestText boxes;
    EXPECT_TRUE(boxes.text.SetStyleSheet("span {padding: 1}"));
    boxes.LayOut(Repeated("<span>", 20) + "x", 360);
    EXPECT_EQ(boxes.text.Boxes().aFragments.size(), 16U + 1) << "boxes and the text";

    // The texts of resources are bounded together.
    EXPECT_LE(AbusedText(Repeated("<string idres=0123456789012345678901234567890123456789>", 10000))
                  .text.Document()
                  .strText.size(),
              std::size_t{64} << 10);
}

TEST(Abuse, LengthsThatOverflowAreHeld) {
    for (const char* length :
         {"99999999999", "99999999999px", "99999999999in", "99999999999%", "-99999999999",
          "2147483647", "-2147483648", "0x7FFFFFFF", "99999999999em", "99999999999cm"}) {
        SCOPED_TRACE(length);
        const AbusedText held(
            With("<font size=@>a</font><hr width=@><bmp width=@ cy=@ index=@ speed=@>"
                 "<icon width=@ cy=@ index=@ speed=@><ilst width=@ cy=@ index=@ speed=@>"
                 "<table width=@ height=@ border=@ cellpadding=@ cellspacing=@><tr>"
                 "<td width=@ height=@ border=@>x</td><td bgeffect=@>y</td></tr></table>",
                 length));
        EXPECT_GT(held.text.Boxes().nHeight, 0);
        EXPECT_LT(held.text.Boxes().nHeight, kMaxCoordinate);
    }
    for (const std::int32_t width : {-2147483647 - 1, -1, 0, 1, 2147483647}) {
        const AbusedText any("some words <table width=50%><tr><td>x</table>", width);
    }
}

}  // namespace
}  // namespace mvp::richtext
