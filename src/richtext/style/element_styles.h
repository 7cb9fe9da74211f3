// Turns tags into deltas and deltas into computed styles, each once: what a tag means by way of the
// style sheet is read the first time it is met, and a style met before is found again by its
// parent.
#pragma once

#include <array>
#include <cstdint>
#include <memory_resource>
#include <unordered_map>
#include <vector>

#include "richtext/markup/markup_reader.h"
#include "richtext/style/style_sheet.h"
#include "richtext/style/style_table.h"

namespace mvp::richtext {

// Which rules a link takes besides its own: none, "a:link", or "a:hover" on top of that.
enum class LinkState : std::uint8_t { None, Link, Hover };

class ElementStyles {
public:
    // All four must outlive the object.
    ElementStyles(const StyleSheet& sheet, const SystemColours& system, StyleTable& styles,
                  std::pmr::memory_resource* pMemory)
        : m_sheet(sheet), m_system(system), m_styles(styles), m_aShared(pMemory), m_aOwn(pMemory) {}

    // What an element changes. Good for as long as the element is open: give it back with Release,
    // the last one taken first.
    struct Change {
        std::uint32_t nNormal = kNone;
        std::uint32_t nHover = kNone;  // a link's: its change while the mouse is over it
    };
    Change ChangeOf(TagId tag, const TagAttributes& attributes, bool bLink);
    void Release(Change change);

    // The style of a child of nParent that the change works on.
    std::uint32_t StyleOf(std::uint32_t nParent, Change change);

    const StyleDelta& DeltaOf(std::uint32_t nDelta) const;

private:
    // Deltas of elements with attributes of their own are numbered from here.
    static constexpr std::uint32_t kOwn = 0x80000000;

    std::uint32_t SharedDelta(TagId tag, std::span<const StyleSheet::Rule> classRules,
                              LinkState state);
    StyleDelta MakeDelta(TagId tag, const TagAttributes* pAttributes,
                         std::span<const StyleSheet::Rule> classRules, LinkState state) const;
    void ApplyRules(std::span<const StyleSheet::Rule> rules, StyleDelta& delta) const;
    std::uint32_t Derive(std::uint32_t nParent, Change change);

    const StyleSheet& m_sheet;
    const SystemColours& m_system;
    StyleTable& m_styles;
    std::pmr::vector<StyleDelta> m_aShared;
    std::pmr::vector<StyleDelta> m_aOwn;  // of the open elements, innermost last
    // Place in m_aShared + 1: of the tags without a class, and behind them of the states of a link.
    std::array<std::uint32_t, kTagCount + 2> m_aPlain = {};
    std::unordered_map<std::uint64_t, std::uint32_t> m_byClass;

    struct Known {
        std::uint32_t nParent = kNone;
        std::uint32_t nDelta = kNone;
        std::uint32_t nStyle = kNone;
    };
    std::array<Known, 64> m_aKnown;
};

}  // namespace mvp::richtext
