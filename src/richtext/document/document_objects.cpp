// Images, rules and string resources.
#include <algorithm>

#include "richtext/document/document_builder_impl.h"
#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

// All string resources of a document together: a short tag must not fetch a long text without end.
constexpr std::size_t kMaxResourceBytes = std::size_t{64} << 10;

ImageStyle ReadImageStyle(std::string_view value) {
    if (EqualsNoCase(value, "disabled") || EqualsNoCase(value, "gray")) {
        return ImageStyle::Disabled;
    }
    if (EqualsNoCase(value, "blend")) {
        return ImageStyle::Blend;
    }
    return EqualsNoCase(value, "hidden") ? ImageStyle::Hidden : ImageStyle::Normal;
}

ImageKind ImageKindOf(TagId tag) {
    switch (InfoOf(tag).kind) {
        case TagKind::Icon:
            return ImageKind::Icon;
        case TagKind::ImageList:
            return ImageKind::ImageList;
        default:
            return ImageKind::Bitmap;
    }
}

// Where one side of an image is given and the other is not, its shape is kept.
void Complete(ImageAttributes& wanted, bool bWidth, bool bHeight, ImageSize natural) {
    if (bWidth && !bHeight && natural.nWidth > 0) {
        wanted.nHeight = MulDivRounded(natural.nHeight, wanted.nWidth, natural.nWidth);
    } else if (bHeight && !bWidth && natural.nHeight > 0) {
        wanted.nWidth = MulDivRounded(natural.nWidth, wanted.nHeight, natural.nHeight);
    }
    wanted.nWidth = HeldExtent(wanted.nWidth);
    wanted.nHeight = HeldExtent(wanted.nHeight);
}

}  // namespace

std::int32_t DocumentBuilder::LengthOf(const TagAttributes& attributes, AttributeId attribute,
                                       std::int32_t nDefault) const {
    return LengthOr(attributes.Get(attribute), nDefault, LengthUse::Size,
                    m_document.styles.ContextOf(Top().nStyle));
}

// An image or a string has no closing tag, but a class may align or frame it: it is an element for
// as long as its item. The caller pops it.
void DocumentBuilder::PushLeaf(TagId tag) {
    Element element;
    element.tag = tag;
    element.change = m_elementStyles.ChangeOf(tag, m_reader.Attributes(), false);
    element.nLink = Top().nLink;
    element.nStyle = m_elementStyles.StyleOf(Top().nStyle, element.change);
    PushElement(element);
}

void DocumentBuilder::AddImage(TagId tag) {
    if (BetweenCells()) {
        EnsureCell();
    }
    const TagAttributes& attributes = m_reader.Attributes();
    ImageDescription description;
    description.kind = ImageKindOf(tag);
    description.idres = attributes.Get(AttributeId::IdRes);
    description.module = attributes.Get(attributes.Has(AttributeId::IdDll) ? AttributeId::IdDll
                                                                           : AttributeId::SrcDll);
    description.handle = attributes.Get(AttributeId::Handle);
    description.file = attributes.Get(AttributeId::File);
    description.nIndex = LengthOf(attributes, AttributeId::Index, 0);

    ImageAttributes wanted;
    wanted.kind = description.kind;
    wanted.idres = Store(description.idres);
    wanted.module = Store(description.module);
    wanted.handle = Store(description.handle);
    wanted.file = Store(description.file);
    wanted.nIndex = description.nIndex;
    wanted.nSpeed = std::max(0, LengthOf(attributes, AttributeId::Speed, 0));
    wanted.mask =
        ReadColour(attributes.Get(AttributeId::Mask), m_settings.system).value_or(kNoColour);
    wanted.style = ReadImageStyle(Trim(attributes.Get(AttributeId::Style)));
    wanted.hotStyle = attributes.Has(AttributeId::HotStyle)
                          ? ReadImageStyle(Trim(attributes.Get(AttributeId::HotStyle)))
                          : wanted.style;
    const ImageSize natural = m_settings.pMeasurer->SizeOfImage(description);
    const AttributeId width =
        attributes.Has(AttributeId::Cx) ? AttributeId::Cx : AttributeId::Width;
    const AttributeId height =
        attributes.Has(AttributeId::Cy) ? AttributeId::Cy : AttributeId::Height;
    wanted.nWidth = HeldExtent(LengthOf(attributes, width, natural.nWidth));
    wanted.nHeight = HeldExtent(LengthOf(attributes, height, natural.nHeight));
    Complete(wanted, ReadLength(attributes.Get(width)).has_value(),
             ReadLength(attributes.Get(height)).has_value(), natural);
    m_document.aImages.push_back(wanted);
    PushLeaf(tag);
    AddItem(ItemKind::Image, static_cast<std::uint32_t>(m_document.aImages.size() - 1));
    PopTo(m_aElements.size() - 1);

    m_bCollapse = false;
    m_bWordStart = true;
}

void DocumentBuilder::AddRule() {
    if (BetweenCells()) {
        EnsureCell();
    }
    const TagAttributes& attributes = m_reader.Attributes();
    const ElementStyles::Change change = m_elementStyles.ChangeOf(TagId::Hr, attributes, false);
    const StyleDelta& delta = m_elementStyles.DeltaOf(change.nNormal);
    m_document.aRules.push_back({ReadLength(attributes.Get(AttributeId::Width)),
                                 delta.colour.has_value() ? delta.colour : delta.background,
                                 delta.align});
    AddItem(ItemKind::Rule, static_cast<std::uint32_t>(m_document.aRules.size() - 1));
    m_document.aItems.back().nStyle = m_elementStyles.StyleOf(Top().nStyle, change);
    m_elementStyles.Release(change);
    m_bCollapse = true;
    m_bWordStart = true;
}

// The resource's text is text: markup in it has no meaning, so it cannot open anything either.
void DocumentBuilder::AddString() {
    const TagAttributes& attributes = m_reader.Attributes();
    std::string text;
    const std::string_view module = attributes.Get(
        attributes.Has(AttributeId::IdDll) ? AttributeId::IdDll : AttributeId::SrcDll);
    const std::size_t left = kMaxResourceBytes - m_nResourceBytes;
    if (left != 0 &&
        m_settings.pMeasurer->StringResource(attributes.Get(AttributeId::IdRes), module, text)) {
        text.resize(std::min(text.size(), left));
        m_nResourceBytes += text.size();
        if (BetweenCells()) {
            EnsureCell();
        }
        PushLeaf(TagId::String);
        AddText(text);
        PopTo(m_aElements.size() - 1);
    }
}

}  // namespace mvp::richtext
