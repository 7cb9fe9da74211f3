// The style sheet: an ordered map from a selector (the style selector of a tag, ".class", "a:link"
// or "a:hover") to the text of its declaration block.
//
//     StyleSheet sheet;               // no rule
//     sheet.Load(std::nullopt);        // the built-in sheet
//     for (const auto& rule : sheet.Find("h1")) ...
//
// Tag selectors are kept in lower case; class names keep their case. A selector that is repeated
// keeps every block, in the order of the text, so that a later declaration wins over an earlier
// one and the others stand.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "richtext/style/colour_table.h"

namespace mvp::richtext {

// Rule by rule, each line ending with carriage return and line feed.
std::string_view BuiltInStyleSheet();

class StyleSheet {
public:
    struct Rule {
        std::string_view selector;
        std::string_view block;  // what stands between the braces
    };

    StyleSheet() = default;
    // The rules point into the text; moving keeps both together.
    StyleSheet(StyleSheet&&) noexcept = default;
    StyleSheet& operator=(StyleSheet&&) noexcept = default;
    StyleSheet(const StyleSheet&) = delete;
    StyleSheet& operator=(const StyleSheet&) = delete;
    ~StyleSheet() = default;

    // Removes every rule, then stores those of the text, of which it keeps a copy. No text loads
    // the built-in sheet; an empty one leaves no rule.
    void Load(std::optional<std::string_view> text);

    // Replaces the rules "a:link" and "a:hover" by a colour and an underline each.
    void SetLinkRules(Colour link, bool bLinkUnderline, Colour hover, bool bHoverUnderline);

    // The blocks of a selector; empty when it has none.
    std::span<const Rule> Find(std::string_view selector) const;
    // The same for the selector "." + name.
    std::span<const Rule> FindClass(std::string_view name) const;
    // All rules in the order of their selectors.
    std::span<const Rule> Rules() const;

    // One rule a line.
    std::string Dump() const;

private:
    bool m_bBuiltIn = false;  // its rules are the same for all, read once
    std::vector<char> m_aText;
    std::vector<Rule> m_aRules;
};

}  // namespace mvp::richtext
