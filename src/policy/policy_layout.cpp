#include "policy/policy_layout.h"

#include <cstdint>

#include "platform/resolution.h"

namespace mvp {

PolicyLayout LayOutPolicies(const PolicyBox& box, const PinRules& rules,
                            const PolicyMargins& margins, int nDpi) noexcept {
    const int iconRise = PixelsAt(nDpi, 1);
    // 64 bits, because a host may pass any margin.
    const std::int64_t indent = PixelsAt(nDpi, margins.nLeftIndent);
    const std::int64_t spacing = PixelsAt(nDpi, margins.nLineSpacing);
    std::int64_t y = std::int64_t{box.nGroupTop} + PixelsAt(nDpi, margins.nTopMargin) + spacing;

    PolicyLayout layout;
    for (const PinRule rule : kPinScreenOrder) {
        if (!rules.InForce(rule)) {
            continue;
        }
        const PolicyLineControls& controls = box.lines[IndexOf(rule)];
        PlacedPolicyLine& line = layout.m_lines[layout.m_nCount++];
        line.rule = rule;
        line.nTextX = static_cast<int>(controls.nTextLeft + indent);
        line.nTextY = static_cast<int>(y);
        line.nIconX = static_cast<int>(controls.nIconLeft + indent);
        line.nIconY = static_cast<int>(y - iconRise);
        y += spacing + controls.nTextHeight;
    }
    // One spacing follows the last line, so the box ends at y.
    layout.m_nSpare = static_cast<int>(std::int64_t{box.nGroupTop} + box.nGroupHeight - y);
    return layout;
}

}  // namespace mvp
