// Where the lines of the rule panel stand.
//
// The panel's template holds a group box with a text and an icon for every rule. The lines of the
// rules in force are packed at the top of the box, in screen order; the lines of the other rules
// keep their place (they are hidden), and the box and the panel around it then lose the height that
// is left over. All numbers are pixels in the panel's client coordinates, where nothing else is
// said.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "policy/pin_policy.h"

namespace mvp {

// Where a rule's controls stand in the template.
struct PolicyLineControls {
    int nTextLeft = 0;
    int nTextHeight = 0;
    int nIconLeft = 0;
};

struct PolicyBox {
    int nGroupTop = 0;
    int nGroupHeight = 0;
    std::array<PolicyLineControls, kPinRuleCount> lines{};  // by IndexOf(rule)
};

// The host's wish: room above the first line for the box's caption, indentation of every line,
// room between lines. In pixels of 96 dpi; any value; sums beyond the range of int wrap.
struct PolicyMargins {
    int nTopMargin = 0;
    int nLeftIndent = 0;
    int nLineSpacing = 0;
};

struct PlacedPolicyLine {
    PinRule rule = PinRule::Confirmation;
    int nTextX = 0;
    int nTextY = 0;
    int nIconX = 0;
    int nIconY = 0;
};

class PolicyLayout {
public:
    // The lines to move, from the top.
    std::span<const PlacedPolicyLine> Lines() const noexcept { return {m_lines.data(), m_nCount}; }
    // By how much the group box and the panel shrink; negative when they must grow.
    int Spare() const noexcept { return m_nSpare; }

private:
    friend PolicyLayout LayOutPolicies(const PolicyBox& box, const PinRules& rules,
                                       const PolicyMargins& margins, int nDpi) noexcept;

    std::array<PlacedPolicyLine, kPinRuleCount> m_lines{};
    std::size_t m_nCount = 0;
    int m_nSpare = 0;
};

PolicyLayout LayOutPolicies(const PolicyBox& box, const PinRules& rules,
                            const PolicyMargins& margins, int nDpi) noexcept;

}  // namespace mvp
