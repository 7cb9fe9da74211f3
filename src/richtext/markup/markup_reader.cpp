#include "richtext/markup/markup_reader.h"

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

// The bytes that end a stretch of plain text.
constexpr std::array<bool, 256> kSpecial = [] {
    std::array<bool, 256> aSpecial = {};
    for (const char c : {'<', '&', '\n', '\r', '\t'}) {
        aSpecial[Byte(c)] = true;
    }
    return aSpecial;
}();

constexpr bool EndsName(char c) {
    return IsSpace(c) || c == '/' || c == '>';
}

// What an entity shows: the doubled bracket is the scanner's spelling of a single one.
std::string_view Shown(const EntityInfo& entity) {
    return entity.replacement == "<<" ? entity.replacement.substr(1) : entity.replacement;
}

}  // namespace

CMarkupReader::CMarkupReader(std::string_view text) : m_text(text) {}

MarkupEvent CMarkupReader::TextUpTo(std::size_t nEnd) {
    MarkupEvent event;
    event.kind = MarkupEvent::Kind::Text;
    event.text = m_text.substr(m_nAt, nEnd - m_nAt);
    m_nAt = nEnd;
    return event;
}

MarkupEvent CMarkupReader::Next() {
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
            const bool bPair = m_text.substr(m_nAt, 2) == "\r\n";
            m_nAt += bPair ? 2 : 1;
            m_attributes.Clear();
            event.kind = MarkupEvent::Kind::Open;
            event.tag = c == '\t' ? TagId::T : TagId::Br;
            event.bCharacter = true;
            return event;
        }
        if (c == '&') {
            if (const EntityInfo* pEntity = MatchEntity(m_text.substr(m_nAt)); pEntity != nullptr) {
                m_nAt += pEntity->name.size();
                event.kind = MarkupEvent::Kind::Text;
                event.text = Shown(*pEntity);
                return event;
            }
        }
        std::size_t nEnd = m_nAt + 1;
        while (nEnd < m_text.size() && !kSpecial[Byte(m_text[nEnd])]) {
            ++nEnd;
        }
        return TextUpTo(nEnd);
    }
    return event;
}

// At a "<". False when what stood there shows nothing.
bool CMarkupReader::ReadAngle(MarkupEvent& event) {
    const std::string_view rest = m_text.substr(m_nAt);
    const char cNext = rest.size() > 1 ? rest[1] : '\0';
    if (IsAsciiLetter(cNext)) {
        return ReadTag(event, false);
    }
    if (cNext == '/' && rest.size() > 2) {
        if (IsAsciiLetter(rest[2])) {
            return ReadTag(event, true);
        }
        SkipPast(">");
        return false;
    }
    if (cNext == '!' || cNext == '?') {
        SkipComment();
        return false;
    }
    event = TextUpTo(m_nAt + 1);
    if (cNext == '<') {
        ++m_nAt;
    }
    return true;
}

void CMarkupReader::SkipPast(std::string_view end) {
    const std::size_t nFound = m_text.find(end, m_nAt);
    m_nAt = nFound == std::string_view::npos ? m_text.size() : nFound + end.size();
}

void CMarkupReader::SkipComment() {
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
bool CMarkupReader::ReadTag(MarkupEvent& event, bool bClose) {
    const std::size_t nName = m_nAt + (bClose ? 2 : 1);
    std::size_t nAt = nName;
    while (nAt < m_text.size() && !EndsName(m_text[nAt])) {
        ++nAt;
    }
    const std::string_view name = m_text.substr(nName, nAt - nName);
    m_attributes.Clear();
    const bool bEnded = ReadAttributes(nAt);
    m_nAt = nAt;
    const std::optional<TagId> tag = FindTag(name);
    if (!bEnded || !tag.has_value()) {
        return false;
    }
    event.kind = bClose ? MarkupEvent::Kind::Close : MarkupEvent::Kind::Open;
    event.tag = *tag;
    return true;
}

// From behind the tag's name to behind its ">". False when the text ends before.
bool CMarkupReader::ReadAttributes(std::size_t& nAt) {
    const std::size_t nSize = m_text.size();
    for (;;) {
        while (nAt < nSize && (IsSpace(m_text[nAt]) || m_text[nAt] == '/')) {
            ++nAt;
        }
        if (nAt == nSize) {
            return false;
        }
        if (m_text[nAt] == '>') {
            ++nAt;
            return true;
        }
        const std::size_t nName = nAt++;
        while (nAt < nSize && !EndsName(m_text[nAt]) && m_text[nAt] != '=') {
            ++nAt;
        }
        const std::string_view name = m_text.substr(nName, nAt - nName);
        while (nAt < nSize && IsSpace(m_text[nAt])) {
            ++nAt;
        }
        const bool bValue = nAt < nSize && m_text[nAt] == '=';
        std::string_view value;
        if (bValue && !ReadValue(++nAt, value)) {
            return false;
        }
        const auto attribute = FindAttribute(name);
        if (attribute.has_value() && (bValue || *attribute != AttributeId::Href)) {
            m_attributes.Add(*attribute, Decoded(value));
        }
    }
}

// From behind the "=" to behind the value. False when the text ends before the value does.
bool CMarkupReader::ReadValue(std::size_t& nAt, std::string_view& value) {
    while (nAt < m_text.size() && IsSpace(m_text[nAt])) {
        ++nAt;
    }
    if (nAt == m_text.size()) {
        return false;
    }
    const char cQuote = m_text[nAt];
    if (cQuote == '"' || cQuote == '\'') {
        const std::size_t nEnd = m_text.find(cQuote, nAt + 1);
        if (nEnd == std::string_view::npos) {
            nAt = m_text.size();
            return false;
        }
        value = m_text.substr(nAt + 1, nEnd - nAt - 1);
        nAt = nEnd + 1;
        return true;
    }
    const std::size_t nStart = nAt;
    while (nAt < m_text.size() && !IsSpace(m_text[nAt]) && m_text[nAt] != '>') {
        ++nAt;
    }
    value = m_text.substr(nStart, nAt - nStart);
    return true;
}

std::string_view CMarkupReader::Decoded(std::string_view value) {
    std::size_t nAmp = value.find('&');
    if (nAmp == std::string_view::npos) {
        return value;
    }
    // Decoding never lengthens a text, so what is left of the markup bounds what will ever be
    // decoded: one reservation, and no value moves.
    if (m_strDecoded.empty()) {
        m_strDecoded.reserve(m_text.size() - m_nAt);
    }
    const std::size_t nStart = m_strDecoded.size();
    while (nAmp != std::string_view::npos) {
        m_strDecoded.append(value.substr(0, nAmp));
        value.remove_prefix(nAmp);
        const EntityInfo* pEntity = MatchEntity(value);
        m_strDecoded.append(pEntity != nullptr ? Shown(*pEntity) : value.substr(0, 1));
        value.remove_prefix(pEntity != nullptr ? pEntity->name.size() : 1);
        nAmp = value.find('&');
    }
    m_strDecoded.append(value);
    return std::string_view(m_strDecoded).substr(nStart);
}

}  // namespace mvp::richtext
