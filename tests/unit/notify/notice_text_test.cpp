#include "notify/notice_text.h"

#include <gtest/gtest.h>

#include "suite/mvcext/pattern_compiler.h"

namespace mvp {
namespace {

bool MatchesHref(const char* pszText) {
    static const std::optional<PatternProgram> pattern = CompilePattern(kHrefPattern, false);
    return pattern->Matches(pszText);
}

// "refused" where no text is shown.
std::string TextOf(std::string_view value) {
    return NoticeText(value, MatchesHref).value_or("refused");
}

TEST(NoticeText, ShowsWhatOpensNothing) {
    using namespace std::string_view_literals;
    const std::pair<std::string_view, std::string> cases[] = {
        {"", ""},
        {"Card left", "Card left"},
        {R"(one\ntwo\n\nthree\)", "one\ntwo\n\nthree\\"},
        {R"(one\\ntwo \N)", "one\\\ntwo \\N"},
        {"ended\0<a href=x>"sv, "ended"},
        {"<b>bold</b> <a msg=m>told</a>", "<b>bold</b> <a msg=m>told</a>"},
        {"<bmp idres=3 width=9>", "<bmp idres=3 width=9>"},
        // A link for others, not for the engine.
        {"<a HREF=x>y</a>", "<a HREF=x>y</a>"},
        {"&lt;a href=x&gt;", "&lt;a href=x&gt;"},
        {R"(<a hr\nef=x>)", "<a hr\nef=x>"},
        {"href=5 <b", "href=5 <b"},
        {"file=x <b>handle</b> <!--<bmp file=x>-->", "file=x <b>handle</b> <!--<bmp file=x>-->"},
    };
    for (const auto& [value, shown] : cases) {
        EXPECT_EQ(TextOf(value), shown);
    }
    EXPECT_EQ(TextOf(std::string(kNoticeMessageMax, 'x') + "<a href=x>"),
              std::string(kNoticeMessageMax, 'x'));
}

TEST(NoticeText, RefusesWhatLeadsOut) {
    for (const char* value :
         {"<a href=\"http://x/\">y</a>", "<A href = 'x'>y", "1 < 2, href=3 > 2",
          "<b>\nhref\t=\n</b>", "<!-- <a href=x> -->",
          // Only what is shown is a link.
          R"(<a href\n="http://x/">y</a>)", R"(<a href \n\n = x>)", R"(<a\nhref\n=x\n>y)",
          // What the pattern does not know of.
          R"(<bmp file="\\server\share\x.bmp">)", "<ICON FILE=x.ico>", "<ilst file='x'>",
          "<bmp idres=1 iddll=x.dll>", "<icon idres=1 srcdll=x.dll>", "<ilst handle=0x10>",
          R"(<bmp\nfile\n=x>)", "<string idres=1 srcdll=x.dll>", "<string idres=1 iddll=x.dll>",
          "<table background=x.bmp>", "<table><tr><td Background='x.bmp'>y",
          // Where the eye and the reader might part.
          "<a msg='>' href=x>y", "<b><!-- --><a href=x>y</a></b>", "<!--><a href=x>y-->",
          "<<a href=x>y", R"(<icon file=c:\new.ico index=1>)",
          R"(<bmp idres=1 srcdll='\\x\n.dll'>)"}) {
        EXPECT_EQ(TextOf(value), "refused") << value;
    }
}

}  // namespace
}  // namespace mvp
