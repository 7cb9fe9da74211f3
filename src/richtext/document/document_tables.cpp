// Tables, rows and cells.
#include <algorithm>

#include "richtext/document/document_builder_impl.h"
#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

constexpr int kWindowColour = 5;  // system colour indices
constexpr int kButtonShadowColour = 16;
constexpr int kButtonHighlightColour = 20;

constexpr TagAttributes kNoAttributes;

// A column or row span as HTML clamps it: at least 1.
std::int32_t ReadSpan(std::string_view value, std::int32_t nMost) {
    std::int32_t span = 1;
    ReadCNumber(value, span);
    return std::clamp(span, 1, nMost);
}

// A width that is given and not zero.
std::optional<Length> ReadWidth(std::string_view value) {
    const std::optional<Length> width = ReadLength(value);
    return width.has_value() && width->nValue > 0 ? width : std::nullopt;
}

Colour Midpoint(Colour a, Colour b) {
    Colour middle = 0;
    for (unsigned shift = 0; shift < 24; shift += 8) {
        middle |= (((a >> shift & 0xFF) + (b >> shift & 0xFF)) / 2) << shift;
    }
    return middle;
}

// What the text around a table does not hand on to the text inside.
ComputedStyle ResetForBlock(ComputedStyle style) {
    style.background = kNoColour;
    style.verticalAlign = VerticalAlign::Baseline;
    style.nBox = 0;
    if (style.nBlockAlign != 0) {
        // An alignment tag places the table; what is in the table begins anew.
        style.align = TextAlign::Left;
        style.nBlockAlign = 0;
    }
    return style;
}

}  // namespace

void DocumentBuilder::PushScope(const Element& scope) {
    m_nScope = m_aElements.size();
    PushElement(scope);
}

// The style of the text in a table or a cell; its box, background and vertical alignment are the
// block's, not the text's.
std::uint32_t DocumentBuilder::BlockStyle(const StyleDelta& delta, std::optional<TextAlign> align) {
    StyleTable& styles = m_document.styles;
    const auto inner = [&](const ComputedStyle& outer) {
        ComputedStyle style = styles.Derive(ResetForBlock(outer), delta);
        style.background = kNoColour;
        style.verticalAlign = VerticalAlign::Baseline;
        style.nBox = 0;
        style.align = delta.align.has_value() ? style.align : align.value_or(style.align);
        return style;
    };
    const ComputedStyle outer = styles[Top().nStyle];
    ComputedStyle style = inner(outer);
    if (outer.nHover != kNone) {
        ComputedStyle hover = inner(ComputedStyle(styles[outer.nHover]));
        hover.nFont = style.nFont;
        style.nHover = styles.Intern(hover);
    }
    return styles.Intern(style);
}

void DocumentBuilder::OpenTable() {
    if (BetweenCells()) {
        CloseTable();
    }
    const TagAttributes& attributes = m_reader.Attributes();
    Element scope;
    scope.tag = TagId::Table;
    scope.bScope = true;
    scope.change = m_elementStyles.ChangeOf(TagId::Table, attributes, false);
    const StyleDelta& delta = m_elementStyles.DeltaOf(scope.change.nNormal);
    const TableAttributes table = ReadTable(attributes, delta);
    scope.nStyle = table.nStyle;
    scope.nLink = Top().nLink;
    TableState state;
    state.defaults.padding.fill(table.nCellPadding);
    if (attributes.Has(AttributeId::VAlign)) {
        state.defaults.verticalAlign = ReadVerticalAlign(attributes.Get(AttributeId::VAlign))
                                           .value_or(state.defaults.verticalAlign);
    }
    state.defaults = DefaultsOf(delta, state.defaults);
    state.defaults.background = kNoColour;  // the table's own filling
    state.rowDefaults = state.defaults;
    state.nTable = static_cast<std::uint32_t>(m_document.aTables.size());
    state.nElement = m_aElements.size();
    state.nOuterScope = m_nScope;
    m_document.aTables.push_back(table);
    PushScope(scope);
    AddItem(ItemKind::TableOpen, state.nTable);
    m_aTables.push_back(state);
}

