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

TEST(Notice, FollowsTheRegistry) {
    using Text = NoticeParameters::Text;
    const NoticeSettings all = {.enable = 1, .duration = 7, .message = "m", .passwordTimeout = 9};
    const auto expect = [](int nType, const NoticeSettings& settings, bool bShown,
                           std::uint32_t nStay, Text text = Text::Unchanged) {
        const NoticeParameters notice = ReadNotice(nType, settings, MatchesHref);
        EXPECT_EQ(notice.bShown, bShown);
        EXPECT_EQ(notice.nStay, nStay);
        EXPECT_EQ(notice.text, text);
        EXPECT_EQ(notice.strMessage, text == Text::Message ? "m" : "");
    };
    expect(kNoReaderNotice, {}, false, 0);
    expect(kNoReaderNotice, {.enable = 0, .duration = 7, .message = "m"}, false, 0);
    expect(kNoReaderNotice, all, true, 7000, Text::Message);
    expect(kCardAlertNotice, all, true, 7000, Text::Message);
    expect(kCardAlertNotice, {.enable = 2, .duration = 0}, true, 1000);
    expect(kCardAlertNotice, {.enable = 1, .message = "<a href=x>"}, true, 0, Text::Default);
    expect(kCardAlertNotice, {.enable = 1, .duration = 4294967}, true, 4294967000);
    expect(kCardAlertNotice, {.enable = 1, .duration = 4294968}, true, ~0U);
    expect(kPasswordNotice, {}, true, 15000);
    expect(kPasswordNotice, all, true, 9000);
    expect(kPasswordNotice, {.passwordTimeout = 0}, true, 0);
    expect(kPasswordNotice, {.passwordTimeout = ~0U}, true, ~0U);
}

}  // namespace
}  // namespace mvp
