#include "richtext_documents.h"

#include <iterator>

namespace mvp::bench {
namespace {

constexpr const char* kWords[] = {
    "the",     "card",       "reader",        "has",     "been",     "removed",  "from",
    "a",       "connection", "certificate",   "expires", "in",       "days",     "please",
    "contact", "your",       "administrator", "or",      "enter",    "PIN",      "to",
    "unlock",  "it",         "well-known",    "token,",  "session.", "password", "is",
    "new",     "and",        "authenticated", "of",      "with",     "policy",   "changed"};

constexpr const char* kColours[] = {"red", "navy", "#336699", "0x0000FF", "darkgreen", "gray"};

struct Style {
    const char* pszOpen;
    const char* pszClose;
};
constexpr Style kStyles[] = {{"<b>", "</b>"},
                             {"<i>", "</i>"},
                             {"<u>", "</u>"},
                             {"<code>", "</code>"},
                             {"<span class=\"cpp-comment\">", "</span>"},
                             {"<small>", "</small>"},
                             {"<font size=3>", "</font>"},
                             {"<a href=\"help.htm\">", "</a>"}};

}  // namespace

std::uint32_t DocumentGenerator::Random(std::uint32_t nBelow) {
    m_nState = m_nState * 1664525U + 1013904223U;
    return (m_nState >> 8) % nBelow;
}

void DocumentGenerator::Words(std::string& strOut, std::uint32_t nCount) {
    for (std::uint32_t i = 0; i < nCount; ++i) {
        strOut += kWords[Random(static_cast<std::uint32_t>(std::size(kWords)))];
        strOut += ' ';
    }
}

std::string DocumentGenerator::Notification() {
    return "<b>Card removed</b><br>The card in reader <i>Front slot 1</i> was removed while a "
           "session was open. <a msg=\"reinsert\">Insert it again</a> to go on, or call "
           "the help desk &amp; ask for Ann.";
}

std::string DocumentGenerator::Report() {
    DocumentGenerator generator;
    std::string out = "<body><h1>Card report</h1><br>";
    for (int i = 0; i < 4; ++i) {
        out += "<h3>Part " + std::to_string(i + 1) + "</h3><br>";
        for (int j = 0; j < 3; ++j) {
            out += std::string("<font color=") +
                   kColours[generator.Random(static_cast<std::uint32_t>(std::size(kColours)))] +
                   ">";
            generator.Words(out, 4);
            out += "</font>";
            generator.Words(out, 8);
            out += "<br>";
        }
    }
    out += R"(<table border=1 cellpadding=3 width="100%" bgcolor="#f0f0f0">)";
    for (int i = 0; i < 5; ++i) {
        out += "<tr><td width=\"30%\">";
        generator.Words(out, 2);
        out += "</td><td align=right><b>";
        generator.Words(out, 4);
        out += "</b></td></tr>";
    }
    return out + "</table></body>";
}

std::string DocumentGenerator::Mixed(std::size_t nBytes) {
    DocumentGenerator generator;
    std::string out;
    out.reserve(nBytes + 256);
    while (out.size() < nBytes) {
        const std::uint32_t rest = generator.Random(40);
        generator.Words(out, 2 + generator.Random(6));
        if (rest == 0) {
            out += "<br>";
        } else if (rest == 1) {
            out += "&quot;";
        }
        const Style& style =
            kStyles[generator.Random(static_cast<std::uint32_t>(std::size(kStyles)))];
        out += style.pszOpen;
        generator.Words(out, 1 + generator.Random(4));
        out += style.pszClose;
    }
    return out;
}

std::string DocumentGenerator::Table() {
    DocumentGenerator generator;
    std::string out = "<table border=1 cellpadding=2 cellspacing=1>";
    for (int row = 0; row < 50; ++row) {
        out += "<tr>";
        for (int column = 0; column < 20;) {
            // One cell in ten spans two columns, one row in five has a cell of two rows.
            const bool wide = column < 19 && generator.Random(10) == 0;
            out += wide ? "<td colspan=2>" : "<td>";
            generator.Words(out, 1 + generator.Random(3));
            out += "</td>";
            column += wide ? 2 : 1;
        }
        out += row % 5 == 0 ? "<td rowspan=2>end</td></tr>" : "</tr>";
    }
    return out + "</table>";
}

std::string DocumentGenerator::Nested(int nDepth) {
    std::string out;
    for (int i = 0; i < nDepth; ++i) {
        out += "<table border=1><tr><td>level</td><td>";
    }
    out += "inside";
    for (int i = 0; i < nDepth; ++i) {
        out += "</td></tr></table>";
    }
    return out;
}

}  // namespace mvp::bench
