#include "richtext/style/element_styles.h"

#include <utility>

#include "richtext/markup/text_bytes.h"

namespace mvp::richtext {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";

}  // namespace

void ElementStyles::ApplyRules(std::span<const StyleSheet::Rule> rules, StyleDelta& delta) const {
    for (const StyleSheet::Rule& rule : rules) {
        ReadDeclarations(rule.block, m_system, delta);
    }
}

// In the order of the cascade: the tag's own effect, its attributes, the rule of its selector, its
// classes, and for links their state: the mouse adds to what a link is anyway.
StyleDelta ElementStyles::MakeDelta(TagId tag, const TagAttributes* pAttributes,
                                    std::span<const StyleSheet::Rule> classRules,
                                    LinkState state) const {
    const TagInfo& info = InfoOf(tag);
    StyleDelta delta = EffectOf(info.kind);
    if (pAttributes != nullptr && info.kind == TagKind::Font) {
        ReadFontAttributes(*pAttributes, m_system, delta);
    }
    if (!info.selector.empty()) {
        ApplyRules(m_sheet.Find(info.selector), delta);
    }
    ApplyRules(classRules, delta);
    if (pAttributes != nullptr) {
        std::string_view names = pAttributes->Get(AttributeId::Class);
        for (std::string_view name = NextToken(names, kBlanks); !name.empty();
             name = NextToken(names, kBlanks)) {
            ApplyRules(m_sheet.FindClass(name), delta);
        }
    }
    if (state != LinkState::None) {
        ApplyRules(m_sheet.Find("a:link"), delta);
    }
    if (state == LinkState::Hover) {
        ApplyRules(m_sheet.Find("a:hover"), delta);
    }
    return delta;
}

std::uint32_t ElementStyles::SharedDelta(TagId tag, std::span<const StyleSheet::Rule> classRules,
                                         LinkState state) {
    std::uint32_t* place = nullptr;  // in m_aShared + 1
    if (classRules.empty()) {
        const auto linkState = static_cast<std::size_t>(state);
        place = &m_aPlain[state == LinkState::None ? static_cast<std::size_t>(tag)
                                                   : kTagCount - 1 + linkState];
    } else {
        // Rules of one class stand together, so the first of them names the class.
        const auto classIndex =
            static_cast<std::uint64_t>(classRules.data() - m_sheet.Rules().data());
        place = &m_byClass[(classIndex << 16) | (static_cast<std::uint64_t>(tag) << 8) |
                           static_cast<std::uint64_t>(state)];
    }
    if (*place == 0) {
        m_aShared.push_back(MakeDelta(tag, nullptr, classRules, state));
        *place = static_cast<std::uint32_t>(m_aShared.size());
    }
    return *place - 1;
}

ElementStyles::Change ElementStyles::ChangeOf(TagId tag, const TagAttributes& attributes,
                                              bool bLink) {
    std::span<const StyleSheet::Rule> classRules;
    bool hasOwn = InfoOf(tag).kind == TagKind::Font && !attributes.Empty();
    if (attributes.Has(AttributeId::Class)) {
        const std::string_view names = Trim(attributes.Get(AttributeId::Class));
        if (names.find_first_of(kBlanks) == std::string_view::npos) {
            classRules = m_sheet.FindClass(names);
        } else {
            hasOwn = true;
        }
    }
    const LinkState state = bLink ? LinkState::Link : LinkState::None;
    Change change;
    if (!hasOwn) {
        change.nNormal = SharedDelta(tag, classRules, state);
        change.nHover = bLink ? SharedDelta(tag, classRules, LinkState::Hover) : kNone;
        return change;
    }
    const auto own = [&](LinkState of) {
        m_aOwn.push_back(MakeDelta(tag, &attributes, {}, of));
        return kOwn + static_cast<std::uint32_t>(m_aOwn.size() - 1);
    };
    change.nNormal = own(state);
    change.nHover = bLink ? own(LinkState::Hover) : kNone;
    return change;
}

void ElementStyles::Release(Change change) {
    for (const std::uint32_t delta : {change.nHover, change.nNormal}) {
        if (delta != kNone && delta >= kOwn && delta - kOwn + 1 == m_aOwn.size()) {
            m_aOwn.pop_back();
        }
    }
}

const StyleDelta& ElementStyles::DeltaOf(std::uint32_t nDelta) const {
    return nDelta >= kOwn ? m_aOwn[nDelta - kOwn] : m_aShared[nDelta];
}

std::uint32_t ElementStyles::StyleOf(std::uint32_t nParent, Change change) {
    if (change.nNormal >= kOwn) {
        return Derive(nParent, change);
    }
    Known& known = m_aKnown[(nParent * 31 + change.nNormal) % m_aKnown.size()];
    if (known.nParent != nParent || known.nDelta != change.nNormal) {
        known = {nParent, change.nNormal, Derive(nParent, change)};
    }
    return known.nStyle;
}

std::uint32_t ElementStyles::Derive(std::uint32_t nParent, Change change) {
    const ComputedStyle parent = m_styles[nParent];
    ComputedStyle style = m_styles.Derive(parent, DeltaOf(change.nNormal));
    const bool link = change.nHover != kNone;
    if (link || parent.nHover != kNone) {
        // The mouse changes how a link looks, never how wide it is.
        ComputedStyle hover =
            m_styles.Derive(link ? parent : ComputedStyle(m_styles[parent.nHover]),
                            DeltaOf(link ? change.nHover : change.nNormal));
        hover.nFont = style.nFont;
        hover.nBox = style.nBox;
        hover.nHover = kNone;
        style.nHover = m_styles.Intern(hover);
    }
    return m_styles.Intern(style);
}

}  // namespace mvp::richtext
