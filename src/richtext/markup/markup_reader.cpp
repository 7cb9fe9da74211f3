#include "richtext/markup/markup_reader.h"

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

// The bytes that end a stretch of plain text.
constexpr std::array<bool, 256> kSpecial = [] {
    std::array<bool, 256> special = {};
    for (const char c : {'<', '&', '\n', '\r', '\t'}) {
        special[Byte(c)] = true;
    }
    return special;
}();

constexpr bool EndsName(char c) {
    return IsSpace(c) || c == '/' || c == '>';
}

// What an entity shows: the doubled bracket is the scanner's spelling of a single one.
std::string_view Shown(const EntityInfo& entity) {
    return entity.replacement == "<<" ? entity.replacement.substr(1) : entity.replacement;
}

}  // namespace

MarkupReader::MarkupReader(std::string_view text) : m_text(text) {}

MarkupEvent MarkupReader::TextUpTo(std::size_t nEnd) {
    MarkupEvent event;
    event.kind = MarkupEvent::Kind::Text;
    event.text = m_text.substr(m_nAt, nEnd - m_nAt);
    m_nAt = nEnd;
    return event;
}

MarkupEvent MarkupReader::Next() {
    MarkupEvent event;
    while (m_nAt < m_text.size()) {
        const char c = m_text[m_nAt];
        if (c == '<') {
            if (ReadAngle(event)) {
                return event;
            }
            continue;
        }
        if (c == '\n' || c == '\r' || c == '\t') {
            const bool pair = m_text.substr(m_nAt, 2) == "\r\n";
            m_nAt += pair ? 2 : 1;
            m_attributes.Clear();
            event.kind = MarkupEvent::Kind::Open;
            event.tag = c == '\t' ? TagId::T : TagId::Br;
            event.bCharacter = true;
            return event;
        }
        if (c == '&') {
            if (const EntityInfo* entity = MatchEntity(m_text.substr(m_nAt)); entity != nullptr) {
                m_nAt += entity->name.size();
                event.kind = MarkupEvent::Kind::Text;
                event.text = Shown(*entity);
                return event;
            }
        }
        std::size_t end = m_nAt + 1;
        while (end < m_text.size() && !kSpecial[Byte(m_text[end])]) {
            ++end;
        }
        return TextUpTo(end);
    }
    return event;
}

// At a "<". False when what stood there shows nothing.
bool MarkupReader::ReadAngle(MarkupEvent& event) {
    const std::string_view rest = m_text.substr(m_nAt);
    const char next = rest.size() > 1 ? rest[1] : '\0';
    if (IsAsciiLetter(next)) {
        return ReadTag(event, false);
    }
    if (next == '/' && rest.size() > 2) {
        if (IsAsciiLetter(rest[2])) {
            return ReadTag(event, true);
        }
        SkipPast(">");
        return false;
    }
    if (next == '!' || next == '?') {
        SkipComment();
        return false;
    }
    event = TextUpTo(m_nAt + 1);
    if (next == '<') {
        ++m_nAt;
    }
    return true;
}

void MarkupReader::SkipPast(std::string_view end) {
    const std::size_t found = m_text.find(end, m_nAt);
    m_nAt = found == std::string_view::npos ? m_text.size() : found + end.size();
}

void MarkupReader::SkipComment() {
    constexpr std::string_view kOpen = "<!--";
    if (m_text.substr(m_nAt, kOpen.size()) != kOpen) {
        SkipPast(">");
        return;
    }
    m_nAt += kOpen.size();
    const std::string_view rest = m_text.substr(m_nAt);
    if (rest.substr(0, 1) == ">" || rest.substr(0, 2) == "->") {
        SkipPast(">");
    } else {
        SkipPast("-->");
    }
}

// At the "<" of a tag. False when the tag is unknown or has no end.
bool MarkupReader::ReadTag(MarkupEvent& event, bool bClose) {
    const std::size_t nameStart = m_nAt + (bClose ? 2 : 1);
    std::size_t at = nameStart;
    while (at < m_text.size() && !EndsName(m_text[at])) {
        ++at;
    }
    const std::string_view name = m_text.substr(nameStart, at - nameStart);
    m_attributes.Clear();
    const bool ended = ReadAttributes(at);
    m_nAt = at;
    const std::optional<TagId> tag = FindTag(name);
    if (!ended || !tag.has_value()) {
        return false;
    }
    event.kind = bClose ? MarkupEvent::Kind::Close : MarkupEvent::Kind::Open;
    event.tag = *tag;
    return true;
}

// From behind the tag's name to behind its ">". False when the text ends before.
bool MarkupReader::ReadAttributes(std::size_t& nAt) {
    const std::size_t size = m_text.size();
    for (;;) {
        while (nAt < size && (IsSpace(m_text[nAt]) || m_text[nAt] == '/')) {
            ++nAt;
        }
        if (nAt == size) {
            return false;
        }
        if (m_text[nAt] == '>') {
            ++nAt;
            return true;
        }
        const std::size_t nameStart = nAt++;
        while (nAt < size && !EndsName(m_text[nAt]) && m_text[nAt] != '=') {
            ++nAt;
        }
        const std::string_view name = m_text.substr(nameStart, nAt - nameStart);
        while (nAt < size && IsSpace(m_text[nAt])) {
            ++nAt;
        }
        const bool hasValue = nAt < size && m_text[nAt] == '=';
        std::string_view value;
        if (hasValue && !ReadValue(++nAt, value)) {
            return false;
        }
        const auto attribute = FindAttribute(name);
        if (attribute.has_value() && (hasValue || *attribute != AttributeId::Href)) {
            m_attributes.Add(*attribute, Decoded(value));
        }
    }
}

// From behind the "=" to behind the value. False when the text ends before the value does.
bool MarkupReader::ReadValue(std::size_t& nAt, std::string_view& value) {
    while (nAt < m_text.size() && IsSpace(m_text[nAt])) {
        ++nAt;
    }
    if (nAt == m_text.size()) {
        return false;
    }
    const char quote = m_text[nAt];
    if (quote == '"' || quote == '\'') {
        const std::size_t end = m_text.find(quote, nAt + 1);
        if (end == std::string_view::npos) {
            nAt = m_text.size();
            return false;
        }
        value = m_text.substr(nAt + 1, end - nAt - 1);
        nAt = end + 1;
        return true;
    }
    const std::size_t start = nAt;
    while (nAt < m_text.size() && !IsSpace(m_text[nAt]) && m_text[nAt] != '>') {
        ++nAt;
    }
    value = m_text.substr(start, nAt - start);
    return true;
}

std::string_view MarkupReader::Decoded(std::string_view value) {
    std::size_t ampersand = value.find('&');
    if (ampersand == std::string_view::npos) {
        return value;
    }
    // Decoding never lengthens a text, so what is left of the markup bounds what will ever be
    // decoded: one reservation, and no value moves.
    if (m_strDecoded.empty()) {
        m_strDecoded.reserve(m_text.size() - m_nAt);
    }
    const std::size_t start = m_strDecoded.size();
    while (ampersand != std::string_view::npos) {
        m_strDecoded.append(value.substr(0, ampersand));
        value.remove_prefix(ampersand);
        const EntityInfo* entity = MatchEntity(value);
        m_strDecoded.append(entity != nullptr ? Shown(*entity) : value.substr(0, 1));
        value.remove_prefix(entity != nullptr ? entity->name.size() : 1);
        ampersand = value.find('&');
    }
    m_strDecoded.append(value);
    return std::string_view(m_strDecoded).substr(start);
}

}  // namespace mvp::richtext
