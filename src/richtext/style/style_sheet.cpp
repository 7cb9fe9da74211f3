#include "richtext/style/style_sheet.h"

#include <algorithm>
#include <cstdio>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

// Comments become spaces, so that none is taken for part of a selector.
void BlankComments(std::vector<char>& text) {
    const std::string_view view(text.data(), text.size());
    for (std::size_t at = view.find("/*"); at != std::string_view::npos; at = view.find("/*", at)) {
        const std::size_t close = view.find("*/", at + 2);
        const std::size_t end = close == std::string_view::npos ? view.size() : close + 2;
        std::fill(text.data() + at, text.data() + end, ' ');
        at = end;
    }
}

// Tag names mean the same in any letter case; class names do not.
void LowerTagSelectors(std::vector<char>& text) {
    bool inBlock = false;
    bool inClass = false;
    for (char& c : text) {
        if (c == '{' || c == '}') {
            inBlock = c == '{';
            inClass = false;
        } else if (c == ',' || IsSpace(c)) {
            inClass = false;
        } else if (c == '.') {
            inClass = true;
        } else if (!inBlock && !inClass) {
            c = AsciiLower(c);
        }
    }
}

void AddSelectors(std::string_view selectors, std::string_view block,
                  std::vector<StyleSheet::Rule>& rules) {
    for (std::string_view part = NextToken(selectors, ","); !part.empty();
         part = NextToken(selectors, ",")) {
        if (const std::string_view selector = Trim(part); !selector.empty()) {
            rules.push_back({selector, block});
        }
    }
}

std::vector<StyleSheet::Rule> ReadRules(std::string_view text) {
    std::vector<StyleSheet::Rule> rules;
    rules.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '}')));
    for (;;) {
        const std::size_t open = text.find('{');
        const std::size_t close = open == std::string_view::npos ? open : text.find('}', open);
        if (close == std::string_view::npos) {
            break;
        }
        AddSelectors(text.substr(0, open), Trim(text.substr(open + 1, close - open - 1)), rules);
        text.remove_prefix(close + 1);
    }
    // Blocks of one selector stay in the order of the text.
    std::sort(rules.begin(), rules.end(), [](const StyleSheet::Rule& a, const StyleSheet::Rule& b) {
        const int order = a.selector.compare(b.selector);
        return order != 0 ? order < 0 : a.selector.data() < b.selector.data();
    });
    return rules;
}

const std::vector<StyleSheet::Rule>& BuiltInRules() {
    static const std::vector<StyleSheet::Rule> rules = ReadRules(BuiltInStyleSheet());
    return rules;
}

std::string LinkRule(const char* pszSelector, Colour colour, bool bUnderline) {
    char digits[16];
    std::snprintf(digits, sizeof(digits), "0x%06X", static_cast<unsigned>(colour));
    return std::string(pszSelector) + " {color:" + digits +
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

void StyleSheet::Load(std::optional<std::string_view> text) {
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

std::span<const StyleSheet::Rule> StyleSheet::Rules() const {
    return m_bBuiltIn ? BuiltInRules() : m_aRules;
}

void StyleSheet::SetLinkRules(Colour link, bool bLinkUnderline, Colour hover,
                              bool bHoverUnderline) {
    std::string text;
    for (const Rule& rule : Rules()) {
        if (rule.selector != "a:link" && rule.selector != "a:hover") {
            text.append(rule.selector).append(" {").append(rule.block).append("}\r\n");
        }
    }
    text += LinkRule("a:link", link, bLinkUnderline);
    text += LinkRule("a:hover", hover, bHoverUnderline);
    Load(text);
}

std::span<const StyleSheet::Rule> StyleSheet::Find(std::string_view selector) const {
    const std::span<const Rule> rules = Rules();
    const auto range =
        std::equal_range(rules.begin(), rules.end(), Rule{selector, {}},
                         [](const Rule& a, const Rule& b) { return a.selector < b.selector; });
    return {range.first, range.second};
}

std::span<const StyleSheet::Rule> StyleSheet::FindClass(std::string_view name) const {
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

std::string StyleSheet::Dump() const {
    std::string dump;
    for (const Rule& rule : Rules()) {
        dump.append(rule.selector).append(" {").append(rule.block).append("}\n");
    }
    return dump;
}

}  // namespace mvp::richtext
