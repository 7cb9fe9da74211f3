// The first stage: cuts markup into events. The reader holds no tree and no stack, so its memory
// does not grow with the text, and every byte is looked at a bounded number of times.
//
//     MarkupReader reader(text);
//     for (MarkupEvent event = reader.Next(); event.kind != MarkupEvent::Kind::End;
//          event = reader.Next()) { ... reader.Attributes() ... }
//
// How the text is read:
// - "<" and a letter, or "</" and a letter, open a tag, which ends at the first ">" outside of
//   quotation marks. A tag without an end swallows the rest of the text. Unknown tags give no
//   event.
// - "<<" is one visible angle bracket, wherever it comes from; so is a "<" that opens nothing.
// - "<!-- -->", "<!...>" and "<?...>" are skipped.
// - A line feed, and a carriage return with or without one, is a br tag; a tab is a t tag.
// - href is known only in lower case, before an equals sign and inside a tag that ends: whatever
//   opens things therefore matches the pattern .*<.*href\s*=.*>.* of a plain text filter.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "richtext/markup/markup_tables.h"

namespace mvp::richtext {

// The known attributes of one tag; of one that is repeated the first counts.
class TagAttributes {
public:
    bool Has(AttributeId attribute) const { return (m_nSet & Bit(attribute)) != 0; }
    // Empty when the tag does not have it.
    std::string_view Get(AttributeId attribute) const {
        return Has(attribute) ? m_aValue[static_cast<std::size_t>(attribute)] : std::string_view{};
    }
    bool Empty() const { return m_nSet == 0; }

    void Clear() { m_nSet = 0; }
    void Add(AttributeId attribute, std::string_view value) {
        if (!Has(attribute)) {
            m_nSet |= Bit(attribute);
            m_aValue[static_cast<std::size_t>(attribute)] = value;
        }
    }

private:
    static constexpr std::uint64_t Bit(AttributeId attribute) {
        return std::uint64_t{1} << static_cast<unsigned>(attribute);
    }
    static_assert(kAttributeCount <= 64);

    std::uint64_t m_nSet = 0;
    std::array<std::string_view, kAttributeCount> m_aValue = {};
};

struct MarkupEvent {
    enum class Kind : std::uint8_t { Text, Open, Close, End };

    Kind kind = Kind::End;
    TagId tag = TagId::B;     // Open, Close
    bool bCharacter = false;  // Open: the line feed or tab character, not a tag
    std::string_view text;    // Text: bytes to show, free of markup; not empty
};

class MarkupReader {
public:
    // The text must outlive the reader.
    explicit MarkupReader(std::string_view text);

    MarkupEvent Next();

    // Of the Open event that Next returned last. The values are free of entities and good for as
    // long as the reader and the text.
    const TagAttributes& Attributes() const { return m_attributes; }

private:
    bool ReadAngle(MarkupEvent& event);
    bool ReadTag(MarkupEvent& event, bool bClose);
    void SkipComment();
    void SkipPast(std::string_view end);
    bool ReadAttributes(std::size_t& nAt);
    bool ReadValue(std::size_t& nAt, std::string_view& value);
    std::string_view Decoded(std::string_view value);
    MarkupEvent TextUpTo(std::size_t nEnd);

    std::string_view m_text;
    std::size_t m_nAt = 0;
    TagAttributes m_attributes;
    std::string m_strDecoded;  // the values that had entities
};

}  // namespace mvp::richtext