void DocumentBuilder::OpenRow(const TagAttributes& attributes) {
    if (!InTable()) {
        return;
    }
    CloseRow();
    Element scope;
    scope.tag = TagId::Tr;
    scope.bScope = true;
    scope.change = m_elementStyles.ChangeOf(TagId::Tr, attributes, false);
    const StyleDelta& delta = m_elementStyles.DeltaOf(scope.change.nNormal);
    scope.nStyle = BlockStyle(delta, std::nullopt);
    scope.nLink = Top().nLink;
    TableState& state = m_aTables.back();
    const CellDefaults defaults = DefaultsOf(delta, state.defaults);
    if (defaults != state.rowDefaults) {
        state.rowDefaults = defaults;
        state.nPlainCell = kNone;
    }
    state.nRowElement = m_aElements.size();
    state.bInRow = true;
    PushScope(scope);
    AddItem(ItemKind::RowOpen);
}

void DocumentBuilder::OpenCell(const TagAttributes& attributes) {
    if (!InTable()) {
        return;
    }
    CloseCell();
    TableState& state = m_aTables.back();
    if (!state.bInRow) {
        OpenRow(kNoAttributes);
    }
    Element scope;
    scope.tag = TagId::Td;
    scope.bScope = true;
    scope.change = m_elementStyles.ChangeOf(TagId::Td, attributes, false);
    const StyleDelta& delta = m_elementStyles.DeltaOf(scope.change.nNormal);
    // Most cells of a table have nothing of their own.
    CellAttributes cell;
    if (attributes.Empty() && state.nPlainCell != kNone && state.nPlainOuter == Top().nStyle) {
        cell = m_document.aCells[state.nPlainCell];
    } else {
        cell = ReadCell(attributes, delta, state);
    }
    if (attributes.Empty()) {
        state.nPlainCell = static_cast<std::uint32_t>(m_document.aCells.size());
        state.nPlainOuter = Top().nStyle;
    }
    scope.nStyle = cell.nStyle;
    scope.nLink = Top().nLink;
    state.nCell = static_cast<std::uint32_t>(m_document.aCells.size());
    state.nCellElement = m_aElements.size();
    m_document.aCells.push_back(cell);
    PushScope(scope);
    AddItem(ItemKind::CellOpen, state.nCell);
    m_bCollapse = true;
    m_bWordStart = true;
}

void DocumentBuilder::EnsureCell() {
    OpenCell(kNoAttributes);
}

void DocumentBuilder::CloseCell() {
    if (!InTable() || m_aTables.back().nCell == kNone) {
        return;
    }
    TableState& state = m_aTables.back();
    PopTo(state.nCellElement + 1);
    AddItem(ItemKind::CellClose, state.nCell);
    m_nScope = state.nRowElement;
    state.nCell = kNone;
    PopTo(state.nCellElement);
    m_bCollapse = true;
}

void DocumentBuilder::CloseRow() {
    CloseCell();
    if (!InTable() || !m_aTables.back().bInRow) {
        return;
    }
    TableState& state = m_aTables.back();
    state.bInRow = false;
    m_nScope = state.nElement;
    PopTo(state.nRowElement);
}

void DocumentBuilder::CloseTable() {
    if (!InTable()) {
        return;
    }
    CloseRow();
    const TableState state = m_aTables.back();
    PopTo(state.nElement + 1);
    AddItem(ItemKind::TableClose, state.nTable);
    m_aTables.pop_back();
    m_nScope = state.nOuterScope;
    PopTo(state.nElement);
    m_bCollapse = true;
    m_bWordStart = true;
}

// What a style says of the cells in its table or row, over what holds already.
DocumentBuilder::CellDefaults DocumentBuilder::DefaultsOf(const StyleDelta& delta,
                                                          CellDefaults defaults) const {
    defaults.padding = EdgesOf(delta.padding, defaults.padding);
    defaults.verticalAlign = delta.verticalAlign.value_or(defaults.verticalAlign);
    defaults.background = delta.background.value_or(kNoColour);
    return defaults;
}

Edges DocumentBuilder::EdgesOf(const std::optional<EdgeLengths>& lengths, Edges otherwise) const {
    Edges edges = otherwise;
    if (lengths.has_value()) {
        const LengthContext context = m_document.styles.ContextOf(Top().nStyle);
        std::transform(lengths->begin(), lengths->end(), edges.begin(), [&](Length length) {
            return std::clamp(ResolveLength(length, 0, LengthUse::Size, context), 0, kMaxEdge);
        });
    }
    return edges;
}

