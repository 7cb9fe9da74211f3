#include "richtext/document/document_builder.h"

#include <algorithm>

#include "richtext/document/document_builder_impl.h"
#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

// Closing a tag out of order opens again what was inside it; so many at most, which keeps the work
// linear however the tags cross.
constexpr std::size_t kMaxReopened = 32;
// Inline boxes deeper than this are not drawn: each open one is part of every line.
constexpr std::uint32_t kMaxBoxes = 16;

bool IsBlank(std::string_view text) {
    return std::all_of(text.begin(), text.end(), IsSpace);
}

// Whether the letter behind this one goes on with its word.
bool IsInWord(char cLetter, const CaseMaps& maps) {
    const unsigned char c = Byte(cLetter);
    return maps.lower[c] != maps.upper[c] || c >= 0x80 || c == '\'' || IsDigit(cLetter);
}

}  // namespace

std::int32_t HeldExtent(std::int32_t nSize) {
    return std::clamp(nSize, 0, kMaxExtent);
}

StyledDocument BuildDocument(std::string_view text, const StyleSheet& sheet,
                             const BuildSettings& settings) {
    StyledDocument document;
    DocumentBuilder builder(text.substr(0, kMaxTextLength), sheet, settings, document);
    builder.Run();
    return document;
}

DocumentBuilder::DocumentBuilder(std::string_view text, const StyleSheet& sheet,
                                 const BuildSettings& settings, StyledDocument& document)
    : m_reader(text),
      m_sheet(sheet),
      m_settings(settings),
      m_document(document),
      m_elementStyles(sheet, settings.system, document.styles, m_scratch.Resource()),
      m_aElements(m_scratch.Resource()) {
    m_aLast.fill(kNone);
    m_document.strText.reserve(text.size());
    m_document.aItems.reserve(text.size() / 24 + 4);
    m_document.styles.Begin(*settings.pMeasurer, settings.font, settings.colour);
    m_aElements.reserve(32);
    m_aElements.emplace_back().bScope = true;
}

void DocumentBuilder::Run() {
    for (MarkupEvent event = m_reader.Next(); event.kind != MarkupEvent::Kind::End;
         event = m_reader.Next()) {
        switch (event.kind) {
            case MarkupEvent::Kind::Text:
                AddText(event.text);
                break;
            case MarkupEvent::Kind::Open:
                OpenTag(event);
                break;
            default:
                CloseTag(event.tag);
                break;
        }
    }
    while (InTable()) {
        CloseTable();
    }
    PopTo(1);
    Shrink(m_document.strText);
    Shrink(m_document.strStrings);
    Shrink(m_document.aItems);
    m_document.styles.Seal();
}

void DocumentBuilder::AddItem(ItemKind kind, std::uint32_t nOffset) {
    m_document.aItems.push_back({nOffset, 0, Top().nStyle, Top().nLink, kind});
}

TextRef DocumentBuilder::Store(std::string_view text) {
    const TextRef ref{static_cast<std::uint32_t>(m_document.strStrings.size()),
                      static_cast<std::uint32_t>(text.size())};
    m_document.strStrings.append(text);
    return ref;
}

// --- text -------------------------------------------------------------------------------------

void DocumentBuilder::AddText(std::string_view text) {
    if (BetweenCells()) {
        if (IsBlank(text)) {
            return;
        }
        EnsureCell();
    }
    const std::size_t from = m_document.strText.size();
    AppendText(text);
    const auto added = static_cast<std::uint32_t>(m_document.strText.size() - from);
    if (added == 0) {
        return;
    }
    const Element& top = Top();
    if (const TextTransform transform = m_document.styles[top.nStyle].transform;
        transform != TextTransform::None) {
        Transform(from, transform);
    }
    m_bWordStart = !IsInWord(m_document.strText.back(), *m_settings.pCaseMaps);
    const auto offset = static_cast<std::uint32_t>(from);
    if (!m_document.aItems.empty()) {
        Item& last = m_document.aItems.back();
        if (last.kind == ItemKind::Text && last.nStyle == top.nStyle && last.nLink == top.nLink) {
            last.nLength += added;  // text is only ever appended, so the two adjoin
            return;
        }
    }
    m_document.aItems.push_back({offset, added, top.nStyle, top.nLink, ItemKind::Text});
}

// Appends with every stretch of white space made one space, and none after a space or at the
// beginning of a line.
void DocumentBuilder::AppendText(std::string_view text) {
    std::string& content = m_document.strText;
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p != end) {
        const char* word = p;
        while (p != end && !IsSpace(*p)) {
            ++p;
        }
        if (p != word) {
            // A single space behind a word is copied with it.
            const bool space = p != end && *p == ' ';
            p += space ? 1 : 0;
            content.append(word, p);
            m_bCollapse = space;
        } else {
            if (!m_bCollapse) {
                content.push_back(' ');
                m_bCollapse = true;
            }
            ++p;
        }
    }
}

void DocumentBuilder::Transform(std::size_t nFrom, TextTransform transform) {
    std::string& text = m_document.strText;
    const CaseMaps& maps = *m_settings.pCaseMaps;
    for (std::size_t i = nFrom; i < text.size(); ++i) {
        const unsigned char c = Byte(text[i]);
        if (transform == TextTransform::Lowercase) {
            text[i] = maps.lower[c];
            continue;
        }
        if (transform == TextTransform::Uppercase || m_bWordStart) {
            text[i] = maps.upper[c];
        }
        m_bWordStart = !IsInWord(text[i], maps);
    }
}

