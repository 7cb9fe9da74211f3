#include "richtext/document/plain_text.h"

namespace mvp::richtext {
namespace {

char SeparatorOf(ItemKind kind) {
    switch (kind) {
        case ItemKind::Tab:
        case ItemKind::CellClose:
            return ' ';
        case ItemKind::Break:
        case ItemKind::Paragraph:
        case ItemKind::Rule:
        case ItemKind::TableOpen:
        case ItemKind::TableClose:
        case ItemKind::RowOpen:
            return '\n';
        default:
            return '\0';
    }
}

// One separator between two words, of which the line feed is the stronger.
void Separate(std::string& strText, char cSeparator) {
    if (strText.empty() || strText.back() == '\n') {
        return;
    }
    if (strText.back() == ' ') {
        strText.back() = cSeparator;
    } else {
        strText.push_back(cSeparator);
    }
}

std::string Collect(const StyledDocument& document, std::uint32_t nLink) {
    std::string text;
    for (const Item& item : document.aItems) {
        if (nLink != kNone && item.nLink != nLink) {
            continue;
        }
        if (item.kind == ItemKind::Text) {
            text += document.TextOf(item);
        } else if (const char separator = SeparatorOf(item.kind); separator != '\0') {
            Separate(text, separator);
        }
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\n')) {
        text.pop_back();
    }
    return text;
}

}  // namespace

std::string PlainTextOf(const StyledDocument& document) {
    return Collect(document, kNone);
}

std::string LinkTextOf(const StyledDocument& document, std::uint32_t nLink) {
    return nLink == kNone ? std::string() : Collect(document, nLink);
}

}  // namespace mvp::richtext
