#include "peer_documents.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace mvp::bench {
namespace {

struct Replacement {
    std::string_view from;
    std::string_view to;
};

constexpr Replacement kHtml[] = {{"</h1><br>", "</h1>"},
                                 {"</h3><br>", "</h3>"},
                                 {"<a msg=", "<a href="},
                                 {"color=0x", "color=#"}};

constexpr Replacement kPango[] = {
    {"<br>", "\n"},
    {"<code>", R"(<span foreground="#990000" font_family="Arial">)"},
    {"</code>", "</span>"},
    {R"(<span class="cpp-comment">)", R"(<span foreground="green" font_style="italic">)"},
    {"<font size=3>", R"(<span size="medium">)"},
    {"</font>", "</span>"},
    {R"(<a href="help.htm">)", R"(<span foreground="blue">)"},
    {R"(<a msg="reinsert">)", R"(<span foreground="blue">)"},
    {"</a>", "</span>"}};

template <std::size_t N>
std::string Replaced(std::string_view text, const Replacement (&replacements)[N]) {
    std::string out;
    out.reserve(text.size() * 2);
    while (!text.empty()) {
        const auto found =
            std::find_if(std::begin(replacements), std::end(replacements),
                         [&](const Replacement& one) { return text.starts_with(one.from); });
        if (found != std::end(replacements)) {
            out += found->to;
            text.remove_prefix(found->from.size());
        } else {
            out += text.front();
            text.remove_prefix(1);
        }
    }
    return out;
}

}  // namespace

std::string ToHtml(const std::string& strMarkup) {
    return Replaced(strMarkup, kHtml);
}

std::string ToPangoMarkup(const std::string& strMarkup) {
    return Replaced(strMarkup, kPango);
}

}  // namespace mvp::bench