void DocumentBuilder::AddBreak(bool bCharacter) {
    if (BetweenCells()) {
        if (bCharacter) {
            return;
        }
        EnsureCell();
    }
    AddItem(ItemKind::Break);
    m_bCollapse = true;
    m_bWordStart = true;
}

void DocumentBuilder::AddTab(bool bCharacter) {
    if (BetweenCells()) {
        if (bCharacter) {
            return;
        }
        EnsureCell();
    }
    AddItem(ItemKind::Tab);
    m_bCollapse = true;
    m_bWordStart = true;
}

// --- elements ---------------------------------------------------------------------------------

void DocumentBuilder::OpenTag(const MarkupEvent& event) {
    const TagKind kind = InfoOf(event.tag).kind;
    switch (kind) {
        case TagKind::Break:
            AddBreak(event.bCharacter);
            break;
        case TagKind::Tab:
            AddTab(event.bCharacter);
            break;
        case TagKind::Rule:
            AddRule();
            break;
        case TagKind::Bitmap:
        case TagKind::Icon:
        case TagKind::ImageList:
            AddImage(event.tag);
            break;
        case TagKind::String:
            AddString();
            break;
        case TagKind::Structure:
            if (event.tag == TagId::Table) {
                OpenTable();
            } else if (event.tag == TagId::Tr) {
                OpenRow(m_reader.Attributes());
            } else {
                OpenCell(m_reader.Attributes());
            }
            break;
        default:
            OpenElement(event.tag);
            break;
    }
}

void DocumentBuilder::CloseTag(TagId tag) {
    switch (tag) {
        case TagId::Table:
            CloseTable();
            return;
        case TagId::Tr:
            CloseRow();
            return;
        case TagId::Td:
            CloseCell();
            return;
        default:
            break;
    }
    if (const std::uint32_t element = m_aLast[static_cast<std::size_t>(tag)];
        element != kNone && element > m_nScope) {
        CloseElement(element);
    }
}

void DocumentBuilder::OpenElement(TagId tag) {
    const TagAttributes& attributes = m_reader.Attributes();
    const bool link =
        tag == TagId::A && (attributes.Has(AttributeId::Href) || attributes.Has(AttributeId::Msg));
    if (tag == TagId::A) {
        CloseTag(tag);  // links do not nest
    }
    Element element;
    element.tag = tag;
    element.change = m_elementStyles.ChangeOf(tag, attributes, link);
    element.nLink = link ? AddLink() : Top().nLink;
    element.nStyle = m_elementStyles.StyleOf(Top().nStyle, element.change);
    PushElement(element);
    EndLineAt(tag);
}

// At both ends of an alignment tag the line ends.
void DocumentBuilder::EndLineAt(TagId tag) {
    const TagKind kind = InfoOf(tag).kind;
    if (kind >= TagKind::Left && kind <= TagKind::Justify && !BetweenCells()) {
        AddItem(ItemKind::Paragraph);
        m_bCollapse = true;
        m_bWordStart = true;
    }
}

std::uint32_t DocumentBuilder::AddLink() {
    const TagAttributes& attributes = m_reader.Attributes();
    Link link;
    link.bHref = attributes.Has(AttributeId::Href);
    link.bMsg = attributes.Has(AttributeId::Msg);
    link.href = Store(attributes.Get(AttributeId::Href));
    link.msg = Store(attributes.Get(AttributeId::Msg));
    m_document.aLinks.push_back(link);
    return static_cast<std::uint32_t>(m_document.aLinks.size() - 1);
}

void DocumentBuilder::PushElement(const Element& element) {
    m_aElements.push_back(element);
    Element& pushed = m_aElements.back();
    if (!pushed.bScope) {
        std::uint32_t& last = m_aLast[static_cast<std::size_t>(pushed.tag)];
        pushed.nPrevious = last;
        last = static_cast<std::uint32_t>(m_aElements.size() - 1);
        pushed.bBox =
            m_document.styles[pushed.nStyle].nBox != 0 && m_nBoxes < kMaxBoxes && !BetweenCells();
        if (pushed.bBox) {
            ++m_nBoxes;
            AddItem(ItemKind::BoxOpen);
        }
    }
}

void DocumentBuilder::PopElement() {
    const Element& top = Top();
    if (!top.bScope) {
        m_aLast[static_cast<std::size_t>(top.tag)] = top.nPrevious;
        if (top.bBox) {
            --m_nBoxes;
            AddItem(ItemKind::BoxClose);
        }
    }
    m_aElements.pop_back();
}

void DocumentBuilder::PopTo(std::size_t nSize) {
    while (m_aElements.size() > nSize) {
        const Element top = Top();
        PopElement();
        m_elementStyles.Release(top.change);
        if (!top.bScope) {
            EndLineAt(top.tag);
        }
    }
}

void DocumentBuilder::CloseElement(std::size_t nElement) {
    std::array<Element, kMaxReopened> reopen;
    const std::size_t inside = m_aElements.size() - 1 - nElement;
    if (inside > kMaxReopened) {
        PopTo(nElement);
        return;
    }
    for (std::size_t i = 0; i < inside; ++i) {
        reopen[i] = Top();
        PopElement();
    }
    PopTo(nElement);
    for (std::size_t i = inside; i-- > 0;) {
        ReopenElement(reopen[i]);
    }
}

void DocumentBuilder::ReopenElement(Element element) {
    // What belonged to a closed link belongs to none now; a link of its own goes on.
    if (element.tag != TagId::A) {
        element.nLink = Top().nLink;
    }
    element.nStyle = m_elementStyles.StyleOf(Top().nStyle, element.change);
    PushElement(element);
}

}  // namespace mvp::richtext