// The style sheet before the attributes, and those before the default. A border needs a style, from
// either of them; a width in the attributes is one of a solid border.
Edges DocumentBuilder::BorderOf(const TagAttributes& attributes, const StyleDelta& delta,
                                std::int32_t nDefault) const {
    constexpr std::int32_t kMediumBorder = 3;
    const auto attributeStyle = ReadBorderStyle(attributes.Get(AttributeId::BorderStyle));
    const auto style = delta.borderStyle.has_value() ? delta.borderStyle : attributeStyle;
    if (style == BorderStyle::None) {
        return {};
    }
    if (attributes.Has(AttributeId::Border)) {
        // The bare attribute asks for a border of one pixel.
        const bool bare = Trim(attributes.Get(AttributeId::Border)).empty();
        nDefault = bare ? 1 : LengthOf(attributes, AttributeId::Border, nDefault);
    } else if (delta.borderStyle.has_value()) {
        nDefault = kMediumBorder;
    }
    Edges border;
    border.fill(std::clamp(nDefault, 0, kMaxEdge));
    return style.has_value() || nDefault > 0 ? EdgesOf(delta.borderWidth, border) : border;
}

TableAttributes DocumentBuilder::ReadTable(const TagAttributes& attributes,
                                           const StyleDelta& delta) {
    TableAttributes table;
    table.nStyle = BlockStyle(delta, std::nullopt);
    table.width = ReadWidth(attributes.Get(AttributeId::Width));
    const auto height = ReadLength(attributes.Get(AttributeId::Height));
    if (height.has_value() && height->unit != LengthUnit::Percent) {
        table.nHeight = HeldExtent(LengthOf(attributes, AttributeId::Height, 0));
    }
    const auto edge = [&](AttributeId attribute, std::int32_t nDefault) {
        return std::clamp(LengthOf(attributes, attribute, nDefault), 0, kMaxEdge);
    };
    table.nCellPadding = edge(AttributeId::CellPadding, table.nCellPadding);
    table.nCellSpacing = edge(AttributeId::CellSpacing, table.nCellSpacing);
    table.margin = EdgesOf(delta.margin, {});
    table.border = BorderOf(attributes, delta, 0);
    table.nDecoration = AddDecoration(attributes, delta, table.border, table.nStyle, nullptr);

    TextAlign align = TextAlign::Left;
    if (const std::uint32_t outer = m_document.styles[Top().nStyle].nBlockAlign; outer != 0) {
        align = static_cast<TextAlign>(outer - 1);
    }
    if (attributes.Has(AttributeId::Align)) {
        align = ReadTextAlign(attributes.Get(AttributeId::Align)).value_or(align);
    }
    table.align = align == TextAlign::Center  ? BlockAlign::Center
                  : align == TextAlign::Right ? BlockAlign::Right
                                              : BlockAlign::Left;
    return table;
}

CellAttributes DocumentBuilder::ReadCell(const TagAttributes& attributes, const StyleDelta& delta,
                                         const TableState& state) {
    CellAttributes cell;
    cell.nStyle = BlockStyle(delta, attributes.Has(AttributeId::Align)
                                        ? ReadTextAlign(attributes.Get(AttributeId::Align))
                                        : std::nullopt);

    cell.nColSpan = ReadSpan(attributes.Get(AttributeId::ColSpan), kMaxColSpan);
    cell.nRowSpan = ReadSpan(attributes.Get(AttributeId::RowSpan), kMaxRowSpan);
    cell.width = ReadWidth(attributes.Get(AttributeId::Width));
    const auto height = ReadLength(attributes.Get(AttributeId::Height));
    if (height.has_value() && height->unit != LengthUnit::Percent) {
        cell.nHeight = HeldExtent(LengthOf(attributes, AttributeId::Height, 0));
    }
    cell.padding = state.rowDefaults.padding;
    for (std::int32_t& padding : cell.padding) {
        padding = std::clamp(LengthOf(attributes, AttributeId::CellPadding, padding), 0, kMaxEdge);
    }
    cell.padding = EdgesOf(delta.padding, cell.padding);
    const Edges& outer = m_document.aTables[state.nTable].border;
    const bool outerBorder = std::any_of(outer.begin(), outer.end(), [](int n) { return n != 0; });
    cell.border = BorderOf(attributes, delta, outerBorder ? 1 : 0);
    cell.nDecoration =
        AddDecoration(attributes, delta, cell.border, cell.nStyle, &state.rowDefaults);
    cell.verticalAlign = state.rowDefaults.verticalAlign;
    if (delta.verticalAlign.has_value()) {
        cell.verticalAlign = *delta.verticalAlign;
    } else if (attributes.Has(AttributeId::VAlign)) {
        cell.verticalAlign =
            ReadVerticalAlign(attributes.Get(AttributeId::VAlign)).value_or(cell.verticalAlign);
    }
    return cell;
}

