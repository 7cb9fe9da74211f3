// Texts made of what could open something, changed a little, each through the fuzz target of the
// notices, which ends the program when one gets through: `bench_notice_texts 10000000`.
#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include "notify/notice_text.h"
#include "suite/mvcext/pattern_compiler.h"

// Of the fuzz target.
void Fuzz(std::string_view data);

namespace {

bool MatchesHref(const char* pszText) {
    static const auto pattern = mvp::CompilePattern(mvp::kHrefPattern, false);
    return pattern->Matches(pszText);
}

using Random = std::mt19937;

constexpr std::string_view kDangerous[] = {
    "<a href=\"http://x/\">y</a>",
    "<a href='x'>y",
    "<a\thref=x>y</a>",
    R"(<a href\n=x>y</a>)",
    R"(<a\nhref\n = \nx\n>y</a>)",
    R"(<a hr\nef=x>y)",
    "<A HREF=x>y</A>",
    "<a msg=m href=x>y</a>",
    "<a msg='>' href=x>y",
    "<b><!-- --><a href=x>y</a></b>",
    "<!--><a href=x>y-->",
    "<<a href=x>y",
    "&lt;a href=x&gt;y",
    "<a href&nbsp;=x>y",
    "<table><tr><td background=x.bmp>y</td></tr></table>",
    "<table background='x.bmp'>y",
    R"(<bmp file="\\server\new\x.bmp">)",
    R"(<icon file=c:\new.ico index=1>)",
    "<ilst idres=1 iddll=x.dll>",
    R"(<bmp idres=1 srcdll='\\x\n.dll'>)",
    "<bmp handle=0x10>",
    "<string idres=1 srcdll=x.dll>",
};

// What decides how a text is read.
constexpr std::string_view kPieces[] = {
    "<",    ">",    "\"",  "'",    "=",     "/",       "\\n",  "\\",   "n",    "\n",    "\r",
    "\t",   "\v",   " ",   "&lt;", "&gt;",  "&quot;",  "<!--", "-->",  "<a ",  "</a>",  "href",
    "HREF", "file", "<b>", "\xA0", "iddll", "handle=", "<?",   "<td ", "msg=", "&amp;", "="};

template <std::size_t n>
std::string_view OneOf(const std::string_view (&texts)[n], Random& random) {
    return texts[random() % n];
}

void Change(std::string& text, Random& random) {
    const std::size_t at = random() % (text.size() + 1);
    switch (random() % 6) {
        case 0:
            text.erase(at, 1 + random() % 3);
            break;
        case 1:
            text.insert(at, text.substr(at, random() % 8));
            break;
        case 2:
            text.insert(at, 1, static_cast<char>(random() % 256));
            break;
        case 3:
            std::swap(text[at % text.size()], text[random() % text.size()]);
            break;
        default:
            text.insert(at, OneOf(kPieces, random));
            break;
    }
}

std::string MakeText(Random& random) {
    std::string text(OneOf(kDangerous, random));
    for (auto more = random() % 3; more != 0; --more) {
        text += OneOf(kDangerous, random);
    }
    for (auto changes = random() % 8; changes != 0 && !text.empty(); --changes) {
        Change(text, random);
    }
    return text;
}

volatile std::uint64_t g_nText = 0;  // for the one that fails

}  // namespace

int main(int argc, char** argv) {
    const std::uint64_t texts = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 20'000;
    std::signal(SIGABRT, [](int) {
        std::fprintf(stderr, "text %llu\n", static_cast<unsigned long long>(g_nText));
    });
    Random random(12);
    std::uint64_t leading = 0;
    std::uint64_t shown = 0;
    std::uint64_t close = 0;
    for (std::uint64_t i = 0; i < texts; ++i) {
        g_nText = i;
        const std::string text = MakeText(random);
        Fuzz(text);
        // By what the reader of the markup finds alone.
        if (!mvp::NoticeText(text, [](const char*) { return false; }).has_value()) {
            ++leading;
        }
        const std::optional<std::string> what = mvp::NoticeText(text, MatchesHref);
        if (what.has_value()) {
            ++shown;
            close += static_cast<std::uint64_t>(what->find("href") != std::string::npos);
        }
    }
    std::printf("%llu texts: %llu would open something, %llu are shown, of which %llu say href\n",
                static_cast<unsigned long long>(texts), static_cast<unsigned long long>(leading),
                static_cast<unsigned long long>(shown), static_cast<unsigned long long>(close));
    const std::uint64_t least = texts / 50;
    return leading > least && shown > least && close > least / 4 ? 0 : 1;
}
