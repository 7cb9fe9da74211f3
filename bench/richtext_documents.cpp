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

std::uint32_t CDocumentGenerator::Random(std::uint32_t nBelow) {
    m_nState = m_nState * 1664525U + 1013904223U;
    return (m_nState >> 8) % nBelow;
}

void CDocumentGenerator::Words(std::string& strOut, std::uint32_t nCount) {
    for (std::uint32_t i = 0; i < nCount; ++i) {
        strOut += kWords[Random(static_cast<std::uint32_t>(std::size(kWords)))];
        strOut += ' ';
    }
}

std::string CDocumentGenerator::Notification() {
    return "<b>Card removed</b><br>The card in reader <i>Front slot 1</i> was removed while a "
           "session was open. <a msg=\"reinsert\">Insert it again</a> to go on, or call "
           "the help desk &amp; ask for Ann.";
}

std::string CDocumentGenerator::Report() {
    CDocumentGenerator generator;
    std::string strOut = "<body><h1>Card report</h1><br>";
    for (int i = 0; i < 4; ++i) {
        strOut += "<h3>Part " + std::to_string(i + 1) + "</h3><br>";
        for (int j = 0; j < 3; ++j) {
            strOut += std::string("<font color=") +
                      kColours[generator.Random(static_cast<std::uint32_t>(std::size(kColours)))] +
                      ">";
            generator.Words(strOut, 4);
            strOut += "</font>";
            generator.Words(strOut, 8);
            strOut += "<br>";
        }
    }
    strOut += R"(<table border=1 cellpadding=3 width="100%" bgcolor="#f0f0f0">)";
    for (int i = 0; i < 5; ++i) {
        strOut += "<tr><td width=\"30%\">";
        generator.Words(strOut, 2);
        strOut += "</td><td align=right><b>";
        generator.Words(strOut, 4);
        strOut += "</b></td></tr>";
    }
    return strOut + "</table></body>";
}

std::string CDocumentGenerator::Mixed(std::size_t nBytes) {
    CDocumentGenerator generator;
    std::string strOut;
    strOut.reserve(nBytes + 256);
    while (strOut.size() < nBytes) {
        const std::uint32_t nRest = generator.Random(40);
        generator.Words(strOut, 2 + generator.Random(6));
        if (nRest == 0) {
            strOut += "<br>";
        } else if (nRest == 1) {
            strOut += "&quot;";
        }
        const Style& style =
            kStyles[generator.Random(static_cast<std::uint32_t>(std::size(kStyles)))];
        strOut += style.pszOpen;
        generator.Words(strOut, 1 + generator.Random(4));
        strOut += style.pszClose;
    }
    return strOut;
}

std::string CDocumentGenerator::Table() {
    CDocumentGenerator generator;
    std::string strOut = "<table border=1 cellpadding=2 cellspacing=1>";
    for (int nRow = 0; nRow < 50; ++nRow) {
        strOut += "<tr>";
        for (int nColumn = 0; nColumn < 20;) {
            // One cell in ten spans two columns, one row in five has a cell of two rows.
            const bool bWide = nColumn < 19 && generator.Random(10) == 0;
            strOut += bWide ? "<td colspan=2>" : "<td>";
            generator.Words(strOut, 1 + generator.Random(3));
            strOut += "</td>";
            nColumn += bWide ? 2 : 1;
        }
        strOut += nRow % 5 == 0 ? "<td rowspan=2>end</td></tr>" : "</tr>";
    }
    return strOut + "</table>";
}

std::string CDocumentGenerator::Nested(int nDepth) {
    std::string strOut;
    for (int i = 0; i < nDepth; ++i) {
        strOut += "<table border=1><tr><td>level</td><td>";
    }
    strOut += "inside";
    for (int i = 0; i < nDepth; ++i) {
        strOut += "</td></tr></table>";
    }
    return strOut;
}

}  // namespace mvp::bench