void DocumentBuilder::ReadFilling(const TagAttributes& attributes, const StyleDelta& delta,
                                  Decoration& decoration) {
    const SystemColours& system = m_settings.system;
    const auto start = delta.background.has_value()
                           ? delta.background
                           : ReadPropertyColour(attributes.Get(AttributeId::BgColor), system);
    const bool filled = start.value_or(kNoColour) != kNoColour;
    decoration.effect =
        ReadBackgroundEffect(attributes.Get(AttributeId::BgEffect),
                             m_document.styles.ContextOf(Top().nStyle))
            .value_or(filled ? BackgroundEffect::Solid : BackgroundEffect::Transparent);
    if (decoration.effect == BackgroundEffect::Transparent) {
        return;
    }
    decoration.start = filled ? *start : system.aColour[kWindowColour];
    decoration.end =
        ReadColour(attributes.Get(AttributeId::BgEndColor), system).value_or(decoration.start);
    decoration.middle = ReadColour(attributes.Get(AttributeId::BgMidColor), system)
                            .value_or(Midpoint(decoration.start, decoration.end));
}

std::uint32_t DocumentBuilder::AddDecoration(const TagAttributes& attributes,
                                             const StyleDelta& delta, const Edges& border,
                                             std::uint32_t nStyle, const CellDefaults* pCell) {
    Decoration decoration;
    ReadFilling(attributes, delta, decoration);
    // A row is seen in its cells, and not between them.
    if (pCell != nullptr && pCell->background != kNoColour &&
        decoration.effect == BackgroundEffect::Transparent) {
        decoration.effect = BackgroundEffect::Solid;
        decoration.start = decoration.middle = decoration.end = pCell->background;
    }
    decoration.background = Store(Trim(attributes.Get(AttributeId::Background)));
    const bool hasBorder = std::any_of(border.begin(), border.end(), [](int n) { return n != 0; });
    if (decoration.effect == BackgroundEffect::Transparent && !hasBorder &&
        decoration.background.nLength == 0) {
        return 0;
    }
    const SystemColours& system = m_settings.system;
    const auto colour = [&](AttributeId attribute, Colour otherwise) {
        return ReadPropertyColour(attributes.Get(attribute), system).value_or(otherwise);
    };
    decoration.border = border;
    const auto style = delta.borderStyle.has_value()
                           ? delta.borderStyle
                           : ReadBorderStyle(attributes.Get(AttributeId::BorderStyle));
    decoration.borderStyle = hasBorder ? style.value_or(BorderStyle::Solid) : BorderStyle::None;
    decoration.borderColour = delta.borderColour.value_or(
        colour(AttributeId::BorderColor, m_document.styles[nStyle].colour));
    // Like the tables of old: raised, with the cells sunk into it, unless colour or style say
    // otherwise.
    const bool twoTone = attributes.Has(AttributeId::BorderColorLight) ||
                         attributes.Has(AttributeId::BorderColorDark);
    decoration.bBevel = hasBorder && (twoTone || (!style.has_value() && !delta.borderColour &&
                                                  !attributes.Has(AttributeId::BorderColor)));
    decoration.bSunken = decoration.bBevel && pCell != nullptr;
    decoration.borderLight =
        colour(AttributeId::BorderColorLight, system.aColour[kButtonHighlightColour]);
    decoration.borderDark =
        colour(AttributeId::BorderColorDark, system.aColour[kButtonShadowColour]);
    m_document.aDecorations.push_back(decoration);
    return static_cast<std::uint32_t>(m_document.aDecorations.size());
}

}  // namespace mvp::richtext
