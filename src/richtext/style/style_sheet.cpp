#include "richtext/style/style_sheet.h"

#include <algorithm>
#include <cstdio>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

// Comments become spaces, so that none is taken for part of a selector.
void BlankComments(std::vector<char>& text) {
    const std::string_view view(text.data(), text.size());
    for (std::size_t nAt = view.find("/*"); nAt != std::string_view::npos;
         nAt = view.find("/*", nAt)) {
        const std::size_t nClose = view.find("*/", nAt + 2);
        const std::size_t nEnd = nClose == std::string_view::npos ? view.size() : nClose + 2;
        std::fill(text.data() + nAt, text.data() + nEnd, ' ');
        nAt = nEnd;
    }
}

// Tag names mean the same in any letter case; class names do not.
void LowerTagSelectors(std::vector<char>& text) {
    bool bInBlock = false;
    bool bClass = false;
    for (char& c : text) {
        if (c == '{' || c == '}') {
            bInBlock = c == '{';
            bClass = false;
        } else if (c == ',' || IsSpace(c)) {
            bClass = false;
        } else if (c == '.') {
            bClass = true;
        } else if (!bInBlock && !bClass) {
            c = AsciiLower(c);
        }
    }
}

void AddSelectors(std::string_view selectors, std::string_view block,
                  std::vector<CStyleSheet::Rule>& rules) {
    for (std::string_view part = NextToken(selectors, ","); !part.empty();
         part = NextToken(selectors, ",")) {
        if (const std::string_view selector = Trim(part); !selector.empty()) {
            rules.push_back({selector, block});
        }
    }
}

std::vector<CStyleSheet::Rule> ReadRules(std::string_view text) {
    std::vector<CStyleSheet::Rule> rules;
    rules.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '}')));
    for (;;) {
        const std::size_t nOpen = text.find('{');
        const std::size_t nClose = nOpen == std::string_view::npos ? nOpen : text.find('}', nOpen);
        if (nClose == std::string_view::npos) {
            break;
        }
        AddSelectors(text.substr(0, nOpen), Trim(text.substr(nOpen + 1, nClose - nOpen - 1)),
                     rules);
        text.remove_prefix(nClose + 1);
    }
    // Blocks of one selector stay in the order of the text.
    std::sort(rules.begin(), rules.end(),
              [](const CStyleSheet::Rule& a, const CStyleSheet::Rule& b) {
                  const int nOrder = a.selector.compare(b.selector);
                  return nOrder != 0 ? nOrder < 0 : a.selector.data() < b.selector.data();
              });
    return rules;
}

const std::vector<CStyleSheet::Rule>& BuiltInRules() {
    static const std::vector<CStyleSheet::Rule> s_aRules = ReadRules(BuiltInStyleSheet());
    return s_aRules;
}

std::string LinkRule(const char* pszSelector, Colour colour, bool bUnderline) {
    char aColour[16];
    std::snprintf(aColour, sizeof(aColour), "0x%06X", static_cast<unsigned>(colour));
    return std::string(pszSelector) + " {color:" + aColour +
           "; text-decoration:" + (bUnderline ? "underline" : "none") + "}\r\n";
}

}  // namespace

std::string_view BuiltInStyleSheet() {
    return "body {font-size: 10pt; color:black; font-family:Verdana}\r\n"
           "p {font-size: 10pt; color:black; font-family:Verdana; font-weight:bold}\r\n"
           "h1 {font-size: 14pt; color:black; font-family:Verdana; font-weight:bold}\r\n"
           "h2 {font-size: 13pt; color:#ff9900; font-family:Verdana; font-weight:bold}\r\n"
           "h3 {font-size: 12pt; color:#ff9900; font-family:Arial; font-weight:bold}\r\n"
           "h4 {font-size: 10pt; color:black; font-family:Verdana; font-weight:bold}\r\n"
           "h5 {font-size: 9pt; color:#ff9900; font-family:Verdana; font-weight:bold}\r\n"
           "h6 {font-size: 65%; color:#626262; font-family:Verdana; font-weight:normal}\r\n"
           "pre {font-size: 9pt; font-family:\"Courier\"; background-color:#fbedbb}\r\n"
           "code {color:#990000; font-family:Arial}\r\n"
           "a:link {text-decoration:none; color:blue}\r\n"
           "a:hover {text-decoration:underline; color:blue}\r\n"
           "sub {font-size:65%; vertical-align:bottom}\r\n"
           "sup {font-size:65%; vertical-align:top}\r\n"
           "big {font-size:125%}\r\n"
           "small {font-size:75%}\r\n"
           ".cpp-comment {color:green; font-style:italic}\r\n";
}

void CStyleSheet::Load(std::optional<std::string_view> text) {
    m_bBuiltIn = false;
    m_aRules.clear();
    m_aText.clear();
    if (!text.has_value()) {
        BuiltInRules();  // here, where memory may run out, and not when they are asked for
        m_bBuiltIn = true;
        return;
    }
    m_aText.assign(text->begin(), text->end());
    BlankComments(m_aText);
    LowerTagSelectors(m_aText);
    m_aRules = ReadRules({m_aText.data(), m_aText.size()});
}

std::span<const CStyleSheet::Rule> CStyleSheet::Rules() const {
    return m_bBuiltIn ? BuiltInRules() : m_aRules;
}

void CStyleSheet::SetLinkRules(Colour link, bool bLinkUnderline, Colour hover,
                               bool bHoverUnderline) {
    std::string strText;
    for (const Rule& rule : Rules()) {
        if (rule.selector != "a:link" && rule.selector != "a:hover") {
            strText.append(rule.selector).append(" {").append(rule.block).append("}\r\n");
        }
    }
    strText += LinkRule("a:link", link, bLinkUnderline);
    strText += LinkRule("a:hover", hover, bHoverUnderline);
    Load(strText);
}

std::span<const CStyleSheet::Rule> CStyleSheet::Find(std::string_view selector) const {
    const std::span<const Rule> rules = Rules();
    const auto range =
        std::equal_range(rules.begin(), rules.end(), Rule{selector, {}},
                         [](const Rule& a, const Rule& b) { return a.selector < b.selector; });
    return {range.first, range.second};
}

std::span<const CStyleSheet::Rule> CStyleSheet::FindClass(std::string_view name) const {
    // Every selector with a full stop in front stands in one block of the order.
    const auto compare = [](std::string_view selector, std::string_view key) {
        return selector.substr(0, 1) == "." ? selector.substr(1).compare(key)
                                            : selector.compare(".");
    };
    const std::span<const Rule> rules = Rules();
    const auto first = std::partition_point(rules.begin(), rules.end(), [&](const Rule& rule) {
        return compare(rule.selector, name) < 0;
    });
    const auto last = std::partition_point(
        first, rules.end(), [&](const Rule& rule) { return compare(rule.selector, name) == 0; });
    return {first, last};
}

std::string CStyleSheet::Dump() const {
    std::string strDump;
    for (const Rule& rule : Rules()) {
        strDump.append(rule.selector).append(" {").append(rule.block).append("}\n");
    }
    return strDump;
}

}  // namespace mvp::richtext
